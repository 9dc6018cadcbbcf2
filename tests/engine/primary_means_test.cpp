#include "engine/primary_means.h"

#include <vector>

#include "support/chroma_sets.h"
#include "support/literal_search_stages.h"

namespace aimhue {
namespace {

using testing::kNaN;

cv::Mat Row(const std::vector<float>& values, int rows = 1) { return cv::Mat(values, true).reshape(1, rows); }
ChromaLxy SetFrom(const std::vector<float>& x, const std::vector<float>& y, int rows = 1) {
  return testing::SetFromPlanes(Row(x, rows), Row(y, rows));
}

TEST(DistanceFence, QuartilesOfHandSortedRowsAndTheFullSort) {
  // N = 10: q1 = nearest(2.5) = 2, q3 = nearest(7.5) = 8: 8 + 3 x (8 - 2). N = 2:
  // q3 = nearest(1.5) = 2 clamped to 1. NaN sorts last: q3 of 0 1 2 3 NaN NaN is NaN.
  const std::pair<std::vector<float>, float> cases[] = {
      {{9, 3, 0, 7, 1, 8, 2, 6, 4, 5}, 26.0f}, {{3, 1}, 9.0f}, {{kNaN, 3, 0, kNaN, 2, 1}, kNaN}};
  std::vector<float> scratch;
  for (const auto& [values, fence] : cases) {
    const float got = DistanceFence(Row(values), scratch);
    EXPECT_TRUE(std::isnan(fence) ? std::isnan(got) : got == fence) << values.size() << ": " << got;
  }
  EXPECT_TRUE(std::isnan(DistanceFence(cv::Mat(0, 0, CV_32FC1), scratch)));
  testing::ForRandomInputs(7, 300, [&scratch](std::mt19937& random, int trial) {
    std::vector<float> values((1 + trial % 2) * testing::Pick(random, 1, 200));
    for (float& v : values) v = testing::Uniform(random, 0.0f, trial % 2 ? 1.0f : 0.01f);
    for (size_t i = 0; trial % 3 == 0 && i < values.size() / 2; ++i)
      values[i] = values[values.size() - 1 - i];
    const cv::Mat distances = Row(values, 1 + trial % 2);
    EXPECT_EQ(DistanceFence(distances, scratch), literal::Fence(distances));
  });
}

// Ten LEDs at distance i / 100 from the mean (0.5, 0.5) along x in every
// primary: fence 0.08 + 3 x (0.08 - 0.02) = 0.26 rejects none of them.
class OutlierMaskTest : public ::testing::Test {
 protected:
  OutlierMaskTest() {
    for (int i = 0; i < 10; ++i) x.push_back(0.5f + i / 100.0f);
  }
  std::vector<float> x, y = std::vector<float>(10, 0.5f);
  TargetBlock means = {TargetLxy{1, 0.5f, 0.5f}, TargetLxy{1, 0.5f, 0.5f}, TargetLxy{1, 0.5f, 0.5f},
                       TargetLxy{}};
  Aimhue handle;
};

TEST_F(OutlierMaskTest, RejectsAnOutlierInOnePrimaryForAllKeepsNaNAndSpareANaNMean) {
  std::vector<float> far = x;
  far[3] = 0.9f;  // distance 0.4 >= 0.26
  cv::Mat mask = OutlierMask(handle, SetFrom(x, y, 2), SetFrom(far, y, 2), SetFrom(x, y, 2), means);
  ASSERT_EQ(mask.size(), cv::Size(5, 2));
  EXPECT_EQ(cv::countNonZero(mask), 9);
  EXPECT_EQ(mask.at<uint8_t>(0, 3), kLedRejected);
  // All LEDs at the mean: fence 0, every distance meets it.
  EXPECT_EQ(cv::countNonZero(OutlierMask(handle, SetFrom(x, y), SetFrom(y, y), SetFrom(x, y), means)), 0);
  // A dead LED (NaN distance) is kept; with a NaN mean nothing is rejected.
  far[9] = 5.0f;
  std::vector<float> dead = x;
  dead[2] = kNaN;
  mask = OutlierMask(handle, SetFrom(far, y), SetFrom(x, y), SetFrom(dead, y), means);
  EXPECT_EQ(mask.at<uint8_t>(0, 2), kLedKept);
  EXPECT_EQ(mask.at<uint8_t>(0, 9), kLedRejected);
  means[2].x = kNaN;
  EXPECT_EQ(cv::countNonZero(OutlierMask(handle, SetFrom(x, y), SetFrom(x, y), SetFrom(dead, y), means)), 10);
}

TEST_F(OutlierMaskTest, SigmaVariantUsesMeanPlusKDeviations) {
  std::vector<float> redX(10, 0.5f);
  redX[0] = 0.6f;  // distances one 0.1, nine 0: mu 0.01, sigma 0.03
  const ChromaLxy red = SetFrom(redX, y), spread = SetFrom(x, y), still = SetFrom(y, y);
  // Green and blue: mu 0.045, sigma 0.0287, thresholds far above 0.09 for k = 4.
  handle.sigmaK = {2.0f, 4.0f, 4.0f};  // 0.07 <= 0.1: rejected
  EXPECT_EQ(cv::countNonZero(OutlierMaskSigma(handle, red, spread, spread, means)), 9);
  handle.sigmaK = {4.0f, 4.0f, 4.0f};  // 0.13 > 0.1: kept
  EXPECT_EQ(cv::countNonZero(OutlierMaskSigma(handle, red, spread, spread, means)), 10);
  EXPECT_EQ(cv::countNonZero(OutlierMaskSigma(handle, still, spread, spread, means)), 0);  // threshold 0
}

}  // namespace
}  // namespace aimhue
