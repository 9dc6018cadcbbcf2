// What the tool's commands report: the records the commands fill in and the
// report printers read, apart from how they are printed.
#ifndef AIMHUE_TOOLS_REPORT_TYPES_H_
#define AIMHUE_TOOLS_REPORT_TYPES_H_

#include <aimhue/target.h>

#include <array>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <string>
#include <vector>

#include "arguments.h"

namespace aimhue {
namespace tool {

using TargetBlock = std::array<TargetLxy, 4>;  // red, green, blue, white

// Whether all twelve values of the block are finite.
inline bool TargetsFinite(const TargetBlock& block) {
  for (const TargetLxy& target : block) {
    if (!std::isfinite(target.L) || !std::isfinite(target.x) || !std::isfinite(target.y)) {
      return false;
    }
  }
  return true;
}

// Dead LEDs (X, Y and Z all 0) per primary, red, green, blue.
struct DeadLedSummary {
  std::array<int64_t, 3> found{};     // before any repair
  std::array<int64_t, 3> remaining{}; // after the repair (equal to found without one)
  bool repaired = false;              // marked in the state planes and median-filtered
};

// One timed step of a command.
struct TimedStep {
  std::string name;
  double seconds = 0.0;
};

// Runs `step` and appends its wall-clock time to `timings` under `name`.
template <typename Step>
void Timed(std::vector<TimedStep>& timings, const char* name, Step&& step) {
  const auto start = std::chrono::steady_clock::now();
  step();
  const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
  timings.push_back({name, elapsed.count()});
}

// Everything the calibration (demo and calibrate) reports.
struct CalibrationReport {
  std::string source;            // what was measured: meter files or a synthetic screen
  ScreenSize screen;             // LED columns and rows
  DeadLedSummary dead;
  std::array<float, 4> percentEnd{};   // required coverage red, green, blue, all
  std::array<float, 4> fractions{};    // interpolation fractions red, green, blue, fourth
  WhitePoint white;
  std::string gamut;             // the standard whose primaries are the targets; empty: searched
  float scale = 1.0f;
  bool uncapped = false;
  float ngThresh = 0.0f;
  TargetBlock searchStart{};     // the primaries' mean chromaticities (search start)
  TargetBlock searchEnd{};       // the search's final points
  TargetBlock targets{};         // after fractions and white point
  Coverage coverage{};
  float ngLimit = 0.0f;
  bool ng = false;               // the NG verdict of this same measurement
  // LEDs the search's outlier mask left out per primary (-1: none ran).
  std::array<int32_t, 3> outliers{-1, -1, -1};
  int64_t ledsMissingTargets = 0;  // LEDs whose own gamut misses a target
  std::vector<TimedStep> timings;
  std::vector<std::string> outputs;  // files written
};

// Coverage of stored targets on one measurement, with or without an NG
// verdict (judge and coverage).
struct CoverageReport {
  std::string source;
  std::string targetsFile;
  std::string maskFile;          // empty without a mask
  ScreenSize screen;
  std::array<int64_t, 3> deadLeds{};
  TargetBlock targets{};
  Coverage coverage{};
  bool judged = false;           // ngLimit and ng are set
  float ngLimit = 0.0f;
  bool ng = false;
};

}  // namespace tool
}  // namespace aimhue

#endif  // AIMHUE_TOOLS_REPORT_TYPES_H_
