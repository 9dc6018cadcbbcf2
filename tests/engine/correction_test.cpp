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

namespace aimhue {
namespace {

using ::aimhue::testing::LogCapture;
using ::aimhue::testing::MakeMeter;
using Lines = std::vector<std::string>;

const TargetLxy kTargets[4] = {{30, 0.62f, 0.33f}, {60, 0.30f, 0.58f}, {10, 0.16f, 0.09f},
                               {100, 0.3127f, 0.329f}};

cv::Vec3d Tristimulus(double x, double y, double luminance) {
  return {x * luminance / y, luminance, (1 - x - y) * luminance / y};
}

// An LED whose emitters sit at random points within `spread` of wide
// primaries (whose gamut holds kTargets when spread <= 0.01).
Matrix3 RandomLed(std::mt19937& random, double spread) {
  const double wide[3][3] = {{0.69, 0.30, 40}, {0.17, 0.72, 90}, {0.135, 0.05, 8}};
  std::uniform_real_distribution<double> offset(-spread, spread), gain(0.7, 1.3);
  Matrix3 m;
  for (int j = 0; j < 3; ++j) {
    const cv::Vec3d column =
        Tristimulus(wide[j][0] + offset(random), wide[j][1] + offset(random), wide[j][2] * gain(random));
    for (int row = 0; row < 3; ++row) m[3 * row + j] = column[row];
  }
  return m;
}

Matrix3 Scaled(const Matrix3& m, double factor) {
  Matrix3 out = m;
  for (double& value : out) value *= factor;
  return out;
}

// Nine meters of rows x cols LEDs whose measured matrices come from `led`.
struct Screen {
  std::array<std::array<LedMeter, 3>, 3> meters;
  const LedMeter* triples[3][3];

