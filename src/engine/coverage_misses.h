// Where the coverage count's misses are: per LED, the targets its own gamut
// does not hold.
#ifndef AIMHUE_SRC_ENGINE_COVERAGE_MISSES_H_
#define AIMHUE_SRC_ENGINE_COVERAGE_MISSES_H_

#include <cstdint>

#include <opencv2/core.hpp>

namespace aimhue {

struct ChromaLxy;

// Writes one byte per LED to `misses` (rows x cols of the red L plane, row
// by row): the Colour bits (kRed, kGreen, kBlue) of the red, green and blue
// targets of the twelve-float block `targets` that InGamut finds outside
// the LED's triangle, the rule of PercentOfTarget. An LED where `mask` (8-bit,
// the panel's size; empty for every LED) is 0 gets 0. The inputs are checked
// as for PercentOfTarget (1, 12, 9), and nothing is written on failure;
// `misses` must have room for rows x cols bytes.
int CoverageMisses(const ChromaLxy* red, const ChromaLxy* green, const ChromaLxy* blue,
                   const float* targets, const cv::Mat& mask, uint8_t* misses);

}  // namespace aimhue

#endif  // AIMHUE_SRC_ENGINE_COVERAGE_MISSES_H_
