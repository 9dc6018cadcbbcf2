#include <aimhue/status.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "engine/aimhue.h"
#include "support/log_capture.h"

namespace aimhue {
namespace {

using ::aimhue::testing::LogCapture;

constexpr TargetLxy kD65{0.0f, 0.3127f, 0.3290f};

// The white point exactly as worded, for comparing bit for bit: rescale
// blue, green, red in 32-bit; tristimulus values in 32-bit for a primary
// with positive L (zero otherwise); S, a, b in 32-bit then widened; the
// LU inverse formed, then applied; the cap in 64-bit with whiteScale
// widened; gains applied in 64-bit and stored as 32-bit.
TargetBlock LiteralWhite(TargetBlock t, float scale, TargetLxy white, bool uncapped,
                         float whiteScale) {
  t[2].L = t[2].L * scale;
  t[1].L = t[1].L * scale;
  t[0].L = t[0].L * scale;
  const float lsum = t[1].L + t[0].L + t[2].L;
  cv::Mat a(3, 3, CV_64F);
  for (int i = 0; i < 3; ++i) {
    float X = 0.0f;
    float Y = 0.0f;
    float Z = 0.0f;
    if (t[i].L > 0.0f) {
      const float k = t[i].L / t[i].y;
      X = k * t[i].x;
      Y = t[i].L;
      Z = (1.0f - t[i].x - t[i].y) * k;
    }
    const float S = Y + X + Z;
    a.at<double>(0, i) = static_cast<double>(Y);
    a.at<double>(1, i) = static_cast<double>(S * white.x - X);
    a.at<double>(2, i) = static_cast<double>(S * white.y - Y);
  }
  const cv::Mat inverse = a.inv(cv::DECOMP_LU);
  const cv::Mat g = inverse * (cv::Mat_<double>(3, 1) << static_cast<double>(lsum), 0.0, 0.0);
  double gain[3] = {g.at<double>(0), g.at<double>(1), g.at<double>(2)};
  if (!uncapped) {
    double m = gain[0];
    m = gain[1] > m ? gain[1] : m;
    m = gain[2] > m ? gain[2] : m;
    const double factor = m > static_cast<double>(whiteScale) ? static_cast<double>(whiteScale) / m : 1.0;
    for (double& each : gain) each = each * factor;
  }
  for (int i = 0; i < 3; ++i) t[i].L = static_cast<float>(static_cast<double>(t[i].L) * gain[i]);
  t[3] = {t[1].L + t[0].L + t[2].L, white.x, white.y};
  return t;
}

class WhitePoint : public ::testing::Test {
 protected:
  WhitePoint() {
    engine_.target = {{{10.0f, 0.64f, 0.33f}, {10.0f, 0.30f, 0.60f}, {10.0f, 0.15f, 0.06f},
                       {-1.0f, -1.0f, -1.0f}}};
  }
  bool Unchanged(const Aimhue& before) const {
    return std::memcmp(&before, &engine_, sizeof before) == 0;
  }
  Aimhue engine_;
};

TEST_F(WhitePoint, UncappedGainsMixTheWantedWhiteAtTheSameLuminance) {
  LogCapture log;
  ASSERT_EQ(engine_.CalcWhite(1.0f, &kD65, true), kOk);
  EXPECT_EQ(log.Infos(), std::vector<std::string>{"Aimhue::CalcWhite"});
  EXPECT_TRUE(log.Errors().empty());
  EXPECT_NEAR(engine_.target[0].L, 6.38f, 0.01f);
  EXPECT_NEAR(engine_.target[1].L, 21.46f, 0.01f);
  EXPECT_NEAR(engine_.target[2].L, 2.17f, 0.01f);
  // (L_green + L_red) + L_blue in 32-bit floats: one unit below 30.
  EXPECT_EQ(engine_.target[3].L, 29.999998f);
  EXPECT_EQ(engine_.target[3].x, 0.3127f);
  EXPECT_EQ(engine_.target[3].y, 0.3290f);
  EXPECT_EQ(engine_.target[0].x, 0.64f);  // the primaries' chromaticities stay
  EXPECT_EQ(engine_.target[2].y, 0.06f);

  // The mixture of the three new primaries has the wanted chromaticity.
  double X = 0.0;
  double Y = 0.0;
  double Z = 0.0;
  for (int primary = 0; primary < 3; ++primary) {
    const TargetLxy& p = engine_.target[primary];
    X += p.L / p.y * p.x;
    Y += p.L;
    Z += p.L / p.y * (1.0 - p.x - p.y);
  }
  EXPECT_NEAR(X / (X + Y + Z), 0.3127, 1e-6);
  EXPECT_NEAR(Y / (X + Y + Z), 0.3290, 1e-6);
}

TEST(WhitePointTwin, MatchesTheLiteralArithmeticBitForBit) {
  std::mt19937 random(5);
  auto uniform = [&](float low, float high) {
    return std::uniform_real_distribution<float>(low, high)(random);
  };
  for (int trial = 0; trial < 20000; ++trial) {
    Aimhue engine;
    engine.whiteScale = uniform(0.5f, 3.0f);
    const float centres[3][2] = {{0.66f, 0.32f}, {0.22f, 0.68f}, {0.14f, 0.06f}};
    for (int i = 0; i < 3; ++i) {
      // Now and then a dark primary (L 0 or negative).
      const float L = trial % 97 == i ? -uniform(0.0f, 5.0f) : uniform(0.0f, 500.0f);
      engine.target[i] = {L, centres[i][0] + uniform(-0.05f, 0.05f),
                          centres[i][1] + uniform(-0.03f, 0.03f)};
    }
    engine.target[3] = {uniform(0.0f, 9.0f), uniform(0.0f, 1.0f), uniform(0.0f, 1.0f)};
    const TargetLxy white{0.0f, uniform(0.25f, 0.40f), uniform(0.25f, 0.40f)};
    const float scale = trial % 5 == 0 ? 1.0f : uniform(0.01f, 1.0f);
    const bool uncapped = trial % 2 == 0;
    const TargetBlock expected = LiteralWhite(engine.target, scale, white, uncapped, engine.whiteScale);
    ASSERT_EQ(engine.CalcWhite(scale, &white, uncapped), kOk);
    ASSERT_EQ(std::memcmp(&expected, &engine.target, sizeof expected), 0) << "trial " << trial;
  }
}

TEST_F(WhitePoint, CappedGainsShrinkTogetherSoNoneExceedsWhiteScale) {
  ASSERT_EQ(engine_.CalcWhite(1.0f, &kD65, false), kOk);
  EXPECT_NEAR(engine_.target[0].L, 3.27f, 0.01f);
  EXPECT_NEAR(engine_.target[1].L, 11.0f, 1e-5f);
  EXPECT_NEAR(engine_.target[2].L, 1.11f, 0.01f);
  EXPECT_NEAR(engine_.target[3].L, 15.38f, 0.01f);
  EXPECT_EQ(engine_.target[3].x, 0.3127f);
  EXPECT_EQ(engine_.target[3].y, 0.3290f);

  // Gains below whiteScale are left as they are.
  Aimhue low = engine_;
  low.target = {{{10.0f, 0.64f, 0.33f}, {10.0f, 0.30f, 0.60f}, {10.0f, 0.15f, 0.06f}, {}}};
  Aimhue high = low;
  high.whiteScale = 3.0f;
  ASSERT_EQ(high.CalcWhite(1.0f, &kD65, false), kOk);
  ASSERT_EQ(low.CalcWhite(1.0f, &kD65, true), kOk);
  EXPECT_EQ(std::memcmp(&high.target, &low.target, sizeof low.target), 0);
}

TEST_F(WhitePoint, ScaleRescalesFirstAndOutOfRangeScalesChangeNothing) {
  Aimhue half = engine_;
  ASSERT_EQ(half.CalcWhite(0.5f, &kD65, true), kOk);
  EXPECT_NEAR(half.target[3].L, 15.0f, 1e-5f);
  EXPECT_NEAR(half.target[1].L, 10.73f, 0.01f);

  const Aimhue before = engine_;
  for (float scale : {1.0001f, 0.0f, -1.0f, std::numeric_limits<float>::infinity()}) {
    LogCapture log;
    EXPECT_EQ(engine_.CalcWhite(scale, &kD65, true), kOutOfRange) << scale;
    EXPECT_EQ(log.Infos(), std::vector<std::string>{"Aimhue::CalcWhite"});
    EXPECT_TRUE(log.Errors().empty());
    EXPECT_TRUE(Unchanged(before)) << scale;
  }
  EXPECT_EQ(engine_.CalcWhite(std::nanf(""), &kD65, true), kOk);  // a NaN scale passes
}

TEST_F(WhitePoint, NullWhiteIsRefusedWithTheRecordUnchanged) {
  const Aimhue before = engine_;
  EXPECT_EQ(engine_.CalcWhite(1.0f, nullptr, true), kNullInput);
  EXPECT_TRUE(Unchanged(before));
  EXPECT_EQ(engine_.CalcWhite(2.0f, nullptr, true), kOutOfRange);  // the scale is checked first
}

TEST_F(WhitePoint, TheWhitesOwnLuminanceHasNoEffect) {
  Aimhue other = engine_;
  const TargetLxy bright{1000.0f, kD65.x, kD65.y};
  ASSERT_EQ(engine_.CalcWhite(0.8f, &kD65, false), kOk);
  ASSERT_EQ(other.CalcWhite(0.8f, &bright, false), kOk);
  EXPECT_TRUE(Unchanged(other));
}

TEST_F(WhitePoint, AWhiteOnOnePrimaryTakesOnlyThatPrimary) {
  const TargetLxy onRed{0.0f, 0.64f, 0.33f};
  ASSERT_EQ(engine_.CalcWhite(1.0f, &onRed, true), kOk);
  EXPECT_NEAR(engine_.target[0].L, 30.0f, 1e-4f);
  EXPECT_NEAR(engine_.target[1].L, 0.0f, 1e-4f);
  EXPECT_NEAR(engine_.target[2].L, 0.0f, 1e-4f);
}

TEST_F(WhitePoint, ASingularSystemGivesZeroLuminances) {
  // Two primaries of one chromaticity: no unique mixture.
  engine_.target[2] = {10.0f, 0.64f, 0.33f};
  ASSERT_EQ(engine_.CalcWhite(1.0f, &kD65, true), kOk);
  for (int point = 0; point < 4; ++point) EXPECT_EQ(engine_.target[point].L, 0.0f) << point;
  EXPECT_EQ(engine_.target[3].x, 0.3127f);

  // A primary without positive luminance contributes nothing, which makes
  // the system singular as well.
  Aimhue dark;
  dark.target = {{{10.0f, 0.64f, 0.33f}, {0.0f, 0.30f, 0.60f}, {10.0f, 0.15f, 0.06f}, {}}};
  ASSERT_EQ(dark.CalcWhite(1.0f, &kD65, true), kOk);
  for (int point = 0; point < 4; ++point) EXPECT_EQ(dark.target[point].L, 0.0f) << point;
  dark.target = {{{-5.0f, 0.64f, 0.33f}, {10.0f, 0.30f, 0.60f}, {10.0f, 0.15f, 0.06f}, {}}};
  ASSERT_EQ(dark.CalcWhite(1.0f, &kD65, false), kOk);
  for (int point = 0; point < 4; ++point) EXPECT_EQ(dark.target[point].L, 0.0f) << point;
}

}  // namespace
}  // namespace aimhue
