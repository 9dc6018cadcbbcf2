#include "engine/primary_means.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include "common/numeric.h"
#include "meter/chroma_lxy.h"
#include "support/chroma_sets.h"
#include "support/literal_search_stages.h"

namespace aimhue {
namespace {

ChromaLxy SetFrom(const std::vector<float>& x, const std::vector<float>& y, int rows = 1) {
  return testing::SetFromPlanes(cv::Mat(x, true).reshape(1, rows), cv::Mat(y, true).reshape(1, rows));
}

cv::Mat Row(std::vector<float> values) { return cv::Mat(values, true).reshape(1, 1); }

TEST(DistanceFence, QuartilePositionsOfTenAndSix) {
  std::vector<float> scratch;
  // N = 10: q1 = nearest(2.5) = 2, q3 = nearest(7.5) = 8: 8 + 3 x (8 - 2).
  EXPECT_EQ(DistanceFence(Row({9, 3, 0, 7, 1, 8, 2, 6, 4, 5}), scratch), 26.0f);
  // N = 6: q1 = nearest(1.5) = 2, q3 = nearest(4.5) = 4: 4 + 3 x (4 - 2).
  EXPECT_EQ(DistanceFence(Row({5, 0, 4, 1, 3, 2}), scratch), 10.0f);
}

TEST(DistanceFence, OneAndTwoLedsClampTheUpperQuartile) {
  std::vector<float> scratch;
  EXPECT_EQ(DistanceFence(Row({0.5f}), scratch), 0.5f);
  EXPECT_TRUE(std::isnan(DistanceFence(cv::Mat(0, 0, CV_32FC1), scratch)));
  // q1 = nearest(0.5) = 0, q3 = nearest(1.5) = 2 -> 1: 3 + 3 x (3 - 1).
  EXPECT_EQ(DistanceFence(Row({3.0f, 1.0f}), scratch), 9.0f);
}

TEST(DistanceFence, NanDistancesOrderLast) {
  std::vector<float> scratch;
  const float nan = std::numeric_limits<float>::quiet_NaN();
  // Sorted: 0 1 2 3 NaN NaN: q1 = 2 -> 2, q3 = 4 -> NaN.
  EXPECT_TRUE(std::isnan(DistanceFence(Row({nan, 3, 0, nan, 2, 1}), scratch)));
  // Sorted: 0 1 2 3 4 6 7 8 9 NaN: q1 = 2 -> 2, q3 = 8 -> 9: 9 + 3 x (9 - 2).
  EXPECT_EQ(DistanceFence(Row({9, 3, 0, 7, 1, 8, 2, 6, 4, nan}), scratch), 30.0f);
}

TEST(DistanceFence, MatchesTheFullSortBitForBit) {
  std::mt19937 random(7);
  std::vector<float> scratch;
  for (int trial = 0; trial < 300; ++trial) {
    const int rows = 1 + trial % 2;
    const int n = rows * (1 + static_cast<int>(random() % 200));
    std::uniform_real_distribution<float> value(0.0f, trial % 2 ? 1.0f : 0.01f);
    std::vector<float> values(n);
    for (float& v : values) v = value(random);
    // Repeated values exercise equal order statistics.
    if (trial % 3 == 0) {
      for (int i = 0; i < n / 2; ++i) values[i] = values[n - 1 - i];
    }
    const cv::Mat distances = cv::Mat(values, true).reshape(1, rows);
    EXPECT_EQ(DistanceFence(distances, scratch), literal::Fence(distances)) << trial;
  }
}

class OutlierMaskTest : public ::testing::Test {
 protected:
  // Ten LEDs in a row, at distance i / 100 from the mean (0.5, 0.5) along x
  // in every primary; fence = 0.08 + 3 x 0.06 = 0.26, so none is rejected.
  void SetUp() override {
    for (int i = 0; i < 10; ++i) {
      x.push_back(0.5f + i / 100.0f);
      y.push_back(0.5f);
    }
    means = {TargetLxy{1, 0.5f, 0.5f}, TargetLxy{1, 0.5f, 0.5f}, TargetLxy{1, 0.5f, 0.5f},
             TargetLxy{}};
  }
  std::vector<float> x;
  std::vector<float> y;
  TargetBlock means;
  Aimhue handle;
};

TEST_F(OutlierMaskTest, AnOutlierInOnePrimaryIsRejectedForAll) {
  std::vector<float> greenX = x;
  greenX[3] = 0.9f;  // distance 0.4 >= fence 0.08 + 3 x (0.08 - 0.02) = 0.26
  const cv::Mat mask =
      OutlierMask(handle, SetFrom(x, y, 2), SetFrom(greenX, y, 2), SetFrom(x, y, 2), means);
  ASSERT_EQ(mask.size(), cv::Size(5, 2));
  ASSERT_EQ(mask.type(), CV_8UC1);
  EXPECT_EQ(cv::countNonZero(mask), 9);
  EXPECT_EQ(mask.at<uint8_t>(0, 3), kLedRejected);
  EXPECT_EQ(mask.at<uint8_t>(0, 4), kLedKept);
}

TEST_F(OutlierMaskTest, AllLedsAtTheMeanRejectsEveryLed) {
  const std::vector<float> atMean(10, 0.5f);
  const cv::Mat mask = OutlierMask(handle, SetFrom(x, y), SetFrom(atMean, y), SetFrom(x, y), means);
  EXPECT_EQ(cv::countNonZero(mask), 0);
}

TEST_F(OutlierMaskTest, NanChromaticityIsKeptAndANanMeanRejectsNothing) {
  const float nan = std::numeric_limits<float>::quiet_NaN();
  std::vector<float> redX = x;
  redX[9] = 5.0f;  // far: rejected while the blue mean is a number
  std::vector<float> blueX = x;
  blueX[2] = nan;  // a dead LED: its blue distance is NaN
  TargetBlock nanBlue = means;
  nanBlue[2].x = nan;
  cv::Mat mask = OutlierMask(handle, SetFrom(redX, y), SetFrom(x, y), SetFrom(blueX, y), means);
  EXPECT_EQ(mask.at<uint8_t>(0, 2), kLedKept);
  EXPECT_EQ(mask.at<uint8_t>(0, 9), kLedRejected);
  mask = OutlierMask(handle, SetFrom(x, y), SetFrom(x, y), SetFrom(blueX, y), nanBlue);
  EXPECT_EQ(cv::countNonZero(mask), 10);
}

TEST_F(OutlierMaskTest, SigmaVariantUsesMeanPlusKDeviations) {
  std::vector<float> redX(10, 0.5f);
  redX[0] = 0.6f;  // distances: one 0.1, nine 0: mu = 0.01, sigma = 0.03
  const ChromaLxy red = SetFrom(redX, y);
  // Green and blue: distances 0 ... 0.09, mu = 0.045, sigma = 0.0287:
  // thresholds far above 0.09 for k = 4.
  const ChromaLxy spread = SetFrom(x, y);
  handle.sigmaK = {2.0f, 4.0f, 4.0f};  // 2 x 0.03 + 0.01 = 0.07 <= 0.1: rejected
  EXPECT_EQ(cv::countNonZero(OutlierMaskSigma(handle, red, spread, spread, means)), 9);
  handle.sigmaK = {4.0f, 4.0f, 4.0f};  // 0.13 > 0.1: kept
  EXPECT_EQ(cv::countNonZero(OutlierMaskSigma(handle, red, spread, spread, means)), 10);
  // Every distance 0: the threshold is 0 and every LED meets it.
  const ChromaLxy still = SetFrom(std::vector<float>(10, 0.5f), y);
  EXPECT_EQ(cv::countNonZero(OutlierMaskSigma(handle, still, spread, spread, means)), 0);
}

}  // namespace
}  // namespace aimhue
