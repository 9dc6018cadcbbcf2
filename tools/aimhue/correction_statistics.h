// Figures that summarise a per-LED correction for people: percentiles of the
// colour differences, the share of LEDs within a difference, and the
// uniformity of the white luminance, before and after correction.
//
// Every figure is taken over the LEDs the correction did not skip (skipped
// LEDs carry NaN differences and no luminance); a set without such an LED
// gives NaN figures and a count of 0.
#ifndef AIMHUE_TOOLS_CORRECTION_STATISTICS_H_
#define AIMHUE_TOOLS_CORRECTION_STATISTICS_H_

#include <aimhue/correction.h>

#include <array>
#include <cstdint>
#include <vector>

#include <opencv2/core.hpp>

#include "meter_set.h"

namespace aimhue {
namespace tool {

// The nearest-rank quantile q in (0, 1] of `sorted` (ascending, not empty):
// element ceil(q * n) - 1, so that at least a share q of the values is at or
// below it. Nearest rank reports a value some LED really has, never an
// interpolation between two LEDs.
float NearestRank(const std::vector<float>& sorted, double q);

// p50, p95, p99 and the maximum of a set of values.
struct Percentiles {
  float p50 = 0.0f;
  float p95 = 0.0f;
  float p99 = 0.0f;
  float max = 0.0f;
  int64_t count = 0;  // values taken into account
};

// The percentiles of the finite values of `values` (NaN and infinities are
// left out); `values` is reordered.
Percentiles FinitePercentiles(std::vector<float>& values);

// Spread of a luminance over the LEDs.
struct Uniformity {
  double mean = 0.0;
  double minOverMax = 0.0;      // lowest over highest luminance; 1 is perfectly uniform
  double relativeStdDev = 0.0;  // population standard deviation over the mean
};

// The uniformity of the finite values of `values`.
Uniformity LuminanceUniformity(const std::vector<double>& values);

// Channel order of the colour differences: red, green, blue, white.
constexpr int kDifferenceChannels = 4;

struct CorrectionSummary {
  std::array<Percentiles, kDifferenceChannels> before{};
  std::array<Percentiles, kDifferenceChannels> after{};
  double shareWithin1 = 0.0;  // corrected LEDs whose white difference after is <= 1.0
  double shareWithin2 = 0.0;  // ... <= 2.0
  Uniformity whiteBefore;     // Y of the LED's own white (its three emitters at full drive)
  Uniformity whiteAfter;      // Y of the corrected white, P (1, 1, 1)
  double whiteLuminance = 0.0;  // the scaled targets' white: sum of their three luminances
};

// The white luminance (Y) of every LED the correction did not skip, in
// row-major order: before, the sum of its three emitters' Y; after, the Y of
// M C (1, 1, 1), the measured emitters driven by the stored coefficients.
// The meters are the ones the correction was computed from.
void WhiteLuminances(const Correction& correction, const Meters& meters,
                     std::vector<double>* before, std::vector<double>* after);

CorrectionSummary SummariseCorrection(const Correction& correction, const Meters& meters);

// The finite values of one channel of a CV_32FC4 plane of differences.
std::vector<float> DifferenceChannel(const cv::Mat& differences, int channel);

}  // namespace tool
}  // namespace aimhue

#endif  // AIMHUE_TOOLS_CORRECTION_STATISTICS_H_
