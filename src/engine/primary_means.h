// Second stage of the target search: each primary's mean and the mask of
// LEDs whose chromaticity lies unusually far from a primary's mean.
#ifndef AIMHUE_SRC_ENGINE_PRIMARY_MEANS_H_
#define AIMHUE_SRC_ENGINE_PRIMARY_MEANS_H_

#include <aimhue/target.h>

#include <array>
#include <cstdint>
#include <vector>

#include <opencv2/core.hpp>

#include "engine/aimhue.h"

namespace aimhue {

struct ChromaLxy;

// Mask values of the outlier mask.
constexpr uint8_t kLedKept = 255;
constexpr uint8_t kLedRejected = 0;

// The means of the set's L, x and y planes over all their elements, each
// computed in double precision by cv::mean and stored as a 32-bit float. A
// single NaN in a plane makes that mean NaN (a dead LED, X = Y = Z = 0,
// has NaN chromaticity).
TargetLxy MeanLxy(const ChromaLxy& set);

// The distance plane sqrt((x - mean.x)^2 + (y - mean.y)^2) per LED, a new
// 32-bit float matrix of the set's shape; every step in 32-bit floats
// (difference, products, sum, correctly rounded square root). mean.L is not
// read. Precondition: x and y are 32-bit float planes of one size.
cv::Mat ChromaDistance(const ChromaLxy& set, const TargetLxy& mean);

// The Tukey fence of one primary's distances (NaN when there are none):
// with N the number of distances, q1 = nearest(N x 0.25) and q3 = nearest(N x 0.75)
// (products in double, ties to even), each clamped to N - 1 (only a screen
// of one or two LEDs needs that), and s the distances in ascending order,
// fence = s[q3] + 3.0f x (s[q3] - s[q1]) in 32-bit floats. NaN distances
// order after every number. Reads only the two order statistics (a
// selection, not a full sort). `scratch` is working space that is resized
// as needed and may be reused between calls.
float DistanceFence(const cv::Mat& distances, std::vector<float>& scratch);

// The outlier mask of the working sets (8-bit, the red set's shape): 255
// for an LED that takes part, 0 for an LED whose distance from its mean is
// at or above its primary's fence in any primary (tested red, green, blue).
// Only the far side is fenced, so an LED close to the mean is never
// rejected, and a NaN distance fails every test, so an LED with NaN
// chromaticity is kept. If every distance of a primary is equal (all LEDs
// at the mean), the fence equals them and every LED is rejected. The
// handle is not read. When `rejected` is not null it receives, per primary,
// the number of LEDs at or above that primary's fence (an LED far out in two
// primaries counts in both).
cv::Mat OutlierMask(const Aimhue& handle, const ChromaLxy& red, const ChromaLxy& green,
                    const ChromaLxy& blue, const TargetBlock& means,
                    std::array<int32_t, 3>* rejected = nullptr);

// The spread variant: rejects an LED whose distance is at or above
// k x sigma + mu of its primary (mean mu and population standard deviation
// sigma by cv::meanStdDev, the threshold in double, k the handle's sigmaK).
// Not used by the search.
cv::Mat OutlierMaskSigma(const Aimhue& handle, const ChromaLxy& red, const ChromaLxy& green,
                         const ChromaLxy& blue, const TargetBlock& means);

}  // namespace aimhue

#endif  // AIMHUE_SRC_ENGINE_PRIMARY_MEANS_H_
