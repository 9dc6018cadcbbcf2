#include "gamut_plot.h"

#include <gtest/gtest.h>

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

}  // namespace
}  // namespace tool
}  // namespace aimhue
