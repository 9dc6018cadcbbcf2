#include "correction_statistics.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numeric>


namespace aimhue {
namespace tool {
namespace {

TEST(CorrectionStatistics, PercentilesTakeTheNearestRankOfTheFiniteValues) {
  std::vector<float> values(100);
  std::iota(values.begin(), values.end(), 1.0f);  // 1 ... 100
  std::reverse(values.begin(), values.end());
  values.push_back(NAN);
  values.push_back(INFINITY);
  const Percentiles p = FinitePercentiles(values);
  EXPECT_EQ(p.count, 100);
  EXPECT_EQ(p.p50, 50.0f);  // element ceil(0.5 * 100) - 1 of the sorted values
  EXPECT_EQ(p.p95, 95.0f);
  EXPECT_EQ(p.p99, 99.0f);
  EXPECT_EQ(p.max, 100.0f);
  // Ranks that fall between two values round up, never interpolate.
  std::vector<float> three = {3.0f, 1.0f, 2.0f};
  const Percentiles small = FinitePercentiles(three);
  EXPECT_EQ(small.p50, 2.0f);
  EXPECT_EQ(small.p95, 3.0f);
  EXPECT_EQ(NearestRank({1.0f, 2.0f, 3.0f, 4.0f}, 1e-9), 1.0f);
  std::vector<float> none = {NAN};
  const Percentiles empty = FinitePercentiles(none);
  EXPECT_EQ(empty.count, 0);
  EXPECT_TRUE(std::isnan(empty.p50) && std::isnan(empty.max));
}

// A 1 x 3 screen: LED 0 corrected with the identity (every emitter at full
// drive for its own input), LED 1 dimmed to half, LED 2 skipped.
TEST(CorrectionStatistics, WhiteLuminanceUsesEachEmittersRowSum) {
  Meters meters;
  const float emitter_y[3] = {2.0f, 5.0f, 1.0f};
  for (int p = 0; p < 3; ++p) {
    for (int c = 0; c < 3; ++c) meters[p][c].chroma = cv::Mat(1, 3, CV_32FC1, cv::Scalar(1.0f));
    meters[p][1].chroma = cv::Mat(1, 3, CV_32FC1, cv::Scalar(emitter_y[p]));
  }
  Correction correction;
  correction.coeff = cv::Mat::zeros(1, 3, CV_32FC(9));
  correction.flags = cv::Mat::zeros(1, 3, CV_8UC1);
  float* c = correction.coeff.ptr<float>(0);
  for (int k = 0; k < 3; ++k) {
    c[3 * k + k] = 1.0f;
    c[9 + 3 * k] = 0.25f;      // LED 1: inputs red and green both on emitter k at a quarter
    c[9 + 3 * k + 1] = 0.25f;
  }
  correction.flags.at<uint8_t>(0, 2) = kCorrectionDead;
  std::vector<double> before;
  std::vector<double> after;
  WhiteLuminances(correction, meters, &before, &after);
  EXPECT_EQ(before, (std::vector<double>{8.0, 8.0}));
  EXPECT_EQ(after, (std::vector<double>{8.0, 4.0}));
}

}  // namespace
}  // namespace tool
}  // namespace aimhue
