#include "engine/primary_means.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

#include "common/numeric.h"
#include "meter/chroma_lxy.h"

namespace aimhue {
namespace {

constexpr float kFenceFactor = 3.0f;

// Position nearest(count x fraction), ties to even, at most count - 1.
size_t QuartilePosition(size_t count, double fraction) {
  const double position = NearestEven(static_cast<double>(count) * fraction);
  return std::min(static_cast<size_t>(position), count - 1);
}

// Rejects every LED where any primary's distance meets its threshold.
template <typename Threshold>
cv::Mat RejectFar(const std::array<cv::Mat, 3>& distances,
                  const std::array<Threshold, 3>& thresholds, cv::Size shape) {
  cv::Mat mask(shape, CV_8UC1, cv::Scalar(kLedKept));
  for (int row = 0; row < shape.height; ++row) {
    const float* red = distances[0].ptr<float>(row);
    const float* green = distances[1].ptr<float>(row);
    const float* blue = distances[2].ptr<float>(row);
    uint8_t* keep = mask.ptr<uint8_t>(row);
    for (int col = 0; col < shape.width; ++col) {
      if (red[col] >= thresholds[0] || green[col] >= thresholds[1] ||
          blue[col] >= thresholds[2]) {
        keep[col] = kLedRejected;
      }
    }
  }
  return mask;
}

// The number of distances at or above `threshold`, by RejectFar's test (a
// NaN distance never is).
int32_t CountAtOrAbove(const cv::Mat& distances, float threshold) {
  int32_t count = 0;
  for (int row = 0; row < distances.rows; ++row) {
    const float* d = distances.ptr<float>(row);
    for (int col = 0; col < distances.cols; ++col) count += d[col] >= threshold ? 1 : 0;
  }
  return count;
}

std::array<cv::Mat, 3> Distances(const ChromaLxy& red, const ChromaLxy& green,
                                 const ChromaLxy& blue, const TargetBlock& means) {
  return {ChromaDistance(red, means[0]), ChromaDistance(green, means[1]),
          ChromaDistance(blue, means[2])};
}

}  // namespace

TargetLxy MeanLxy(const ChromaLxy& set) {
  return TargetLxy{static_cast<float>(cv::mean(set.L)[0]), static_cast<float>(cv::mean(set.x)[0]),
                   static_cast<float>(cv::mean(set.y)[0])};
}

cv::Mat ChromaDistance(const ChromaLxy& set, const TargetLxy& mean) {
  cv::Mat distance(set.x.size(), CV_32FC1);
  for (int row = 0; row < distance.rows; ++row) {
    const float* x = set.x.ptr<float>(row);
    const float* y = set.y.ptr<float>(row);
    float* d = distance.ptr<float>(row);
    for (int col = 0; col < distance.cols; ++col) {
      const float dx = x[col] - mean.x;
      const float dy = y[col] - mean.y;
      d[col] = std::sqrt(dx * dx + dy * dy);
    }
  }
  return distance;
}

float DistanceFence(const cv::Mat& distances, std::vector<float>& scratch) {
  const size_t count = distances.total();
  const float nan = std::numeric_limits<float>::quiet_NaN();
  if (count == 0) return nan;
  scratch.resize(count);
  // Row by row: the plane may be a view with gaps between its rows.
  auto out = scratch.begin();
  for (int row = 0; row < distances.rows; ++row) {
    const float* d = distances.ptr<float>(row);
    out = std::copy(d, d + distances.cols, out);
  }
  const size_t q1 = QuartilePosition(count, 0.25);
  const size_t q3 = QuartilePosition(count, 0.75);

  // NaN is moved behind every number first, so that the selection below
  // only ever compares numbers (a NaN breaks the ordering it relies on).
  const auto numbers = std::partition(scratch.begin(), scratch.end(),
                                      [](float v) { return !std::isnan(v); });
  const size_t numberCount = static_cast<size_t>(numbers - scratch.begin());
  float upper = nan;
  float lower = nan;
  if (q3 < numberCount) {
    std::nth_element(scratch.begin(), scratch.begin() + q3, numbers);
    upper = scratch[q3];
  }
  if (q1 < numberCount) {
    // After the selection above every element before q3 is <= s[q3], so the
    // q1-th smallest lies there (q1 <= q3).
    const auto end = q3 < numberCount ? scratch.begin() + q3 + 1 : numbers;
    std::nth_element(scratch.begin(), scratch.begin() + q1, end);
    lower = scratch[q1];
  }
  return upper + kFenceFactor * (upper - lower);
}

cv::Mat OutlierMask(const Aimhue& /*handle*/, const ChromaLxy& red, const ChromaLxy& green,
                    const ChromaLxy& blue, const TargetBlock& means,
                    std::array<int32_t, 3>* rejected) {
  const std::array<cv::Mat, 3> distances = Distances(red, green, blue, means);
  std::vector<float> scratch;
  const std::array<float, 3> fences = {DistanceFence(distances[0], scratch),
                                       DistanceFence(distances[1], scratch),
                                       DistanceFence(distances[2], scratch)};
  if (rejected != nullptr) {
    for (int primary = 0; primary < kPrimaryCount; ++primary) {
      (*rejected)[primary] = CountAtOrAbove(distances[primary], fences[primary]);
    }
  }
  return RejectFar(distances, fences, red.L.size());
}

cv::Mat OutlierMaskSigma(const Aimhue& handle, const ChromaLxy& red, const ChromaLxy& green,
                         const ChromaLxy& blue, const TargetBlock& means) {
  const std::array<cv::Mat, 3> distances = Distances(red, green, blue, means);
  std::array<double, 3> thresholds;
  for (int primary = 0; primary < kPrimaryCount; ++primary) {
    cv::Scalar mean;
    cv::Scalar deviation;
    cv::meanStdDev(distances[primary], mean, deviation);
    thresholds[primary] =
        static_cast<double>(handle.sigmaK[primary]) * deviation[0] + mean[0];
  }
  return RejectFar(distances, thresholds, red.L.size());
}

}  // namespace aimhue
