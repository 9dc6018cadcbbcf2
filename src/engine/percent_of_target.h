// The coverage count: how many LEDs have a gamut (the triangle of their own
// red, green and blue chromaticities) that holds each target.
#ifndef AIMHUE_SRC_ENGINE_PERCENT_OF_TARGET_H_
#define AIMHUE_SRC_ENGINE_PERCENT_OF_TARGET_H_

#include <aimhue/target.h>

#include <array>
#include <cstdint>

#include <opencv2/core.hpp>

namespace aimhue {

struct ChromaLxy;

// A chromaticity point (x, y) in 32-bit floats.
struct Chromaticity {
  float x;
  float y;
};

// The twelve floats (red L, x, y, green L, x, y, ...) of a four-point
// target block, as the count reads them.
inline const float* TargetFloats(const std::array<TargetLxy, 4>& block) {
  static_assert(sizeof(block) == 12 * sizeof(float), "a target block is twelve packed floats");
  return &block[0].L;
}

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
// otherwise 9, so that nothing is read outside a plane. Each LED is visited
// once and nothing is allocated: a 32-bit quick test (quick_gamut.h)
// decides nearly every LED, and InGamut's own test settles those it leaves
// unsure, so the counts are exactly those of InGamut on every LED.
//
// `misses`, when not null, must have room for rows x cols bytes (those of
// the red L plane); the same pass writes, row by row, one byte per LED: the
// Colour bits (kRed, kGreen, kBlue) of the targets whose triangle the LED's
// gamut does not hold by the rule of the count, 0 for an LED the mask
// leaves out. Over the counted LEDs, the share without kRed is then the red
// fraction, and so on. Nothing is written to it when the status is not 0.
int PercentOfTarget(const ChromaLxy* red, const ChromaLxy* green, const ChromaLxy* blue,
                    const float* targets, Coverage& out, const cv::Mat& mask,
                    uint8_t* misses = nullptr);

// The instruction sets the count is compiled for. PercentOfTarget runs on
// the widest one the processor offers; every one gives bit-identical
// results (the same IEEE operations per LED in every vector lane, and no
// fused multiply-add).
enum class CountKernel { kPortable, kAvx2, kAvx512 };

// Whether `kernel` can run on this processor (kPortable always can).
bool CountKernelAvailable(CountKernel kernel);

// The widest available kernel.
CountKernel WidestCountKernel();

// PercentOfTarget on a chosen kernel (the portable one when `kernel` is not
// available), so that each can be checked against the others.
int PercentOfTargetOn(CountKernel kernel, const ChromaLxy* red, const ChromaLxy* green,
                      const ChromaLxy* blue, const float* targets, Coverage& out,
                      const cv::Mat& mask, uint8_t* misses = nullptr);

}  // namespace aimhue

#endif  // AIMHUE_SRC_ENGINE_PERCENT_OF_TARGET_H_
