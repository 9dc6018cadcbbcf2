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

}  // namespace
}  // namespace aimhue::synthetic
