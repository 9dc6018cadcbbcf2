#include "engine/quick_gamut.h"

#include "support/chroma_sets.h"

namespace aimhue {
namespace {

using namespace ::aimhue::testing;  // NOLINT: the engine's test helpers

// Targets 10^-9 to 10^-5 off an edge, where the 32-bit test is least accurate:
// wherever it is sure it must agree with the full test (a tolerance a few
// times too small already fails here), and it is sure of a good share.
TEST(QuickContains, WhenSureAgreesWithTheFullTestRightAtTheEdges) {
  int sure = 0;
  ForRandomInputs(17, 600000, [&sure](std::mt19937& random, int trial) {
    const Chromaticity t{Uniform(random, 0.1f, 0.7f), Uniform(random, 0.1f, 0.7f)};
    Chromaticity c[3];
    for (Chromaticity& p : c) p = {t.x + Uniform(random, -0.4f, 0.4f), t.y + Uniform(random, -0.4f, 0.4f)};
    const int from = trial % 3;
    PutNearEdge(random, c, from, (from + 1 + trial / 3 % 2) % 3, t, -9.0f, -5.0f, trial % 2 ? -1.0f : 1.0f);
    int32_t certain = 0;
    const int32_t quick = QuickContains(MakeQuickFrame(c[0], c[1], c[2]), t, certain);
    sure += certain != 0;
    ASSERT_TRUE(certain == 0 || (quick != 0) == LiteralInGamut(c[0], c[1], c[2], t));
  });
  EXPECT_GT(sure, 60000);
  // Unsure of collinear, two equal corners, NaN, products beyond the float range.
  const Chromaticity q{0.3f, 0.3f}, r{0.64f, 0.33f}, g{0.3f, 0.6f}, b{0.15f, 0.06f};
  const std::array<Chromaticity, 3> unsure[] = {{{{0.125f, 0.125f}, {0.25f, 0.25f}, {0.5f, 0.5f}}},
                                                {{r, r, b}},
                                                {{{kNaN, 0.33f}, g, b}},
                                                {{{1e30f, 0.0f}, {0.0f, 1e30f}, {0.0f, 0.0f}}}};
  for (const auto& c : unsure) {
    int32_t certain = 1;
    QuickContains(MakeQuickFrame(c[0], c[1], c[2]), q, certain);
    EXPECT_EQ(certain, 0) << c[0].x;
  }
  int32_t certain = 0;
  EXPECT_EQ(QuickContains(MakeQuickFrame(r, g, b), q, certain), 1);
  EXPECT_EQ(certain, 1);
}

}  // namespace
}  // namespace aimhue
