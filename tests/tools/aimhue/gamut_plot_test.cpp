#include "gamut_plot.h"

#include <gtest/gtest.h>

#include <cmath>

#include <opencv2/imgproc.hpp>

#include "spectral_locus.h"

namespace aimhue {
namespace tool {
namespace {

TEST(LedChromaticities, SkipsDeadLedsAndHonoursTheLimit) {
  cv::Mat X(2, 3, CV_32FC1, cv::Scalar(1.0f));
  cv::Mat Y(2, 3, CV_32FC1, cv::Scalar(2.0f));
  cv::Mat Z(2, 3, CV_32FC1, cv::Scalar(1.0f));
  X.at<float>(0, 1) = Y.at<float>(0, 1) = Z.at<float>(0, 1) = 0.0f;  // dead
  const auto all = LedChromaticities(X, Y, Z, 100);
  ASSERT_EQ(all.size(), 5u);
  EXPECT_EQ(all[0], cv::Point2f(0.25f, 0.5f));
  EXPECT_EQ(LedChromaticities(X, Y, Z, 3).size(), 3u);  // LEDs 0, 2, 4
  EXPECT_TRUE(LedChromaticities(X, Y, cv::Mat(), 100).empty());
}

TEST(SpectralLocus, HoldsEveryReferenceGamut) {
  const auto& locus = SpectralLocus();
  // Every reference gamut lies inside the locus, up to the 5 nm polygon's
  // chords: the BT.2020 primaries are monochromatic and sit on it.
  std::vector<cv::Point2f> outline;
  for (const SpectralPoint& point : locus) outline.emplace_back(point.x, point.y);
  for (const ReferenceGamut& gamut : ReferenceGamuts()) {
    for (const float* corner : {gamut.red, gamut.green, gamut.blue, gamut.white}) {
      EXPECT_GE(cv::pointPolygonTest(outline, cv::Point2f(corner[0], corner[1]), true), -0.002)
          << gamut.name;
    }
  }
}

}  // namespace
}  // namespace tool
}  // namespace aimhue
