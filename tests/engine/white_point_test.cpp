#include "engine/aimhue.h"
#include "support/chroma_sets.h"
#include "support/log_capture.h"

namespace aimhue {
namespace {

using namespace ::aimhue::testing;  // NOLINT: the engine's test helpers

constexpr TargetLxy kD65{0.0f, 0.3127f, 0.3290f};
const TargetBlock kSrgb = {{{10.0f, 0.64f, 0.33f}, {10.0f, 0.30f, 0.60f}, {10.0f, 0.15f, 0.06f}, {}}};

// The white point as worded: rescale blue, green, red in 32-bit; X, Y, Z in
// 32-bit for a primary with positive L (zero otherwise); S, a, b in 32-bit
// then widened; the LU inverse formed, then applied; the cap in 64-bit with
// whiteScale widened; gains applied in 64-bit and stored as 32-bit.
TargetBlock LiteralWhite(TargetBlock t, float scale, TargetLxy white, bool uncapped, float whiteScale) {
  for (int i = 2; i >= 0; --i) t[i].L = t[i].L * scale;
  const float lsum = t[1].L + t[0].L + t[2].L;
  cv::Mat a(3, 3, CV_64F);
  for (int i = 0; i < 3; ++i) {
    const float k = t[i].L > 0.0f ? t[i].L / t[i].y : 0.0f;
    const float X = t[i].L > 0.0f ? k * t[i].x : 0.0f, Y = t[i].L > 0.0f ? t[i].L : 0.0f;
    const float Z = t[i].L > 0.0f ? (1.0f - t[i].x - t[i].y) * k : 0.0f, S = Y + X + Z;
    a.at<double>(0, i) = Y;
    a.at<double>(1, i) = S * white.x - X;
    a.at<double>(2, i) = S * white.y - Y;
  }
  const cv::Mat inverse = a.inv(cv::DECOMP_LU);
  const cv::Mat g = inverse * (cv::Mat_<double>(3, 1) << lsum, 0.0, 0.0);
  const double m = std::max(std::max(g.at<double>(0), g.at<double>(1)), g.at<double>(2));
  const double factor = !uncapped && m > double{whiteScale} ? double{whiteScale} / m : 1.0;
  for (int i = 0; i < 3; ++i) t[i].L = static_cast<float>(double{t[i].L} * (g.at<double>(i) * factor));
  t[3] = {t[1].L + t[0].L + t[2].L, white.x, white.y};
  return t;
}

TEST(WhitePoint, MatchesTheLiteralArithmeticBitForBit) {
  ForRandomInputs(5, 5000, [](std::mt19937& random, int trial) {
    Aimhue engine;
    engine.whiteScale = Uniform(random, 0.5f, 3.0f);
    const float centres[3][2] = {{0.66f, 0.32f}, {0.22f, 0.68f}, {0.14f, 0.06f}};
    for (int i = 0; i < 3; ++i) {  // now and then a dark primary (L 0 or negative)
      const float L = trial % 37 == i ? -Uniform(random, 0.0f, 5.0f) : Uniform(random, 0.0f, 500.0f);
      engine.target[i] = {L, centres[i][0] + Uniform(random, -0.05f, 0.05f),
                          centres[i][1] + Uniform(random, -0.03f, 0.03f)};
    }
    engine.target[3] = {Uniform(random, 0.0f, 9.0f), Uniform(random, 0.0f, 1.0f),
                        Uniform(random, 0.0f, 1.0f)};
    const TargetLxy white{Uniform(random, 0.0f, 1000.0f),  // the white's own L has no effect
                          Uniform(random, 0.25f, 0.40f), Uniform(random, 0.25f, 0.40f)};
    const float scale = trial % 5 == 0 ? 1.0f : Uniform(random, 0.01f, 1.0f);
    const TargetBlock expected = LiteralWhite(engine.target, scale, white, trial % 2 == 0, engine.whiteScale);
    ASSERT_EQ(engine.CalcWhite(scale, &white, trial % 2 == 0), kOk);
    ASSERT_TRUE(SameBits(expected, engine.target));
  });
}

TEST(WhitePoint, SrgbPrimariesMixTheWhiteUncappedOrCapped) {
  Aimhue engine;
  engine.target = kSrgb;
  ASSERT_EQ(engine.CalcWhite(1.0f, &kD65, true), kOk);
  EXPECT_TRUE(SameBits(engine.target[3], TargetLxy{29.999998f, 0.3127f, 0.3290f}));  // one unit below 30
  EXPECT_EQ(engine.target[0].x, 0.64f);                                              // chromaticities stay
  EXPECT_EQ(engine.target[2].y, 0.06f);
  double X = 0.0, Y = 0.0, S = 0.0;  // the mixture has the wanted chromaticity
  for (const TargetLxy& t : {engine.target[0], engine.target[1], engine.target[2]}) {
    X += t.L / t.y * t.x;
    Y += t.L;
    S += t.L / t.y;  // X + Y + Z
  }
  EXPECT_NEAR(X / S, 0.3127, 1e-6);
  EXPECT_NEAR(Y / S, 0.3290, 1e-6);

  // Capped, the gains shrink together so that none exceeds whiteScale (1.1).
  engine.target = kSrgb;
  ASSERT_EQ(engine.CalcWhite(1.0f, &kD65, false), kOk);
  EXPECT_NEAR(engine.target[1].L, 11.0f, 1e-5f);
}

TEST(WhitePoint, RefusesScaleThenNullLeavingTheRecordAndRescalesFirst) {
  Aimhue engine;
  engine.target = kSrgb;
  const Aimhue before = engine;
  for (float scale : {1.0001f, 0.0f, -1.0f, std::numeric_limits<float>::infinity()}) {
    LogCapture log;
    EXPECT_EQ(engine.CalcWhite(scale, &kD65, true), kOutOfRange) << scale;
    EXPECT_EQ(log.Infos(), std::vector<std::string>{"Aimhue::CalcWhite"});
    EXPECT_TRUE(log.Errors().empty());
  }
  EXPECT_EQ(engine.CalcWhite(1.0f, nullptr, true), kNullInput);
  EXPECT_EQ(engine.CalcWhite(2.0f, nullptr, true), kOutOfRange);  // the scale is checked first
  EXPECT_TRUE(SameBits(before, engine));
  ASSERT_EQ(engine.CalcWhite(0.5f, &kD65, true), kOk);
  EXPECT_NEAR(engine.target[3].L, 15.0f, 1e-5f);
  EXPECT_NEAR(engine.target[1].L, 10.73f, 0.01f);
  EXPECT_EQ(engine.CalcWhite(std::nanf(""), &kD65, true), kOk);  // a NaN scale passes
}

// Two primaries of one chromaticity: no unique mixture, zero luminances. (A
// primary without positive luminance is among the literal comparison's blocks.)
TEST(WhitePoint, SingularSystemsGiveZeroLuminances) {
  Aimhue engine;
  engine.target = {{{10.0f, 0.64f, 0.33f}, {10.0f, 0.30f, 0.60f}, {10.0f, 0.64f, 0.33f}, {}}};
  ASSERT_EQ(engine.CalcWhite(1.0f, &kD65, true), kOk);
  for (int p = 0; p < 4; ++p) EXPECT_EQ(engine.target[p].L, 0.0f) << p;
  EXPECT_EQ(engine.target[3].x, 0.3127f);
}

}  // namespace
}  // namespace aimhue
