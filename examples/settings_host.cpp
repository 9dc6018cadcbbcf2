// A host's first contact with aimhue: create an engine handle, route the
// library's log into the host's own output, change the settings, read the
// target block back, clear the results and destroy the handle.
//
// Every call returns a status; 0 is success and aimhue::StatusText explains
// the others.
#include <aimhue/aimhue.h>

#include <cstdio>

namespace {

// The host's log sink: prefix each library line with its level.
void PrintLogLine(int level, const char* line, void* /*user*/) {
  static const char* const kLevels[] = {"debug", "info", "error"};
  std::printf("  aimhue %-5s| %s\n", kLevels[level], line);
}

bool Report(const char* call, int status) {
  std::printf("%-34s -> %d (%s)\n", call, status, aimhue::StatusText(status));
  return status == aimhue::kOk;
}

}  // namespace

int main() {
  PlumeLogUseEnvironment();  // AIMHUE_LOG=debug|info|error|off for the default sink
  PlumeLogSetSink(&PrintLogLine, nullptr);
  std::printf("aimhue %s: engine handle and settings\n\n", AIMHUE_VERSION_STRING);

  AimhueHandle handle = nullptr;
  if (!Report("AimhueCreateHandle", AimhueCreateHandle(&handle)) || handle == nullptr) return 1;

  Report("AimhueSetNGThresh(0.05)", AimhueSetNGThresh(handle, 0.05f));
  Report("AimhueSetNGThresh(1.5)  [refused]", AimhueSetNGThresh(handle, 1.5f));

  const float coverage[4] = {0.98f, 0.98f, 0.97f, 0.95f};
  Report("AimhueSetPercentEnd", AimhueSetPercentEnd(handle, coverage));

  const float fractions[4] = {0.8f, 0.8f, 0.8f, 1.0f};
  Report("AimhueSetPercentCalcChroma", AimhueSetPercentCalcChroma(handle, fractions));

  float targets[aimhue::kTargetBlockFloats];
  float stored[4];
  Report("AimhueGet", AimhueGet(handle, targets, stored));
  std::printf("\n  fractions  %.3f %.3f %.3f %.3f\n", stored[0], stored[1], stored[2], stored[3]);
  static const char* const kNames[] = {"red", "green", "blue", "white"};
  for (int point = 0; point < aimhue::kTargetPointCount; ++point) {
    const aimhue::TargetLxy target = aimhue::TargetAt(targets, point);
    std::printf("  %-6s L %8.3f  x %.4f  y %.4f\n", kNames[point], target.L, target.x, target.y);
  }
  std::printf("  (targets stay zero until a search or a load fills them)\n\n");

  Report("AimhueRelease", AimhueRelease(handle));
  AimhueDestroyHandle(handle);
  PlumeLogSetSink(nullptr, nullptr);
  std::printf("done\n");
  return 0;
}
