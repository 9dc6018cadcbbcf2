// The coverage count: how many LEDs have a gamut (the triangle of their own
// red, green and blue chromaticities) that holds each target.
#ifndef AIMHUE_SRC_ENGINE_PERCENT_OF_TARGET_H_
#define AIMHUE_SRC_ENGINE_PERCENT_OF_TARGET_H_

#include <aimhue/target.h>

#include <cstdint>

#include <opencv2/core.hpp>

namespace aimhue {

struct ChromaLxy;

// A chromaticity point (x, y) in 32-bit floats.
struct Chromaticity {
  float x;
  float y;
};

// The four coverage fractions from the counts and the number of counted
// LEDs: each division in 64-bit floating point, each quotient stored as a
// 32-bit float (0 / 0 gives NaN).
Coverage CoverageFromCounts(int32_t red, int32_t green, int32_t blue, int32_t all,
                            int64_t counted);

// Whether q lies in the triangle p0, p1, p2, boundary included (barycentric
// test; a triangle of zero area holds no point).
bool InGamut(Chromaticity p0, Chromaticity p1, Chromaticity p2, Chromaticity q);

// Counts, over the LEDs where `mask` (8-bit, the panel's size) is non-zero,
// the fractions whose gamut holds the red, green and blue targets of the
// twelve-float block `targets` (only their x, y are read), and all three.
// An empty mask counts every LED. Status: 1 for a null set or block, 12 for
// an empty set (tested red, blue, green), 9 when the L planes or the mask
// differ in size from the red L plane; `out` is written only on success. A
// mask of zeros gives four NaN fractions (0 / 0) with status 0. Beyond the
// L planes, every x and y plane must have the red L plane's size and all
// planes must be 32-bit float, and a mask must be 8-bit single-channel;
// otherwise 9, so that nothing is read outside a plane.
int PercentOfTarget(const ChromaLxy* red, const ChromaLxy* green, const ChromaLxy* blue,
                    const float* targets, Coverage& out, const cv::Mat& mask);

}  // namespace aimhue

#endif  // AIMHUE_SRC_ENGINE_PERCENT_OF_TARGET_H_
