#include "engine/gamut_table.h"

#include "support/chroma_sets.h"

namespace aimhue {
namespace {

using namespace ::aimhue::testing;  // NOLINT: the engine's test helpers

TEST(GamutTable, MatchesTheLiteralCountAsTheTargetsMove) {
  ForRandomInputs(11, 1000, [](std::mt19937& random, int trial) {
    const RandomPanel panel = MakeRandomPanel(random, trial % 2 == 0);
    GamutTable table;
    ASSERT_EQ(table.Build(&panel.red, &panel.green, &panel.blue, panel.mask), kOk);
    ASSERT_EQ(table.counted(), panel.mask.empty() ? panel.red.L.total() : cv::countNonZero(panel.mask));
    const RandomPanel other = MakeRandomPanel(random, false);  // targets moved elsewhere
    for (const float* t : {panel.targets.data(), other.targets.data()}) {
      const Coverage expected = LiteralCoverage(panel.red, panel.green, panel.blue, t, panel.mask);
      ASSERT_TRUE(SameBits(table.Count(t), expected));
      ASSERT_TRUE(SameBits(table.Fraction({t[1], t[2]}), expected.red));
    }
  });
}

TEST(GamutTable, FailedBuildKeepsThePreviousTable) {
  const ChromaLxy red = UniformSet(2, 3, 0.64f, 0.33f), green = UniformSet(2, 3, 0.30f, 0.60f);
  const ChromaLxy blue = UniformSet(2, 3, 0.15f, 0.06f), wide = UniformSet(2, 4, 0.15f, 0.06f), empty;
  GamutTable table;
  ASSERT_EQ(table.Build(&red, &green, &blue, cv::Mat()), kOk);
  EXPECT_EQ(table.Build(nullptr, &green, &blue, cv::Mat()), kNullInput);
  EXPECT_EQ(table.Build(&red, &empty, &blue, cv::Mat()), kEmptyPlane);
  EXPECT_EQ(table.Build(&red, &green, &wide, cv::Mat()), kOutOfRange);
  EXPECT_EQ(table.Build(&red, &green, &blue, cv::Mat::ones(3, 2, CV_8U)), kOutOfRange);
  EXPECT_EQ(table.counted(), 6);
  EXPECT_EQ(table.CountInside({0.3f, 0.3f}), 6);
}

}  // namespace
}  // namespace aimhue
