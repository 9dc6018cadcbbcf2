#include "engine/coverage_line_search.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <random>
#include <vector>

#include "engine/gamut_corners.h"
#include "engine/percent_of_target.h"
#include "engine/primary_means.h"
#include "meter/chroma_lxy.h"
#include "support/literal_search_stages.h"
#include "synthetic/synthetic_chroma.h"

namespace aimhue {
namespace {

bool SameBits(const TargetLxy& a, const TargetLxy& b) { return std::memcmp(&a, &b, sizeof a) == 0; }

// 100 LEDs sharing green (0.2, 0.7) and blue (0.15, 0.05); their red x:
// 5 at 0.69, 85 at 0.70049, 10 at 0.75, all at y 0.3. A red target (x, 0.3)
// is reached by the LEDs whose red x is at least x: 95 at x = 0.7, 10 just
// past 0.70049.
class RedLineSearch : public ::testing::Test {
 protected:
  void SetUp() override {
    std::vector<float> redX(5, 0.69f);
    redX.resize(90, 0.70049f);
    redX.resize(100, 0.75f);
    red.x = cv::Mat(redX, true).reshape(1, 4);
    red.y = cv::Mat(4, 25, CV_32FC1, cv::Scalar(0.3f));
    red.L = red.y.clone();
    green.x = cv::Mat(4, 25, CV_32FC1, cv::Scalar(0.2f));
    green.y = cv::Mat(4, 25, CV_32FC1, cv::Scalar(0.7f));
    green.L = green.y.clone();
    blue.x = cv::Mat(4, 25, CV_32FC1, cv::Scalar(0.15f));
    blue.y = cv::Mat(4, 25, CV_32FC1, cv::Scalar(0.05f));
    blue.L = blue.y.clone();
    mask = cv::Mat(4, 25, CV_8UC1, cv::Scalar(255));
    // The red line is horizontal: mean (0.6, 0.3), corner (0.7, 0.3).
    means = {TargetLxy{3, 0.6f, 0.3f}, TargetLxy{4, 0.25f, 0.6f}, TargetLxy{5, 0.2f, 0.1f},
             TargetLxy{}};
    corners = {TargetLxy{0, 0.7f, 0.3f}, TargetLxy{0, 0.2f, 0.69f}, TargetLxy{0, 0.16f, 0.06f},
               TargetLxy{9, 9, 9}};
    handle.percentEnd = {0.9f, 1.0f, 1.0f, 1.0f};
  }
  TargetBlock Run() {
    TargetBlock final = {TargetLxy{-1, -1, -1}, TargetLxy{-1, -1, -1}, TargetLxy{-1, -1, -1},
                         TargetLxy{-2, -2, -2}};
    SearchTargets(handle, final, mask, red, green, blue, means, corners);
    return final;
  }
  ChromaLxy red, green, blue;
  cv::Mat mask;
  TargetBlock means, corners;
  Aimhue handle;
};

TEST_F(RedLineSearch, StepsOutwardThenHalvesAtTheFirstSignChange) {
  handle.maxIter = 1;  // 0.95 - 0.9 > tolerance: one move of +0.001
  TargetBlock final = Run();
  float x = 0.7f + 0.001f;
  EXPECT_EQ(final[0].x, x);
  EXPECT_EQ(final[0].y, 0.3f);

  handle.maxIter = 2;  // at 0.701 only 10 % remain: the sign changes, step 0.0005
  final = Run();
  x = x - 0.0005f;
  EXPECT_EQ(final[0].x, x);

  handle.maxIter = 4;  // 0.7005 still 10 % (no halving), back at 0.7: 95 %, halves
  final = Run();
  x = x - 0.0005f;
  x = x + 0.00025f;
  EXPECT_EQ(final[0].x, x);
  EXPECT_EQ(final[0].L, 0.0f);  // the corner's L
  // Green and blue need everything (1.0 >= their coverage): their corners.
  EXPECT_TRUE(SameBits(final[1], corners[1]));
  EXPECT_TRUE(SameBits(final[2], corners[2]));
  EXPECT_EQ(final[3].L, -2.0f);  // white is not written
}

TEST_F(RedLineSearch, CornerWithinToleranceOrAtTheRequiredShareIsKept) {
  handle.percentEnd[0] = 0.95f;  // percentEnd >= coverage
  EXPECT_TRUE(SameBits(Run()[0], corners[0]));
  handle.percentEnd[0] = 0.948f;  // searched, but the first error is within 0.005
  EXPECT_TRUE(SameBits(Run()[0], corners[0]));
  handle.percentEnd[0] = 0.9f;
  handle.maxIter = 0;
  EXPECT_TRUE(SameBits(Run()[0], corners[0]));
}

TEST_F(RedLineSearch, VerticalLineRunsItsStepsAndEnds) {
  means[0] = TargetLxy{3, 0.7f, 0.2f};  // same x as the corner: infinite slope
  const TargetBlock final = Run();
  EXPECT_TRUE(std::isfinite(final[0].x));
  EXPECT_FALSE(std::isfinite(final[0].y));
  TargetBlock literal = {};
  literal::SearchTargets(handle, literal, mask, red, green, blue, means, corners);
  EXPECT_TRUE(SameBits(final[0], literal[0]));
}

TEST_F(RedLineSearch, NoKeptLedSearchesWithNanCoverage) {
  mask.setTo(0);
  const TargetBlock final = Run();
  TargetBlock literal = {};
  literal::SearchTargets(handle, literal, mask, red, green, blue, means, corners);
  for (int p = 0; p < 3; ++p) EXPECT_TRUE(SameBits(final[p], literal[p])) << p;
  EXPECT_NE(final[0].x, corners[0].x);
}

TEST(SearchTargets, MatchesTheLiteralSearchBitForBit) {
  std::mt19937 random(21);
  std::uniform_real_distribution<float> share(0.3f, 1.0f);
  for (int trial = 0; trial < 16; ++trial) {
    synthetic::ScreenOptions options;
    options.rows = 12 + trial;
    options.cols = 30 + 2 * trial;
    options.moduleRows = 6;
    options.moduleCols = 10;
    options.seed = 500 + trial;
    options.deadCount = 0;
    options.ledSpread = 0.001f * static_cast<float>(1 + trial % 5);
    const synthetic::ScreenPlanes planes = synthetic::GeneratePlanes(options);
    const synthetic::ScreenChroma sets = synthetic::ChromaFromPlanes(planes);
    Aimhue handle;
    handle.percentEnd = {share(random), share(random), share(random), 1.0f};
    handle.maxIter = static_cast<int>(random() % 60);
    handle.percentTol = trial % 3 == 0 ? 0.0f : 0.005f;
    const TargetBlock means = {MeanLxy(sets[0]), MeanLxy(sets[1]), MeanLxy(sets[2]), TargetLxy{}};
    const cv::Mat mask = OutlierMask(handle, sets[0], sets[1], sets[2], means);
    TargetBlock corners = {};
    GamutCorners(handle, corners, mask, sets[0], sets[1], sets[2], means);
    TargetBlock fast = {};
    TargetBlock literal = {};
    SearchTargets(handle, fast, mask, sets[0], sets[1], sets[2], means, corners);
    literal::SearchTargets(handle, literal, mask, sets[0], sets[1], sets[2], means, corners);
    for (int p = 0; p < 3; ++p) {
      EXPECT_TRUE(SameBits(fast[p], literal[p]))
          << trial << " primary " << p << ": " << fast[p].x << " " << literal[p].x;
    }
  }
}

}  // namespace
}  // namespace aimhue
