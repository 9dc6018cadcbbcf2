// The calling order of a calibration through the C interface, for the
// Python tests to compare with: reads the nine meter files red_X.meter ...
// blue_Z.meter of a folder, runs the search, the fractions 1, 1, 1, 1, the
// white point D65 and the NG limit with required coverage 0.99 (0.98 for
// all three), and writes the engine's 169-byte record to standard output.
#include <aimhue/aimhue.h>

#include <array>
#include <cstdio>
#include <string>

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: %s METER_FOLDER\n", argv[0]);
    return 2;
  }
  const char* const primaries[3] = {"red", "green", "blue"};
  const char* const axes[3] = {"X", "Y", "Z"};
  std::array<std::array<aimhue::LedMeter, 3>, 3> meters;
  std::array<std::array<const aimhue::LedMeter*, 3>, 3> triples{};
  for (int primary = 0; primary < 3; ++primary) {
    for (int axis = 0; axis < 3; ++axis) {
      const std::string path =
          std::string(argv[1]) + "/" + primaries[primary] + "_" + axes[axis] + ".meter";
      if (meters[primary][axis].Load(path) != 0) return 1;
      triples[primary][axis] = &meters[primary][axis];
    }
  }
  AimhueHandle handle = nullptr;
  const float ends[4] = {0.99f, 0.99f, 0.99f, 0.98f};
  const float fractions[4] = {1.0f, 1.0f, 1.0f, 1.0f};
  const aimhue::TargetLxy white{0.0f, 0.3127f, 0.329f};
  char record[169];
  uint64_t size = sizeof(record);
  if (AimhueCreateHandle(&handle) != 0 || AimhueSetPercentEnd(handle, ends) != 0 ||
      AimhueSearch(handle, triples[0].data(), triples[1].data(), triples[2].data(), 3) != 0 ||
      AimhueSetPercentCalcChroma(handle, fractions) != 0 ||
      AimhueCalcWhite(handle, 1.0f, &white, 0) != 0 ||
      AimhueCalcPercentNG(handle, triples[0].data(), triples[1].data(), triples[2].data(), 3) !=
          0 ||
      AimhueToBuffer(handle, record, &size) != 0) {
    AimhueDestroyHandle(handle);
    return 1;
  }
  AimhueDestroyHandle(handle);
  return std::fwrite(record, 1, size, stdout) == size ? 0 : 1;
}
