// The coverage of a target block on a measurement, counted by the library.
#ifndef AIMHUE_TOOLS_COVERAGE_COUNT_H_
#define AIMHUE_TOOLS_COVERAGE_COUNT_H_

#include <opencv2/core.hpp>

#include "meter_set.h"
#include "report.h"

namespace aimhue {
namespace tool {

// AimhueCalcPercentOfTarget on the nine meters with `targets`, restricted to
// the non-zero pixels of `mask` unless it is empty. The mask is handed over
// as it is (any element type); the library refuses one that is not 8-bit
// single-channel (status 6) or not of the screen's size (status 9). A
// library status other than 0 ends the command (CommandError, exit status 3).
Coverage CountCoverage(const Meters& meters, const TargetBlock& targets, const cv::Mat& mask);

}  // namespace tool
}  // namespace aimhue

#endif  // AIMHUE_TOOLS_COVERAGE_COUNT_H_
