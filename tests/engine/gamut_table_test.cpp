#include "engine/gamut_table.h"

#include <aimhue/status.h>
#include <gtest/gtest.h>

#include <random>

#include "support/chroma_sets.h"

namespace aimhue {
namespace {

using ::aimhue::testing::Bits;
using ::aimhue::testing::LiteralCoverage;
using ::aimhue::testing::MakeRandomPanel;
using ::aimhue::testing::RandomPanel;
using ::aimhue::testing::UniformSet;

TEST(GamutTable, MatchesTheLiteralCountOnRandomPanelsAndMovingTargets) {
  std::mt19937 random(11);
  for (int trial = 0; trial < 1500; ++trial) {
    const RandomPanel panel = MakeRandomPanel(random, trial % 2 == 0);
    GamutTable table;
    ASSERT_EQ(table.Build(&panel.red, &panel.green, &panel.blue, panel.mask), kOk);
    const int64_t counted =
        panel.mask.empty() ? panel.red.L.total() : cv::countNonZero(panel.mask);
    ASSERT_EQ(table.counted(), counted);
    // The same table against the panel's targets and against the targets of
    // a second panel, as a search moves them.
    const RandomPanel other = MakeRandomPanel(random, false);
    for (const auto* targets : {panel.targets.data(), other.targets.data()}) {
      const Coverage expected =
          LiteralCoverage(panel.red, panel.green, panel.blue, targets, panel.mask);
      ASSERT_EQ(Bits(table.Count(targets)), Bits(expected)) << "trial " << trial;
      const float red = table.Fraction({targets[1], targets[2]});
      ASSERT_EQ(Bits({red, red, red, red})[0], Bits(expected)[0]) << "trial " << trial;
    }
  }
}

TEST(GamutTable, FailedBuildKeepsThePreviousTable) {
  const ChromaLxy red = UniformSet(2, 3, 0.64f, 0.33f);
  const ChromaLxy green = UniformSet(2, 3, 0.30f, 0.60f);
  const ChromaLxy blue = UniformSet(2, 3, 0.15f, 0.06f);
  const ChromaLxy wide = UniformSet(2, 4, 0.15f, 0.06f);
  const ChromaLxy empty;
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
