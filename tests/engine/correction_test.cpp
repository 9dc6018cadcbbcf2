// The per-LED correction: exact results on constructed LEDs, the luminance
// scale and dimming, fixed point, brightness mode, the predicted
// differences, and every refusal.
#include <aimhue/api.h>
#include <aimhue/colorimetry.h>
#include <aimhue/correction.h>
#include <aimhue/status.h>
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <random>

#include "engine/correction_led.h"
#include "support/log_capture.h"
#include "support/test_meters.h"

namespace aimhue::testing {
namespace {


const TargetLxy kTargets[4] = {
    {30, 0.62f, 0.33f}, {60, 0.30f, 0.58f}, {10, 0.16f, 0.09f}, {100, 0.3127f, 0.329f}};
const cv::Matx33d kT(TargetMatrix(kTargets).data());

// An LED whose emitters sit at random points within `spread` of wide
// primaries (whose gamut holds kTargets when spread <= 0.01).
cv::Matx33d RandomLed(std::mt19937& random, double spread) {
  const double wide[3][3] = {{0.69, 0.30, 40}, {0.17, 0.72, 90}, {0.135, 0.05, 8}};
  std::uniform_real_distribution<double> offset(-spread, spread), gain(0.7, 1.3);
  cv::Matx33d m;
  for (int j = 0; j < 3; ++j) {
    const double x = wide[j][0] + offset(random), y = wide[j][1] + offset(random);
    const double luminance = wide[j][2] * gain(random);
    m(0, j) = x * luminance / y;
    m(1, j) = luminance;
    m(2, j) = (1 - x - y) * luminance / y;
  }
  return m;
}

double MaxRowSum(const cv::Matx33d& c) {
  const cv::Matx31d sums = c * cv::Matx31d(1, 1, 1);
  return std::max({sums(0), sums(1), sums(2)});
}

// Nine meters of rows x cols LEDs whose measured matrices come from `led`.
struct Screen {
  std::array<std::array<LedMeter, 3>, 3> meters;
  const LedMeter* triples[3][3];

