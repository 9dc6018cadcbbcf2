// A calibration host in a few lines: the whole calling order of the
// exported interface on one screen, from measurements to saved results.
//
// A real host fills the nine meters (the CIE X, Y and Z value of every LED
// for the red, green and blue primaries) from its measuring device; here
// they come from a synthetic screen.
//
//   example_calibration_host [results.aimhue]
#include <aimhue/aimhue.h>
#include <aimhue/led_meter.h>

#include <cstdio>

#include "synthetic/synthetic_screen.h"

namespace {

// Reports a failed call and passes its status on.
int Check(const char* call, int status) {
  if (status != aimhue::kOk) {
    std::fprintf(stderr, "%s failed: %d (%s)\n", call, status, aimhue::StatusText(status));
  }
  return status;
}

void PrintPoint(const char* name, const aimhue::TargetLxy& point) {
  std::printf("  %-5s L %10.3f  x %.4f  y %.4f\n", name, point.L, point.x, point.y);
}

}  // namespace

int main(int argc, char** argv) {
  PlumeLogUseEnvironment();  // AIMHUE_LOG=info shows the library's log lines
  const char* resultsFile = argc > 1 ? argv[1] : "calibration.aimhue";

  // 1. The measurements: per primary, the X, Y and Z meters in that order.
  aimhue::synthetic::ScreenOptions options;
  options.rows = 240;
  options.cols = 320;
  aimhue::synthetic::ScreenMeters screen = aimhue::synthetic::GenerateMeters(options);

  // A dead LED (X = Y = Z = 0) has no chromaticity, and one NaN would make
  // the search's means NaN: FixDeadLeds marks each one in the meters' state
  // (bit 0) and replaces its values by the median of its neighbours.
  for (auto& primary : screen) {
    aimhue::LedMeter* const triple[3] = {&primary[0], &primary[1], &primary[2]};
    aimhue::DeadLedCounts dead;
    if (Check("FixDeadLeds", aimhue::FixDeadLeds(triple, true, &dead)) != 0) return 1;
    std::printf("dead LEDs: %lld found, %lld still dead\n", static_cast<long long>(dead.found),
                static_cast<long long>(dead.remaining));
  }
  const aimhue::LedMeter* red[aimhue::kPrimaryCount] = {&screen[0][0], &screen[0][1], &screen[0][2]};
  const aimhue::LedMeter* green[aimhue::kPrimaryCount] = {&screen[1][0], &screen[1][1], &screen[1][2]};
  const aimhue::LedMeter* blue[aimhue::kPrimaryCount] = {&screen[2][0], &screen[2][1], &screen[2][2]};

  // 2. An engine handle and its settings: 99 % of the LEDs must reach each
  //    target; a later screen is NG when its coverage drops by more than 5 %.
  AimhueHandle handle = nullptr;
  if (Check("AimhueCreateHandle", AimhueCreateHandle(&handle)) != 0 || handle == nullptr) return 1;
  const float required[4] = {0.99f, 0.99f, 0.99f, 0.99f};
  int status = Check("AimhueSetPercentEnd", AimhueSetPercentEnd(handle, required));
  if (status == 0) status = Check("AimhueSetNGThresh", AimhueSetNGThresh(handle, 0.05f));

  // 3. The target search, then the targets placed at the search's final
  //    result (fractions 1.0) and balanced to a D65 white.
  if (status == 0) status = Check("AimhueSearch", AimhueSearch(handle, red, green, blue, aimhue::kPrimaryCount));
  const float fractions[4] = {1.0f, 1.0f, 1.0f, 1.0f};
  if (status == 0) {
    status = Check("AimhueSetPercentCalcChroma", AimhueSetPercentCalcChroma(handle, fractions));
  }
  const aimhue::TargetLxy d65{0.0f, 0.3127f, 0.3290f};
  if (status == 0) status = Check("AimhueCalcWhite", AimhueCalcWhite(handle, 1.0f, &d65, 0));

  // 4. Read the targets and measure how many LEDs reach them.
  float targets[aimhue::kTargetBlockFloats] = {};
  float coverage[4] = {};
  if (status == 0) status = Check("AimhueGet", AimhueGet(handle, targets, nullptr));
  if (status == 0) {
    status = Check("AimhueCalcPercentOfTarget",
                   AimhueCalcPercentOfTarget(red, green, blue, targets, coverage, nullptr, aimhue::kPrimaryCount));
  }

  // 5. Fix the NG limit from this screen and judge it (a later run would
  //    judge a new measurement), then save the results for the next run.
  bool ng = true;
  if (status == 0) {
    status = Check("AimhueCalcPercentNG", AimhueCalcPercentNG(handle, red, green, blue, aimhue::kPrimaryCount));
  }
  if (status == 0) {
    status = Check("AimhueJudgeNG", AimhueJudgeNG(handle, &ng, red, green, blue, aimhue::kPrimaryCount));
  }
  if (status == 0) status = Check("AimhueSave", AimhueSave(handle, resultsFile));
  AimhueDestroyHandle(handle);
  if (status != 0) return 1;

  std::printf("screen %d x %d LEDs\ntargets:\n", options.cols, options.rows);
  PrintPoint("red", aimhue::TargetAt(targets, aimhue::kRedPoint));
  PrintPoint("green", aimhue::TargetAt(targets, aimhue::kGreenPoint));
  PrintPoint("blue", aimhue::TargetAt(targets, aimhue::kBluePoint));
  std::printf("white point:\n");
  PrintPoint("white", aimhue::TargetAt(targets, aimhue::kWhitePoint));
  std::printf("coverage: red %.2f %%, green %.2f %%, blue %.2f %%, all three %.2f %%\n",
              100.0 * coverage[0], 100.0 * coverage[1], 100.0 * coverage[2],
              100.0 * coverage[3]);
  std::printf("NG: %s\nresults saved to %s\n", ng ? "yes" : "no", resultsFile);
  return 0;
}