  Screen(int rows, int cols, const std::function<Matrix3(int, int)>& led) {
    const uint32_t types[3] = {CIE_X, CIE_Y, CIE_Z};
    for (int e = 0; e < 3; ++e) {
      for (int c = 0; c < 3; ++c) {
        meters[e][c] = MakeMeter(types[c], 1u << e, rows, cols);
        triples[e][c] = &meters[e][c];
      }
    }
    for (int row = 0; row < rows; ++row) {
      for (int col = 0; col < cols; ++col) {
        const Matrix3 m = led(row, col);
        for (int e = 0; e < 3; ++e) {
          for (int c = 0; c < 3; ++c) meters[e][c].chroma.at<float>(row, col) = float(m[3 * c + e]);
        }
      }
    }
  }
  Matrix3 Measured(int row, int col) const {
    Matrix3 m;
    for (int i = 0; i < 9; ++i) m[i] = meters[i % 3][i / 3].chroma.at<float>(row, col);
    return m;
  }
  int Correct(const CorrectionSettings& settings, Correction& out,
              const TargetLxy* targets = kTargets) const {
    return CalcCorrection(targets, triples[0], triples[1], triples[2], settings, &out);
  }
};

Matrix3 Coefficients(const Correction& result, int row, int col) {
  Matrix3 c;
  const float* stored = result.coeff.ptr<float>(row) + 9 * col;
  for (int i = 0; i < 9; ++i) c[i] = stored[i];
  return c;
}

Matrix3 Product(const Matrix3& a, const Matrix3& b) {
  Matrix3 p{};
  for (int r = 0; r < 3; ++r)
    for (int c = 0; c < 3; ++c)
      for (int i = 0; i < 3; ++i) p[3 * r + c] += a[3 * r + i] * b[3 * i + c];
  return p;
}

TEST(CorrectionTest, ConstructedLedsGiveExactCoefficients) {
  const Matrix3 t = TargetMatrix(kTargets);
  const CorrectionSettings weakestLed{1.0f, CorrectionMode::Chroma, 0};
  for (double factor : {1.0, 2.0}) {
    const Screen screen(2, 3, [&](int, int) { return Scaled(t, factor); });
    Correction result;
    ASSERT_EQ(screen.Correct(weakestLed, result), kOk);
    EXPECT_EQ(result.scale, 1.0f);
    for (int i = 0; i < 9; ++i) {
      EXPECT_NEAR(Coefficients(result, 1, 2)[i], i % 4 == 0 ? 1.0 / factor : 0.0, 1e-7) << i;
    }
    // (An LED exactly at the targets sits on its gamut's border: rounding
    // may clip its off-diagonal entries, which are 0 either way.)
    EXPECT_EQ(result.counts.corrected, 6);
    EXPECT_EQ(result.counts.dimmed, 0);
    EXPECT_NEAR(result.deltaEAfter.at<cv::Vec4f>(0, 0)[3], 0.0f, 1e-4);
  }
  // Random LEDs with the targets inside their gamut: M C = T before rounding.
  std::mt19937 random(7);
  for (int trial = 0; trial < 1000; ++trial) {
    const Matrix3 m = RandomLed(random, 0.01);
    Matrix3 c;
    double rowSumMax = 0;
    ASSERT_EQ(SkipFlag(m), 0);
    ASSERT_EQ(SolveLed(m, t, CorrectionMode::Chroma, c, rowSumMax), 0);
    const Matrix3 shown = Product(m, c);
    for (int i = 0; i < 9; ++i) EXPECT_NEAR(shown[i], t[i], 1e-9 * (1 + std::fabs(t[i])));
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
  const Matrix3 t = TargetMatrix(kTargets);
  for (float quantile : {0.5f, 0.9f, 0.999f, 1.0f}) {
    Correction result;
    ASSERT_EQ(screen.Correct({quantile, CorrectionMode::Chroma, 0}, result), kOk);
    EXPECT_LE(result.counts.dimmed, std::floor((1.0 - quantile) * 1200)) << quantile;
    EXPECT_EQ(result.counts.dimmed > 0, quantile < 1.0f) << quantile;
    EXPECT_FLOAT_EQ(result.targets[3].L, 100 * result.scale);
    for (int row = 0; row < 30; ++row) {
      for (int col = 0; col < 40; ++col) {
        const Matrix3 c = Coefficients(result, row, col);
        const float gain = result.gain.at<float>(row, col);
        const bool dimmed = result.flags.at<uint8_t>(row, col) & kCorrectionDimmed;
        EXPECT_EQ(gain == 1.0f, !dimmed);
        double rowSumMax = 0;
        for (int k = 0; k < 3; ++k) rowSumMax = std::max(rowSumMax, c[3 * k] + c[3 * k + 1] + c[3 * k + 2]);
        EXPECT_LE(rowSumMax, 1.0 + 1e-6);
        // Each primary shows the target chromaticity at gain x k x its luminance.
        const Matrix3 shown = Product(screen.Measured(row, col), c);
        for (int j = 0; j < 3; ++j) {
          const double expected = gain * double(result.scale);
          EXPECT_NEAR(shown[3 + j] / t[3 + j], expected, 1e-5);
          EXPECT_NEAR(shown[j] / t[j], expected, 1e-5);
          EXPECT_NEAR(shown[6 + j] / t[6 + j], expected, 1e-5);
        }
      }
    }
  }
}

TEST(CorrectionTest, FixedPointRowsNeverExceedFullScale) {
  // Two entries rounded up by 0.4 and one by 0.2 would sum to 256: the one
  // rounded up the most (the first of equals) is lowered.
  std::array<int32_t, 9> levels;
  const Matrix3 c = {85.6 / 255, 85.6 / 255, 83.8 / 255, 0.2, 0.1, 0, 0, 0, 1};
  EXPECT_TRUE(QuantiseRows(c, 255, levels));
  EXPECT_EQ(levels, (std::array<int32_t, 9>{85, 86, 84, 51, 26, 0, 0, 0, 255}));

  std::mt19937 random(5);
  const Screen screen(20, 30, [&](int, int) { return RandomLed(random, 0.03); });
  for (int bits : {8, 10, 12, 16}) {
    Correction result;
    ASSERT_EQ(screen.Correct({0.95f, CorrectionMode::Chroma, bits}, result), kOk);
    const double full = (1 << bits) - 1;
    for (int row = 0; row < 20; ++row) {
      for (int col = 0; col < 30; ++col) {
        const Matrix3 stored = Coefficients(result, row, col);
        for (int k = 0; k < 3; ++k) {
          double sum = 0;
          for (int j = 0; j < 3; ++j) {
            const double level = std::nearbyint(stored[3 * k + j] * full);
            EXPECT_EQ(float(level / full), float(stored[3 * k + j]));
            sum += level;
          }
          EXPECT_LE(sum, full);
        }
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
  for (int row = 0; row < 4; ++row) {
    for (int col = 0; col < 5; ++col) {
      const Matrix3 m = screen.Measured(row, col);
      const Matrix3 c = Coefficients(result, row, col);
      for (int i = 0; i < 9; ++i) {
        const int j = i % 3;
        const double expected = i % 4 == 0 ? kTargets[j].L * double(result.scale) / m[3 + j] : 0.0;
        EXPECT_NEAR(c[i], expected, 1e-6 * (1 + expected));
      }
    }
  }
}

TEST(CorrectionTest, BeforeComparesWithTheMediansAndSkippedLedsAreCounted) {
  // Two good LEDs (an even count: the medians are means) and one of each
  // kind that is skipped.
  const Matrix3 t = TargetMatrix(kTargets);
  const Matrix3 singular = {1, 2, 3, 2, 4, 6, 1, 1, 1};
  Matrix3 notFinite = t, zeroRed = t;
  notFinite[4] = NAN;
  zeroRed[0] = zeroRed[3] = zeroRed[6] = 0;
  const Matrix3 leds[6] = {t, Scaled(t, 1.5), singular, notFinite, zeroRed, t};
  Screen screen(1, 6, [&](int, int col) { return leds[col]; });
  screen.meters[1][2].state = cv::Mat::zeros(1, 6, CV_8UC1);
  screen.meters[1][2].state.at<uint8_t>(0, 5) = 3;
  Correction result;
  ASSERT_EQ(screen.Correct({1.0f, CorrectionMode::Chroma, 0}, result), kOk);
  EXPECT_EQ(result.counts.corrected, 2);
  EXPECT_EQ(result.counts.singular, 1);
  EXPECT_EQ(result.counts.notFinite, 1);
  EXPECT_EQ(result.counts.dead, 2);
  const uint8_t flags[6] = {0, 0, kCorrectionSingular, kCorrectionNotFinite, kCorrectionDead,
                            kCorrectionDead};
  for (int col = 0; col < 6; ++col) {
    EXPECT_EQ(result.flags.at<uint8_t>(0, col) & (kCorrectionSkipped | kCorrectionDimmed), flags[col]) << col;
    if (flags[col] == 0) continue;
    EXPECT_EQ(result.gain.at<float>(0, col), 0.0f);
    EXPECT_EQ(cv::countNonZero(result.coeff.reshape(1, 9 * 6).rowRange(9 * col, 9 * col + 9)), 0);
    EXPECT_TRUE(std::isnan(result.deltaEBefore.at<cv::Vec4f>(0, col)[3]));
    EXPECT_TRUE(std::isnan(result.deltaEAfter.at<cv::Vec4f>(0, col)[0]));
  }
  // Medians are 1.25 T: the white of the first LED is 1 / 1.25 of the
  // reference white, and the primaries differ in lightness only.
  const Matrix3 median = Scaled(t, 1.25);
  const cv::Vec3d white(median[0] + median[1] + median[2], median[3] + median[4] + median[5],
                        median[6] + median[7] + median[8]);
  const cv::Vec3d ownWhite = white / 1.25;
  const cv::Vec4f before = result.deltaEBefore.at<cv::Vec4f>(0, 0);
  EXPECT_NEAR(before[3], CieDe2000(XyzToLab(ownWhite, white), {100, 0, 0}), 1e-4);
  const cv::Vec3d red(t[0], t[3], t[6]), medianRed = red * 1.25;
  EXPECT_NEAR(before[0], CieDe2000(XyzToLab(red, white), XyzToLab(medianRed, white)), 1e-4);
  EXPECT_GT(before[0], 1.0f);
  // Both LEDs show the scaled targets exactly; the weaker one sets k.
  EXPECT_NEAR(result.scale, 1.0f, 1e-7);
  for (int col = 0; col < 2; ++col) {
    for (int j = 0; j < 4; ++j) EXPECT_NEAR(result.deltaEAfter.at<cv::Vec4f>(0, col)[j], 0, 1e-4);
  }
}

TEST(CorrectionTest, RefusalsLeaveTheResultAndLogOneLine) {
  const Matrix3 t = TargetMatrix(kTargets);
  Screen screen(2, 2, [&](int, int) { return t; });
  Correction previous;
  ASSERT_EQ(screen.Correct(CorrectionSettings{}, previous), kOk);
  const cv::Mat coeff = previous.coeff;
  const auto expectRefused = [&](int status, const std::string& text, const CorrectionSettings& settings,
                                 const TargetLxy* targets = kTargets) {
    LogCapture log;
    Correction out = previous;
    EXPECT_EQ(screen.Correct(settings, out, targets), status) << text;
    EXPECT_EQ(log.Errors(), Lines{"CalcCorrection--Error :: " + text});
    EXPECT_EQ(log.Infos(), Lines{"CalcCorrection"});
    EXPECT_EQ(out.coeff.data, coeff.data) << text;
    EXPECT_EQ(out.scale, previous.scale);
  };
  const CorrectionSettings defaults;
  expectRefused(kNullInput, "input is nullptr", defaults, nullptr);
  {
    LogCapture log;
    EXPECT_EQ(CalcCorrection(kTargets, screen.triples[0], nullptr, screen.triples[2], defaults, &previous), kNullInput);
    screen.triples[2][1] = nullptr;
    EXPECT_EQ(screen.Correct(defaults, previous), kNullInput);
    screen.triples[2][1] = &screen.meters[2][1];
    EXPECT_EQ(CalcCorrection(kTargets, screen.triples[0], screen.triples[1], screen.triples[2], defaults, nullptr), kNullInput);
    EXPECT_EQ(log.Errors(), (Lines{"CalcCorrection--Error :: meter triple is nullptr",
                                   "CalcCorrection--Error :: meter is nullptr",
                                   "CalcCorrection--Error :: input is nullptr"}));
  }
  for (CorrectionSettings settings : {CorrectionSettings{0.0f}, CorrectionSettings{1.01f},
                                      CorrectionSettings{NAN}}) {
    expectRefused(kOutOfRange, "quantile not in (0, 1]", settings);
  }
  expectRefused(kOutOfRange, "unknown correction mode", {0.5f, CorrectionMode(2), 0});
  for (int bits : {-1, 1, 7, 17}) expectRefused(kOutOfRange, "bits not 0 or 8..16", {0.5f, CorrectionMode::Chroma, bits});
  const std::string badTarget = "target needs finite values, L > 0 and y > 0";
  for (TargetLxy bad : {TargetLxy{0, 0.3f, 0.3f}, TargetLxy{1, 0.3f, 0}, TargetLxy{1, NAN, 0.3f},
                        TargetLxy{INFINITY, 0.3f, 0.3f}}) {
    TargetLxy targets[4] = {kTargets[0], kTargets[1], bad, kTargets[3]};
    expectRefused(kOutOfRange, badTarget, defaults, targets);
  }
  TargetLxy sameLine[4] = {kTargets[0], {60, kTargets[0].x, kTargets[0].y}, kTargets[2], kTargets[3]};
  expectRefused(kOutOfRange, "target primaries are linearly dependent", defaults, sameLine);

  screen.meters[1][0].state = cv::Mat::zeros(2, 3, CV_8UC1);
  expectRefused(kOutOfRange, "state plane differs from chroma in size or is not 8-bit", defaults);
  screen.meters[1][0].state = cv::Mat::ones(2, 2, CV_8UC1);  // every LED dead
  expectRefused(kEmptyInput, "no LED left to correct: all dead, not finite or singular", defaults);
  screen.meters[2][2].chroma = cv::Mat::zeros(2, 2, CV_64FC1);
  expectRefused(kOutOfRange, "chroma planes differ in size or are not 32-bit float", defaults);
  screen.meters[2][2].chroma = cv::Mat::zeros(2, 1, CV_32FC1);
  expectRefused(kOutOfRange, "chroma planes differ in size or are not 32-bit float", defaults);
  screen.meters[2][2].chroma = cv::Mat();
  expectRefused(kEmptyPlane, "chroma plane is empty", defaults);
}

}  // namespace
}  // namespace aimhue
