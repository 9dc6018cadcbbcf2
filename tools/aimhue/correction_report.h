// The report of a per-LED correction (`correct` and `demo`), for people and
// as JSON, and the list of the LEDs that stay farthest from the targets.
#ifndef AIMHUE_TOOLS_CORRECTION_REPORT_H_
#define AIMHUE_TOOLS_CORRECTION_REPORT_H_

#include <aimhue/correction.h>

#include <ostream>
#include <string>
#include <vector>

#include <opencv2/core.hpp>

#include "correction_statistics.h"
#include "report.h"

namespace aimhue {
namespace tool {

// One LED of the worst list.
struct WorstLed {
  int row = 0;
  int col = 0;
  uint8_t flags = 0;
  float gain = 0.0f;
  cv::Vec4f before;  // CIEDE2000 red, green, blue, white before correction
  cv::Vec4f after;   // and after
};

// The `count` corrected LEDs with the largest white difference after
// correction, largest first (ties in row-major order); fewer when the
// screen has fewer corrected LEDs.
std::vector<WorstLed> WorstLeds(const Correction& correction, int count);

struct CorrectionReport {
  std::string source;       // the measurement
  std::string targetsFile;  // where the targets came from ("" for the demo's own)
  ScreenSize screen;
  ScreenSize panel;         // 0 x 0 when unknown
  CorrectionSettings settings;
  float scale = 0.0f;
  TargetBlock targets{};    // the scaled targets
  CorrectionCounts counts{};
  CorrectionSummary summary;
  std::vector<WorstLed> worst;
  std::vector<TimedStep> timings;
  std::vector<std::string> outputs;
};

// The report's figures from a correction and the meters it was computed
// from; source, targetsFile, panel, worst, timings and outputs are left to
// the caller.
CorrectionReport MakeCorrectionReport(const Correction& correction, const Meters& meters);

void PrintCorrectionReport(std::ostream& out, const CorrectionReport& report);
ReportJson CorrectionReportJson(const CorrectionReport& report);

// The name of a mode as the --mode option spells it: "chroma", "brightness".
const char* ModeName(CorrectionMode mode);

}  // namespace tool
}  // namespace aimhue

#endif  // AIMHUE_TOOLS_CORRECTION_REPORT_H_
