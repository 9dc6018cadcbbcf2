// The coverage of a target block on a measurement, counted by the library.
#ifndef AIMHUE_TOOLS_COVERAGE_COUNT_H_
#define AIMHUE_TOOLS_COVERAGE_COUNT_H_

#include <opencv2/core.hpp>

#include <aimhue/screen.h>

#include "arguments.h"
#include "report.h"

namespace aimhue {
namespace tool {

// AimhueCalcScreenCoverage on the screen with `targets`, restricted to the
// non-zero pixels of `mask` unless it is empty. The mask is handed over
// as it is (any element type); the library refuses one that is not 8-bit
// single-channel (status 6) or not of the screen's size (status 9). A
// library status other than 0 ends the command (CommandError, exit status 3).
Coverage CountCoverage(AimhueScreen screen, const TargetBlock& targets, const cv::Mat& mask);

// The coverage of the targets (every LED counted) and the LEDs whose own
// gamut misses at least one of them, from one AimhueCalcScreenCoverage
// call with the per-LED miss plane.
struct CoverageCount {
  Coverage coverage{};
  int64_t ledsMissingTargets = 0;
};
CoverageCount CountCoverageAndMisses(AimhueScreen screen, const TargetLxy (&targets)[4],
                                     const ScreenSize& size);

}  // namespace tool
}  // namespace aimhue

#endif  // AIMHUE_TOOLS_COVERAGE_COUNT_H_
