// What the correction report holds (`correct` and `demo`): the records the
// commands fill in and the report printers read, apart from how they are
// printed.
#ifndef AIMHUE_TOOLS_CORRECTION_REPORT_TYPES_H_
#define AIMHUE_TOOLS_CORRECTION_REPORT_TYPES_H_

#include <aimhue/correction.h>

#include <cstdint>
#include <string>
#include <vector>

#include <opencv2/core.hpp>

#include "correction_statistics.h"
#include "report_types.h"

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

}  // namespace tool
}  // namespace aimhue

#endif  // AIMHUE_TOOLS_CORRECTION_REPORT_TYPES_H_
