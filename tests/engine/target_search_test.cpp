#include "engine/aimhue.h"
#include "engine/primary_means.h"
#include "engine/subsample.h"
#include "support/chroma_sets.h"
#include "support/literal_search_stages.h"

namespace aimhue {
namespace {

using testing::SameBits;

// The coverage of `targets` over the working set's LEDs that the search keeps.
Coverage KeptCoverage(const Aimhue& handle, const synthetic::ScreenChroma& sets, const TargetBlock& targets) {
  ChromaLxy red, green, blue;
  Subsample(sets[0], sets[1], sets[2], red, green, blue);
  const TargetBlock means = {MeanLxy(red), MeanLxy(green), MeanLxy(blue), TargetLxy{}};
  Coverage coverage{};
  EXPECT_EQ(PercentOfTarget(&red, &green, &blue, &targets[0].L, coverage,
                            OutlierMask(handle, red, green, blue, means)),
            kOk);
  return coverage;
}

// Whole screens, one subsampled (100250 LEDs: step 2): with percentEnd 1 the
// targets are the corners, which nearly every kept LED holds; a lower share
// moves each target outwards to that share; running again changes nothing.
TEST(TargetSearch, ReachesTheRequiredShareOfTheKeptLedsDeterministically) {
  for (const auto& [rows, cols] : {std::pair<int, int>{60, 80}, {250, 401}}) {
    const synthetic::ScreenChroma sets = testing::SyntheticSets(testing::SmallScreen(rows, cols, 42));
    Aimhue handle;
    ASSERT_EQ(handle.Search(&sets[0], &sets[1], &sets[2]), kOk);
    const TargetBlock corners = handle.searchEnd;
    const Coverage shared = KeptCoverage(handle, sets, corners);
    EXPECT_GT(std::min({shared.red, shared.green, shared.blue}), 0.98f) << rows;
    EXPECT_GT(shared.all, 0.95f) << rows;
    handle.percentEnd = {0.9f, 0.9f, 0.9f, 0.9f};
    ASSERT_EQ(handle.Search(&sets[0], &sets[1], &sets[2]), kOk);
    const Coverage reached = KeptCoverage(handle, sets, handle.searchEnd);
    for (const float share : {reached.red, reached.green, reached.blue})
      EXPECT_NEAR(share, 0.9f, handle.percentTol) << rows;
    EXPECT_GT(handle.searchEnd[0].x, corners[0].x);
    EXPECT_LT(handle.searchEnd[1].x, corners[1].x);
    EXPECT_LT(handle.searchEnd[2].x, corners[2].x);
    EXPECT_TRUE(SameBits(handle.target, handle.searchEnd));
    ChromaLxy red, green, blue;
    Subsample(sets[0], sets[1], sets[2], red, green, blue);
    const TargetBlock means = {MeanLxy(red), MeanLxy(green), MeanLxy(blue), TargetLxy{}};
    for (int p = 0; p < 3; ++p) EXPECT_TRUE(SameBits(handle.searchStart[p], means[p])) << p;
    for (int p = 0; p < 3; ++p) EXPECT_EQ(handle.searchEnd[p].L, 0.0f);
    for (const TargetBlock* block : {&handle.target, &handle.searchEnd, &handle.searchStart}) {
      EXPECT_TRUE(SameBits((*block)[3], TargetLxy{0, 0, 0}));
    }
    const Aimhue first = handle;
    ASSERT_EQ(handle.Search(&sets[0], &sets[1], &sets[2]), kOk);
    EXPECT_TRUE(SameBits(first, handle));
  }
}

// The search against its stages in their plain forms (the fences by a full
// sort, the corners by a 32-bit raster and a labelling, a full coverage
// count per step), bit for bit, at the default and at a lower share.
TEST(TargetSearch, MatchesThePlainStagesBitForBit) {
  for (const uint64_t seed : {7u, 8u}) {
    const synthetic::ScreenChroma sets = testing::SyntheticSets(testing::SmallScreen(60, 80, seed));
    const TargetBlock means = {MeanLxy(sets[0]), MeanLxy(sets[1]), MeanLxy(sets[2]), TargetLxy{}};
    cv::Mat mask(sets[0].L.size(), CV_8UC1, cv::Scalar(255));
    for (int p = 0; p < 3; ++p) {
      const cv::Mat distances = ChromaDistance(sets[p], means[p]);
      mask.setTo(0, distances >= literal::Fence(distances));
    }
    TargetBlock corners = {};
    literal::GamutCorners(corners, mask, sets[0], sets[1], sets[2], means);
    for (const float share : {1.0f, 0.9f}) {
      Aimhue handle;
      handle.percentEnd = {share, share, share, share};
      TargetBlock expected = {};
      literal::SearchTargets(handle, expected, mask, sets[0], sets[1], sets[2], means, corners);
      ASSERT_EQ(handle.Search(&sets[0], &sets[1], &sets[2]), kOk);
      for (int p = 0; p < 3; ++p) {
        EXPECT_TRUE(SameBits(handle.searchStart[p], means[p])) << seed << " " << p;
        EXPECT_EQ(handle.searchEnd[p].x, expected[p].x) << seed << " " << share << " " << p;
        EXPECT_EQ(handle.searchEnd[p].y, expected[p].y) << seed << " " << share << " " << p;
      }
    }
  }
}

}  // namespace
}  // namespace aimhue
