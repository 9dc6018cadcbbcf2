#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

#include "support/chroma_sets.h"
#include "synthetic/synthetic_chroma.h"

namespace aimhue::synthetic {
namespace {

ScreenOptions Options(int dead, int outliers, uint64_t seed) {
  ScreenOptions options = testing::SmallScreen(90, 160, seed, 15, 20);
  options.deadCount = dead;
  options.outlierCount = outliers;
  return options;
}

bool Identical(const cv::Mat& a, const cv::Mat& b) {
  return a.size() == b.size() && a.type() == b.type() &&
         std::memcmp(a.data, b.data, a.total() * a.elemSize()) == 0;
}

TEST(SyntheticScreen, TheSeedDecidesEveryValue) {
  const ScreenPlanes first = GeneratePlanes(Options(3, 20, 9)), again = GeneratePlanes(Options(3, 20, 9));
  const ScreenPlanes different = GeneratePlanes(Options(3, 20, 10));
  for (int p = 0; p < 3; ++p) {
    EXPECT_TRUE(Identical(first[p].x, again[p].x));
    EXPECT_TRUE(Identical(first[p].luminance, again[p].luminance));
    EXPECT_FALSE(Identical(first[p].y, different[p].y));
  }
}

// Every LED spreads around its primary except the dead ones (NaN, zero
// luminance, zero X, Y, Z, so NaN again once combined) and the outliers.
TEST(SyntheticScreen, SpreadAroundThePrimariesWithDeadLedsAndOutliers) {
  const ScreenOptions options = Options(4, 6, 9);
  const ScreenPlanes planes = GeneratePlanes(options);
  ScreenChroma sets;
  ASSERT_EQ(CombineMeters(MetersFromPlanes(options, planes), sets), 0);
  int dead = 0, far = 0;
  for (int p = 0; p < 3; ++p) {
    ASSERT_EQ(planes[p].x.size(), cv::Size(160, 90));
    ASSERT_EQ(planes[p].x.type(), CV_32FC1);
    double sum = 0.0;
    int counted = 0;
    for (int i = 0; i < 90 * 160; ++i) {
      const float x = planes[p].x.at<float>(i), y = planes[p].y.at<float>(i),
                  L = planes[p].luminance.at<float>(i);
      if (std::isnan(x)) {
        EXPECT_TRUE(std::isnan(y) && std::isnan(sets[p].x.at<float>(i)) && L == 0.0f);
        dead += p == 0;
        continue;
      }
      EXPECT_GT(L, 0.0f);
      far += std::hypot(x - options.primaries[p].x, y - options.primaries[p].y) > 0.02f;
      sum += x;
      ++counted;
    }
    EXPECT_NEAR(sum / counted, options.primaries[p].x, 0.002) << p;
  }
  EXPECT_EQ(dead, 4);
  EXPECT_GE(far, 5);  // two outliers may share an LED
  EXPECT_LE(far, 6);
}

}  // namespace
}  // namespace aimhue::synthetic