  Screen(int rows, int cols, const std::function<cv::Matx33d(int, int)>& led) {
    for (int e = 0; e < 3; ++e) {
      for (int c = 0; c < 3; ++c) {
        meters[e][c] = MakeMeter(1u << c, 1u << e, rows, cols);
        triples[e][c] = &meters[e][c];
      }
    }
    for (int row = 0; row < rows; ++row) {
      for (int col = 0; col < cols; ++col) {
        const cv::Matx33d m = led(row, col);
        for (int i = 0; i < 9; ++i)
          meters[i % 3][i / 3].chroma.at<float>(row, col) = float(m.val[i]);
      }
    }
  }
  cv::Matx33d Measured(int row, int col) const {
    cv::Matx33d m;
    for (int i = 0; i < 9; ++i) m.val[i] = meters[i % 3][i / 3].chroma.at<float>(row, col);
    return m;
  }
  int Correct(const CorrectionSettings& settings, Correction& out,
              const TargetLxy* targets = kTargets) const {
    return CalcCorrection(targets, triples[0], triples[1], triples[2], settings, &out);
  }
};

cv::Matx33d Coefficients(const Correction& result, int row, int col) {
  return cv::Matx33d(cv::Matx<float, 3, 3>(result.coeff.ptr<float>(row) + 9 * col));
}

TEST(CorrectionTest, ConstructedLedsGiveExactCoefficients) {
  for (double factor : {1.0, 2.0}) {
    const Screen screen(2, 3, [&](int, int) { return kT * factor; });
    Correction result;
    ASSERT_EQ(screen.Correct({1.0f, CorrectionMode::Chroma, 0}, result), kOk);
    EXPECT_EQ(result.scale, 1.0f);
    EXPECT_LE(cv::norm(Coefficients(result, 1, 2), cv::Matx33d::eye() / factor, cv::NORM_INF),
              1e-7);
    // (An LED exactly at the targets sits on its gamut's border: rounding
    // may clip its off-diagonal entries, which are 0 either way.)
    EXPECT_EQ(result.counts.corrected, 6);
    EXPECT_EQ(result.counts.dimmed, 0);
    EXPECT_NEAR(result.deltaEAfter.at<cv::Vec4f>(0, 0)[3], 0.0f, 1e-4);
  }
  // Random LEDs with the targets inside their gamut: M C = T before rounding.
  std::mt19937 random(7);
  for (int trial = 0; trial < 1000; ++trial) {
    const cv::Matx33d m = RandomLed(random, 0.01);
    Matrix3 measured, c;
    std::copy(m.val, m.val + 9, measured.begin());
    double rowSumMax = 0;
    ASSERT_EQ(SkipFlag(measured), 0);
    ASSERT_EQ(SolveLed(measured, TargetMatrix(kTargets), CorrectionMode::Chroma, c, rowSumMax), 0);
    EXPECT_LE(cv::norm(m * cv::Matx33d(c.data()), kT, cv::NORM_INF),
              1e-9 * cv::norm(kT, cv::NORM_INF));
    EXPECT_EQ(rowSumMax, MaxRowSum(cv::Matx33d(c.data())));
  }
}

TEST(CorrectionTest, UnclippedColumnsAgreeWithTheCoverageCount) {
  std::mt19937 random(11);
  const Screen screen(40, 50, [&](int, int) { return RandomLed(random, 0.04); });
  Correction result;
  ASSERT_EQ(screen.Correct(CorrectionSettings{}, result), kOk);
  float coverage[4];
  ASSERT_EQ(AimhueCalcPercentOfTarget(screen.triples[0], screen.triples[1], screen.triples[2],
                                      &kTargets[0].L, coverage, nullptr, 3),
            kOk);
  const int64_t clipped[3] = {result.counts.clippedRed, result.counts.clippedGreen,
                              result.counts.clippedBlue};
  for (int j = 0; j < 3; ++j) {
    EXPECT_GT(clipped[j], 0) << j;
    EXPECT_EQ(static_cast<float>(2000 - clipped[j]) / 2000.0f, coverage[j]) << j;
  }
}

TEST(CorrectionTest, QuantileBoundsTheDimmedShareAndDimmingKeepsChromaticity) {
  std::mt19937 random(3);
  const Screen screen(30, 40, [&](int, int) { return RandomLed(random, 0.01); });
  for (float quantile : {0.5f, 0.9f, 0.999f, 1.0f}) {
    Correction result;
    ASSERT_EQ(screen.Correct({quantile, CorrectionMode::Chroma, 0}, result), kOk);
    EXPECT_LE(result.counts.dimmed, std::floor((1.0 - quantile) * 1200)) << quantile;
    EXPECT_EQ(result.counts.dimmed > 0, quantile < 1.0f) << quantile;
    EXPECT_FLOAT_EQ(result.targets[3].L, 100 * result.scale);
    for (int row = 0; row < 30; ++row) {
      for (int col = 0; col < 40; ++col) {
        const cv::Matx33d c = Coefficients(result, row, col);
        const float gain = result.gain.at<float>(row, col);
        EXPECT_EQ(gain == 1.0f, !(result.flags.at<uint8_t>(row, col) & kCorrectionDimmed));
        EXPECT_LE(MaxRowSum(c), 1.0 + 1e-6);
        // Every primary shows its target's chromaticity at gain x k times
        // the target's luminance.
        const cv::Matx33d shown = screen.Measured(row, col) * c;
        EXPECT_LE(cv::norm(shown, kT * (gain * double(result.scale)), cv::NORM_INF), 1e-3);
      }
    }
  }
}

TEST(CorrectionTest, FixedPointRowsNeverExceedFullScale) {
  // Two entries rounded up by 0.4 and one by 0.2 would sum to 256: the one
  // rounded up the most (the first of equals) is lowered.
  std::array<int32_t, 9> levels;
  EXPECT_TRUE(
      QuantiseRows({85.6 / 255, 85.6 / 255, 83.8 / 255, 0.2, 0.1, 0, 0, 0, 1}, 255, levels));
  EXPECT_EQ(levels, (std::array<int32_t, 9>{85, 86, 84, 51, 26, 0, 0, 0, 255}));

  std::mt19937 random(5);
  const Screen screen(20, 30, [&](int, int) { return RandomLed(random, 0.03); });
  for (int bits : {8, 10, 16}) {
    Correction result;
    ASSERT_EQ(screen.Correct({0.95f, CorrectionMode::Chroma, bits}, result), kOk);
    const double full = (1 << bits) - 1;
    for (int row = 0; row < 20; ++row) {
      for (int col = 0; col < 30; ++col) {
        cv::Matx33d stored = Coefficients(result, row, col) * full;
        for (double& level : stored.val) {  // a float holds n / full to 0.005 x full / 2^16
          EXPECT_NEAR(level, std::nearbyint(level), 0.01);
          level = std::nearbyint(level);
        }
        EXPECT_LE(MaxRowSum(stored), full);
      }
    }
  }
}

TEST(CorrectionTest, BrightnessModeScalesEachEmitterAlone) {
  std::mt19937 random(9);
  const Screen screen(4, 5, [&](int, int) { return RandomLed(random, 0.04); });
  Correction result;
  ASSERT_EQ(screen.Correct({1.0f, CorrectionMode::Brightness, 0}, result), kOk);
  EXPECT_EQ(result.counts.clippedRed + result.counts.clippedGreen + result.counts.clippedBlue, 0);
  EXPECT_EQ(result.counts.dimmed, 0);
  const double k = result.scale;
  for (int row = 0; row < 4; ++row) {
    for (int col = 0; col < 5; ++col) {
      const cv::Matx33d m = screen.Measured(row, col);
      const cv::Matx33d expected = cv::Matx33d::diag(
          {kTargets[0].L * k / m(1, 0), kTargets[1].L * k / m(1, 1), kTargets[2].L * k / m(1, 2)});
      EXPECT_LE(cv::norm(Coefficients(result, row, col), expected, cv::NORM_INF), 1e-6);
    }
  }
}

TEST(CorrectionTest, SkippedLedsAreCountedAndBeforeComparesWithTheMedians) {
  // Two good LEDs (an even count: the medians are their means), one of each
  // kind that is skipped, and one dead by its state.
  cv::Matx33d notFinite = kT, zeroRed = kT;
  notFinite(1, 1) = NAN;
  zeroRed(0, 0) = zeroRed(1, 0) = zeroRed(2, 0) = 0;
  const cv::Matx33d leds[6] = {kT, kT * 1.5, {1, 2, 3, 2, 4, 6, 1, 1, 1}, notFinite, zeroRed, kT};
  Screen screen(1, 6, [&](int, int col) { return leds[col]; });
  screen.meters[1][2].state = cv::Mat::zeros(1, 6, CV_8UC1);
  screen.meters[1][2].state.at<uint8_t>(0, 5) = 3;
  Correction result;
  ASSERT_EQ(screen.Correct({1.0f, CorrectionMode::Chroma, 0}, result), kOk);
  const CorrectionCounts& counts = result.counts;
  EXPECT_EQ(
      std::vector<int64_t>({counts.corrected, counts.singular, counts.notFinite, counts.dead}),
      std::vector<int64_t>({2, 1, 1, 2}));
  const uint8_t flags[6] = {
      0, 0, kCorrectionSingular, kCorrectionNotFinite, kCorrectionDead, kCorrectionDead};
  for (int col = 2; col < 6; ++col) {
    EXPECT_EQ(result.flags.at<uint8_t>(0, col), flags[col]) << col;
    EXPECT_EQ(result.gain.at<float>(0, col), 0.0f);
    EXPECT_EQ(cv::norm(Coefficients(result, 0, col), cv::NORM_INF), 0.0);
    EXPECT_TRUE(std::isnan(result.deltaEBefore.at<cv::Vec4f>(0, col)[3]));
    EXPECT_TRUE(std::isnan(result.deltaEAfter.at<cv::Vec4f>(0, col)[0]));
  }
  // The medians are 1.25 T; the first LED's white is 1 / 1.25 of theirs.
  const cv::Matx31d medianWhite = (kT * 1.25) * cv::Matx31d(1, 1, 1);
  const cv::Vec3d white(medianWhite(0), medianWhite(1), medianWhite(2));
  const cv::Vec3d red(kT(0, 0), kT(1, 0), kT(2, 0));
  const cv::Vec4f before = result.deltaEBefore.at<cv::Vec4f>(0, 0);
  EXPECT_NEAR(before[3], CieDe2000(XyzToLab(white / 1.25, white), {100, 0, 0}), 1e-4);
  EXPECT_NEAR(before[0], CieDe2000(XyzToLab(red, white), XyzToLab(red * 1.25, white)), 1e-4);
  // Both LEDs show the targets exactly.
  EXPECT_EQ(result.scale, 1.0f);
  for (int col = 0; col < 2; ++col) {
    for (int j = 0; j < 4; ++j) EXPECT_NEAR(result.deltaEAfter.at<cv::Vec4f>(0, col)[j], 0, 1e-4);
  }
}

TEST(CorrectionTest, RefusalsLeaveTheResultAndLogOneLine) {
  Screen screen(2, 2, [&](int, int) { return kT; });
  Correction previous;
  ASSERT_EQ(screen.Correct(CorrectionSettings{}, previous), kOk);
  const auto expectRefused = [&](int status, const std::string& text,
                                 const CorrectionSettings& settings,
                                 const TargetLxy* targets = kTargets) {
    LogCapture log;
    Correction out = previous;
    EXPECT_EQ(screen.Correct(settings, out, targets), status) << text;
    EXPECT_EQ(log.Errors(), Lines{"CalcCorrection--Error :: " + text});
    EXPECT_EQ(log.Infos(), Lines{"CalcCorrection"});
    EXPECT_EQ(out.coeff.data, previous.coeff.data) << text;
  };
  const CorrectionSettings defaults;
  expectRefused(kNullInput, "input is nullptr", defaults, nullptr);
  screen.triples[2][1] = nullptr;
  expectRefused(kNullInput, "meter is nullptr", defaults);
  screen.triples[2][1] = &screen.meters[2][1];
  {
    LogCapture log;
    EXPECT_EQ(CalcCorrection(kTargets, screen.triples[0], nullptr, screen.triples[2], defaults,
                             &previous),
              kNullInput);
    EXPECT_EQ(CalcCorrection(kTargets, screen.triples[0], screen.triples[1], screen.triples[2],
                             defaults, nullptr),
              kNullInput);
    EXPECT_EQ(log.Errors(), (Lines{"CalcCorrection--Error :: meter triple is nullptr",
                                   "CalcCorrection--Error :: input is nullptr"}));
  }
  for (float quantile : {0.0f, 1.01f, float(NAN)}) {
    expectRefused(kOutOfRange, "quantile not in (0, 1]", {quantile});
  }
  expectRefused(kOutOfRange, "unknown correction mode", {0.5f, CorrectionMode(2), 0});
  for (int bits : {-1, 7, 17}) {
    expectRefused(kOutOfRange, "bits not 0 or 8..16", {0.5f, CorrectionMode::Chroma, bits});
  }
  for (TargetLxy bad : {TargetLxy{0, 0.3f, 0.3f}, TargetLxy{1, 0.3f, 0}, TargetLxy{1, NAN, 0.3f},
                        TargetLxy{INFINITY, 0.3f, 0.3f}}) {
    const TargetLxy targets[4] = {kTargets[0], kTargets[1], bad, kTargets[3]};
    expectRefused(kOutOfRange, "target needs finite values, L > 0 and y > 0", defaults, targets);
  }
  const TargetLxy sameLine[4] = {
      kTargets[0], {60, kTargets[0].x, kTargets[0].y}, kTargets[2], kTargets[3]};
  expectRefused(kOutOfRange, "target primaries are linearly dependent", defaults, sameLine);

  screen.meters[1][0].state = cv::Mat::zeros(2, 3, CV_8UC1);
  expectRefused(kOutOfRange, "state plane differs from chroma in size or is not 8-bit", defaults);
  screen.meters[1][0].state = cv::Mat::ones(2, 2, CV_8UC1);  // every LED dead
  expectRefused(kEmptyInput, "no LED left to correct: all dead, not finite or singular", defaults);
  const std::string badPlane = "chroma planes differ in size or are not 32-bit float";
  screen.meters[2][2].chroma = cv::Mat::zeros(2, 2, CV_64FC1);
  expectRefused(kOutOfRange, badPlane, defaults);
  screen.meters[2][2].chroma = cv::Mat::zeros(2, 1, CV_32FC1);
  expectRefused(kOutOfRange, badPlane, defaults);
  screen.meters[2][2].chroma = cv::Mat();
  expectRefused(kEmptyPlane, "chroma plane is empty", defaults);
}

}  // namespace
}  // namespace aimhue::testing
