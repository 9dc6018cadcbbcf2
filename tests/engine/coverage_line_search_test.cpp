#include "engine/coverage_line_search.h"

#include "engine/gamut_corners.h"
#include "engine/primary_means.h"
#include "support/chroma_sets.h"
#include "support/literal_search_stages.h"

namespace aimhue {
namespace {

using testing::SameBits;

// 100 LEDs sharing green (0.2, 0.7) and blue (0.15, 0.05), red x 5 at 0.69,
// 85 at 0.70049, 10 at 0.75, all at y 0.3: a red target (x, 0.3) is reached
// by 95 LEDs at x = 0.7, by 10 just past 0.70049. The red line is horizontal.
class RedLineSearch : public ::testing::Test {
 protected:
  RedLineSearch() {
    std::vector<float> redX(5, 0.69f);
    redX.resize(90, 0.70049f);
    redX.resize(100, 0.75f);
    red = testing::SetFromPlanes(cv::Mat(redX, true).reshape(1, 4), cv::Mat(4, 25, CV_32F, cv::Scalar(0.3f)));
    handle.percentEnd = {0.9f, 1.0f, 1.0f, 1.0f};
  }
  TargetBlock Run(bool plain = false) {
    TargetBlock final = {TargetLxy{-1, -1, -1}, TargetLxy{-1, -1, -1}, TargetLxy{-1, -1, -1},
                         TargetLxy{-2, -2, -2}};
    (plain ? literal::SearchTargets : SearchTargets)(handle, final, mask, red, green, blue, means, corners);
    return final;
  }
  ChromaLxy red, green = testing::UniformSet(4, 25, 0.2f, 0.7f),
                 blue = testing::UniformSet(4, 25, 0.15f, 0.05f);
  cv::Mat mask = cv::Mat(4, 25, CV_8UC1, cv::Scalar(255));
  TargetBlock means = {TargetLxy{3, 0.6f, 0.3f}, TargetLxy{4, 0.25f, 0.6f}, TargetLxy{5, 0.2f, 0.1f},
                       TargetLxy{}};
  TargetBlock corners = {TargetLxy{0, 0.7f, 0.3f}, TargetLxy{0, 0.2f, 0.69f}, TargetLxy{0, 0.16f, 0.06f},
                         TargetLxy{9, 9, 9}};
  Aimhue handle;
};

TEST_F(RedLineSearch, StepsOutwardThenHalvesAtTheFirstSignChange) {
  // 0.95 - 0.9 > tolerance: +0.001; at 0.701 only 10 % remain: the sign
  // changes, -0.0005; 0.7005 still 10 %: -0.0005; back at 0.7 (95 %): +0.00025.
  handle.maxIter = 4;
  const TargetBlock final = Run();
  EXPECT_TRUE(SameBits(final[0], TargetLxy{0.0f, 0.7f + 0.001f - 0.0005f - 0.0005f + 0.00025f, 0.3f}));
  EXPECT_TRUE(SameBits(final[1], corners[1]));  // 1.0 >= coverage: the corners
  EXPECT_EQ(final[3].L, -2.0f);                 // white is not written
  // The corner stays at the required share, within tolerance, or without rounds.
  for (const auto& [share, rounds] : {std::pair<float, int>{0.95f, 100}, {0.948f, 100}, {0.9f, 0}}) {
    handle.percentEnd[0] = share;
    handle.maxIter = rounds;
    EXPECT_TRUE(SameBits(Run()[0], corners[0])) << share;
  }
}

TEST_F(RedLineSearch, VerticalLinesAndNoKeptLedRunLikeTheLiteralSearch) {
  means[0] = TargetLxy{3, 0.7f, 0.2f};  // the corner's x: infinite slope
  TargetBlock final = Run();
  EXPECT_TRUE(std::isfinite(final[0].x));
  EXPECT_FALSE(std::isfinite(final[0].y));
  EXPECT_TRUE(SameBits(final, Run(true)));
  means[0] = TargetLxy{3, 0.6f, 0.3f};
  mask.setTo(0);  // NaN coverage all along
  final = Run();
  EXPECT_TRUE(SameBits(final, Run(true)));
  EXPECT_NE(final[0].x, corners[0].x);
}

TEST(SearchTargets, MatchesTheLiteralSearchBitForBit) {
  testing::ForRandomInputs(21, 12, [](std::mt19937& random, int trial) {
    synthetic::ScreenOptions options = testing::SmallScreen(12 + trial, 30 + 2 * trial, 500 + trial);
    options.ledSpread = 0.001f * static_cast<float>(1 + trial % 5);
    const synthetic::ScreenChroma sets = testing::SyntheticSets(options);
    Aimhue handle;
    for (int p = 0; p < 3; ++p) handle.percentEnd[p] = testing::Uniform(random, 0.3f, 1.0f);
    handle.maxIter = testing::Pick(random, 0, 59);
    handle.percentTol = trial % 3 == 0 ? 0.0f : 0.005f;
    const TargetBlock means = {MeanLxy(sets[0]), MeanLxy(sets[1]), MeanLxy(sets[2]), TargetLxy{}};
    const cv::Mat mask = OutlierMask(handle, sets[0], sets[1], sets[2], means);
    TargetBlock corners = {}, fast = {}, literal = {};
    GamutCorners(handle, corners, mask, sets[0], sets[1], sets[2], means);
    SearchTargets(handle, fast, mask, sets[0], sets[1], sets[2], means, corners);
    literal::SearchTargets(handle, literal, mask, sets[0], sets[1], sets[2], means, corners);
    EXPECT_TRUE(SameBits(fast, literal));
  });
}

}  // namespace
}  // namespace aimhue
