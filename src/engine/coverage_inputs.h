// The input checks shared by the coverage count and the gamut table.
#ifndef AIMHUE_SRC_ENGINE_COVERAGE_INPUTS_H_
#define AIMHUE_SRC_ENGINE_COVERAGE_INPUTS_H_

#include <opencv2/core.hpp>

namespace aimhue {

struct ChromaLxy;

// Checks three sets and a mask for a coverage count, in this order: a null
// set (red, blue, green): 1; an empty set (red, blue, green): 12; an L plane of another size than red's,
// or a mask of another size: 9. Beyond that, every x and y plane must have
// the red L plane's size and every plane must be single-channel 32-bit
// float, and a given mask must be 8-bit single-channel: 9 otherwise, so that
// the count never reads outside a plane whatever the caller passes.
int CheckCoverageInputs(const ChromaLxy* red, const ChromaLxy* green, const ChromaLxy* blue,
                        const cv::Mat& mask);

}  // namespace aimhue

#endif  // AIMHUE_SRC_ENGINE_COVERAGE_INPUTS_H_
