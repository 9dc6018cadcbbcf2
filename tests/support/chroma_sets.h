// Test helpers for the engine: ChromaLxy sets built straight from planes,
// and the plain, literal coverage count that the fast count must match.
#ifndef AIMHUE_TESTS_SUPPORT_CHROMA_SETS_H_
#define AIMHUE_TESTS_SUPPORT_CHROMA_SETS_H_

#include <aimhue/target.h>

#include <array>
#include <cstdint>
#include <random>

#include <opencv2/core.hpp>

#include "engine/percent_of_target.h"
#include "meter/chroma_lxy.h"

namespace aimhue::testing {

// A set with the given x and y planes and an L plane of ones of their size.
ChromaLxy SetFromPlanes(const cv::Mat& x, const cv::Mat& y);

// A rows x cols set in which every LED has the chromaticity (x, y).
ChromaLxy UniformSet(int rows, int cols, float x, float y);

// A twelve-float target block with the given red, green and blue x, y, L 1
// and a white of (1, 0.3127, 0.329).
std::array<float, 12> TargetBlockOf(Chromaticity red, Chromaticity green, Chromaticity blue);

// The barycentric gamut test exactly as worded: edges in 32-bit, dot
// products in 32-bit then widened, weights in 64-bit, range tests, then
// u + v <= 1.
bool LiteralInGamut(Chromaticity p0, Chromaticity p1, Chromaticity p2, Chromaticity q);

// The coverage count exactly as worded, on inputs that passed the checks:
// an all-255 mask when none is given, N decreased per masked LED, 32-bit
// counters, each quotient in 64-bit stored as 32-bit.
Coverage LiteralCoverage(const ChromaLxy& red, const ChromaLxy& green, const ChromaLxy& blue,
                         const float* targets, const cv::Mat& mask);

// The four fractions as raw bits, so that NaN compares equal to NaN.
std::array<uint32_t, 4> Bits(const Coverage& coverage);

// A random panel for comparing the count with its twin: random rows and
// columns, targets and LED chromaticities drawn from a mixture that hits
// corners and edges exactly (dyadic points), collinear and zero-area LED
// triangles, NaN chromaticities (a zero sum), realistic LEDs around the
// targets, and (on request) a random mask.
struct RandomPanel {
  ChromaLxy red;
  ChromaLxy green;
  ChromaLxy blue;
  std::array<float, 12> targets;
  cv::Mat mask;  // empty when every LED counts
};
RandomPanel MakeRandomPanel(std::mt19937& random, bool withMask);

}  // namespace aimhue::testing

#endif  // AIMHUE_TESTS_SUPPORT_CHROMA_SETS_H_
