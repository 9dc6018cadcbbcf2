#include "engine/quick_gamut.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

#include "support/chroma_sets.h"

namespace aimhue {
namespace {

using ::aimhue::testing::LiteralInGamut;

// Targets within 10^-9 to 10^-5 of one of the three edges, on either side:
// where the 32-bit test is least accurate. Wherever it claims to be sure it
// must agree with the full test; a tolerance a few times too small already
// gives wrong answers here.
TEST(QuickContains, WhenSureAgreesWithTheFullTestRightAtTheEdges) {
  std::mt19937 random(17);
  auto uniform = [&](float low, float high) {
    return std::uniform_real_distribution<float>(low, high)(random);
  };
  int64_t sure = 0;
  constexpr int64_t kTrials = 1500000;
  for (int64_t trial = 0; trial < kTrials; ++trial) {
    const Chromaticity target{uniform(0.1f, 0.7f), uniform(0.1f, 0.7f)};
    Chromaticity corner[3];
    for (Chromaticity& p : corner) p = {target.x + uniform(-0.4f, 0.4f), target.y + uniform(-0.4f, 0.4f)};
    // Put the target next to the edge from corner `from` to corner `to`.
    const int from = static_cast<int>(trial % 3);
    const int to = (from + 1 + static_cast<int>(trial / 3 % 2)) % 3;
    const float along = uniform(0.5f, 3.0f);
    const float offset = std::pow(10.0f, uniform(-9.0f, -5.0f)) * (trial % 2 == 0 ? 1.0f : -1.0f);
    const float dx = target.x - corner[from].x;
    const float dy = target.y - corner[from].y;
    corner[to] = {corner[from].x + along * dx - offset * dy, corner[from].y + along * dy + offset * dx};

    int32_t certain = 0;
    const int32_t quick = QuickContains(MakeQuickFrame(corner[0], corner[1], corner[2]), target, certain);
    if (certain == 0) continue;
    ++sure;
    ASSERT_EQ(quick != 0, LiteralInGamut(corner[0], corner[1], corner[2], target))
        << "trial " << trial;
  }
  // The quick test decides a good share even this close to an edge.
  EXPECT_GT(sure, kTrials / 10);
}

TEST(QuickContains, IsUnsureOfDegenerateNaNAndHugeTriangles) {
  const Chromaticity inside{0.3f, 0.3f};
  int32_t sure = 1;
  QuickContains(MakeQuickFrame({0.125f, 0.125f}, {0.25f, 0.25f}, {0.5f, 0.5f}), inside, sure);
  EXPECT_EQ(sure, 0);  // collinear
  sure = 1;
  QuickContains(MakeQuickFrame({0.64f, 0.33f}, {0.64f, 0.33f}, {0.15f, 0.06f}), inside, sure);
  EXPECT_EQ(sure, 0);  // two corners equal
  const float nan = std::numeric_limits<float>::quiet_NaN();
  sure = 1;
  QuickContains(MakeQuickFrame({nan, 0.33f}, {0.3f, 0.6f}, {0.15f, 0.06f}), inside, sure);
  EXPECT_EQ(sure, 0);
  sure = 1;
  QuickContains(MakeQuickFrame({1e30f, 0.0f}, {0.0f, 1e30f}, {0.0f, 0.0f}), inside, sure);
  EXPECT_EQ(sure, 0);  // products beyond the float range
  sure = 0;
  EXPECT_EQ(QuickContains(MakeQuickFrame({0.64f, 0.33f}, {0.3f, 0.6f}, {0.15f, 0.06f}), inside, sure), 1);
  EXPECT_EQ(sure, 1);
}

}  // namespace
}  // namespace aimhue
