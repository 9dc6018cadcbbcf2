#include <aimhue/api.h>
#include <aimhue/screen.h>
#include <aimhue/status.h>
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstring>
#include <vector>

#include "support/chroma_sets.h"
#include "support/log_capture.h"
#include "synthetic/synthetic_screen.h"

namespace aimhue::testing {
namespace {

// A synthetic screen with outliers, as meters and as a screen object.
class ScreenApi : public ::testing::Test {
 protected:
  void SetUp() override {
    // No dead LED: its NaN would make the search's means NaN.
    meters_ = synthetic::GenerateMeters(SmallScreen(48, 64, 7, 16, 16));
    for (int primary = 0; primary < kPrimaryCount; ++primary) {
      for (int axis = 0; axis < 3; ++axis) triples_[primary][axis] = &meters_[primary][axis];
    }
    ASSERT_EQ(AimhueCreateScreen(&screen_), kOk);
    ASSERT_EQ(AimhueCreateHandle(&viaMeters_), kOk);
    ASSERT_EQ(AimhueCreateHandle(&viaScreen_), kOk);
  }
  void TearDown() override {
    AimhueDestroyScreen(screen_);
    AimhueDestroyHandle(viaMeters_);
    AimhueDestroyHandle(viaScreen_);
  }
  void SetAllPrimaries() {
    for (int primary = 0; primary < kPrimaryCount; ++primary) {
      ASSERT_EQ(AimhueScreenSetPrimary(screen_, ColourOfPrimary(primary), triples_[primary]), kOk);
    }
  }
  AimhueResults Results(AimhueHandle handle) {
    AimhueResults results;
    EXPECT_EQ(AimhueGetResults(handle, &results), kOk);
    return results;
  }

  synthetic::ScreenMeters meters_;
  const LedMeter* triples_[3][3];
  AimhueScreen screen_ = nullptr;
  AimhueHandle viaMeters_ = nullptr;
  AimhueHandle viaScreen_ = nullptr;
};

TEST_F(ScreenApi, ResultsAreBitIdenticalToTheMeterTripleFunctions) {
  SetAllPrimaries();
  // The screen holds its own planes: spoiling the meters changes nothing.
  std::vector<cv::Mat> originals;
  for (auto& primary : meters_) {
    for (LedMeter& meter : primary) {
      originals.push_back(meter.chroma.clone());
      meter.chroma.setTo(0.5f);
    }
  }
  ASSERT_EQ(AimhueSearchScreen(viaScreen_, screen_), kOk);
  auto original = originals.begin();
  for (auto& primary : meters_) {
    for (LedMeter& meter : primary) original++->copyTo(meter.chroma);
  }
  ASSERT_EQ(AimhueSearch(viaMeters_, triples_[0], triples_[1], triples_[2], 3), kOk);
  const AimhueResults searched = Results(viaScreen_);
  EXPECT_TRUE(SameBits(searched, Results(viaMeters_)));
  for (int primary = 0; primary < kPrimaryCount; ++primary) {
    EXPECT_GT(searched.outliers[primary], 0);  // the screen has outliers in every primary
  }

  const float fractions[4] = {0.5f, 0.5f, 0.5f, 1.0f};
  const TargetLxy white{0.0f, 0.3127f, 0.3290f};
  for (AimhueHandle handle : {viaMeters_, viaScreen_}) {
    ASSERT_EQ(AimhueSetPercentCalcChroma(handle, fractions), kOk);
    ASSERT_EQ(AimhueCalcWhite(handle, 1.0f, &white, 0), kOk);
    ASSERT_EQ(AimhueSetNGThresh(handle, 0.25f), kOk);
  }
  Coverage ngCoverage{};
  ASSERT_EQ(AimhueCalcPercentNG(viaMeters_, triples_[0], triples_[1], triples_[2], 3), kOk);
  ASSERT_EQ(AimhueCalcPercentNGScreen(viaScreen_, screen_, &ngCoverage), kOk);
  EXPECT_TRUE(SameBits(Results(viaScreen_), Results(viaMeters_)));

  float targets[12];
  float counted[4];
  ASSERT_EQ(AimhueGet(viaMeters_, targets, nullptr), kOk);
  ASSERT_EQ(AimhueCalcPercentOfTarget(triples_[0], triples_[1], triples_[2], targets, counted,
                                      nullptr, 3), kOk);
  EXPECT_EQ(std::memcmp(&ngCoverage, counted, sizeof counted), 0);
  EXPECT_GT(ngCoverage.all, 0.0f);
  EXPECT_LT(ngCoverage.all, 1.0f);

  // The judgement of the same screen, with and without the coverage output.
  bool ngMeters = true;
  bool ngScreen = true;
  Coverage judged{};
  ASSERT_EQ(AimhueJudgeNG(viaMeters_, &ngMeters, triples_[0], triples_[1], triples_[2], 3), kOk);
  ASSERT_EQ(AimhueJudgeNGScreen(viaScreen_, screen_, &ngScreen, &judged), kOk);
  EXPECT_FALSE(ngMeters);
  EXPECT_EQ(ngScreen, ngMeters);
  EXPECT_TRUE(SameBits(judged, ngCoverage));
  ASSERT_EQ(AimhueJudgeNGScreen(viaScreen_, screen_, &ngScreen, nullptr), kOk);
  EXPECT_EQ(Results(viaMeters_).ngLimit, ngCoverage.all - 0.25f);  // judging keeps the limit

  // The NG rules on a coverage counted once give the limit and verdict of
  // the functions that count for themselves, and refuse a NaN.
  AimhueHandle reused = nullptr;
  ASSERT_EQ(AimhueCreateHandle(&reused), kOk);
  ASSERT_EQ(AimhueSetNGThresh(reused, 0.25f), kOk);
  bool ngReused = true;
  ASSERT_EQ(AimhueSetNGLimitFromCoverage(reused, &ngCoverage), kOk);
  ASSERT_EQ(AimhueJudgeCoverage(reused, &ngCoverage, &ngReused), kOk);
  EXPECT_TRUE(SameBits(Results(reused).ngLimit, Results(viaMeters_).ngLimit) && ngReused == ngMeters);
  // Only a coverage of all below the limit fails.
  const float limit = Results(reused).ngLimit;
  const Coverage atLimit{1, 1, 1, limit}, below{1, 1, 1, std::nextafter(limit, 0.0f)};
  bool atNg = true;
  bool belowNg = false;
  ASSERT_EQ(AimhueJudgeCoverage(reused, &atLimit, &atNg) + AimhueJudgeCoverage(reused, &below, &belowNg), kOk);
  EXPECT_TRUE(!atNg && belowNg);
  const Coverage noLeds{NAN, NAN, NAN, NAN};
  LogCapture log;
  EXPECT_EQ(AimhueSetNGLimitFromCoverage(reused, &noLeds) + AimhueJudgeCoverage(reused, &noLeds, &ngReused),
            2 * kOutOfRange);
  EXPECT_EQ(log.Errors().size(), 2u);
  EXPECT_TRUE(SameBits(Results(reused).ngLimit, Results(viaMeters_).ngLimit) && !ngReused);
  AimhueDestroyHandle(reused);

  // A caller's block under a mask.
  std::vector<uint8_t> pixels(48 * 64);
  for (size_t i = 0; i < pixels.size(); ++i) pixels[i] = static_cast<uint8_t>(i % 3);
  const AimhueImage mask{48, 64, 0, static_cast<uint32_t>(pixels.size()), pixels.data()};
  ASSERT_EQ(AimhueCalcPercentOfTarget(triples_[0], triples_[1], triples_[2], targets, counted,
                                      &mask, 3), kOk);
  Coverage masked{};
  std::vector<uint8_t> misses(pixels.size());
  ASSERT_EQ(AimhueCalcScreenCoverage(screen_, targets, &mask, &masked, misses.data(),
                                     misses.size()), kOk);
  EXPECT_EQ(std::memcmp(&masked, counted, sizeof counted), 0);
}

// Taking the meters' planes gives the planes copying gives, bit for bit,
// whether they are written over in place or, when another matrix shares
// one, copied; a refused take leaves the meters whole.
TEST_F(ScreenApi, TakingThePlanesGivesTheSameScreenAndEmptiesTheMeters) {
  SetAllPrimaries();
  synthetic::ScreenMeters taken;
  for (int primary = 0; primary < kPrimaryCount; ++primary) {
    for (int axis = 0; axis < 3; ++axis) {
      ASSERT_EQ(meters_[primary][axis].CopyTo(taken[primary][axis]), kOk);
    }
  }
  const cv::Mat sharedGreenY = taken[1][1].chroma;  // a plane the host keeps seeing
  const cv::Mat greenYBefore = sharedGreenY.clone();
  AimhueScreen second = nullptr;
  ASSERT_EQ(AimhueCreateScreen(&second), kOk);
  LedMeter* const wrong[3] = {&taken[0][0], &taken[0][1], &taken[0][2]};
  LogCapture log;
  EXPECT_EQ(AimhueScreenTakePrimary(second, kGreen, wrong), kOutOfRange);
  EXPECT_EQ(log.Errors(), Lines{"AimhueScreenTakePrimary--Error :: meters of colour 1 given as colour 2"});
  EXPECT_FALSE(taken[0][0].chroma.empty());
  for (int primary = 0; primary < kPrimaryCount; ++primary) {
    LedMeter* const triple[3] = {&taken[primary][0], &taken[primary][1], &taken[primary][2]};
    ASSERT_EQ(AimhueScreenTakePrimary(second, ColourOfPrimary(primary), triple), kOk);
    for (const LedMeter& meter : taken[primary]) EXPECT_TRUE(meter.chroma.empty());
    AimhueScreenPlanes copied{};
    AimhueScreenPlanes took{};
    ASSERT_EQ(AimhueGetScreenPlanes(screen_, ColourOfPrimary(primary), &copied), kOk);
    ASSERT_EQ(AimhueGetScreenPlanes(second, ColourOfPrimary(primary), &took), kOk);
    const size_t bytes = sizeof(float) * 48 * 64;
    EXPECT_EQ(std::memcmp(copied.L, took.L, bytes), 0) << primary;
    EXPECT_EQ(std::memcmp(copied.x, took.x, bytes), 0) << primary;
    EXPECT_EQ(std::memcmp(copied.y, took.y, bytes), 0) << primary;
  }
  EXPECT_EQ(cv::norm(sharedGreenY, greenYBefore, cv::NORM_INF), 0.0);  // copied, not written over
  AimhueScreenPlanes green{};
  ASSERT_EQ(AimhueGetScreenPlanes(second, kGreen, &green), kOk);
  EXPECT_NE(green.L, sharedGreenY.ptr<float>());
  AimhueDestroyScreen(second);
}

// The miss plane is the coverage count LED by LED: over the counted LEDs the
// share without a colour's bit is that colour's fraction, and without any bit
// the fraction of all three; a left-out LED gets 0, a dead one every bit.
TEST_F(ScreenApi, MissPlaneAgreesWithTheCoverageFractions) {
  constexpr int kDeadRow = 5;
  constexpr int kDeadCol = 9;
  for (auto& primary : meters_) {
    for (LedMeter& meter : primary) meter.chroma.at<float>(kDeadRow, kDeadCol) = 0.0f;
  }
  SetAllPrimaries();
  int32_t rows = 0;
  int32_t cols = 0;
  ASSERT_EQ(AimhueScreenSize(screen_, &rows, &cols), kOk);
  ASSERT_EQ(rows, 48);
  ASSERT_EQ(cols, 64);
  // The green planes as combined: L is Y, x and y are X and Y over the sum,
  // and the dead LED has L = 0 and no chromaticity.
  AimhueScreenPlanes green{};
  ASSERT_EQ(AimhueGetScreenPlanes(screen_, kGreen, &green), kOk);
  ASSERT_EQ(green.rows * green.cols, rows * cols);
  const int dead = kDeadRow * cols + kDeadCol;
  EXPECT_EQ(green.L[dead], 0.0f);
  EXPECT_TRUE(std::isnan(green.x[dead]) && std::isnan(green.y[dead]));
  const int led = 2 * cols + 3;
  const float X = meters_[1][0].chroma.at<float>(2, 3), Y = meters_[1][1].chroma.at<float>(2, 3);
  const float sum = X + Y + meters_[1][2].chroma.at<float>(2, 3);
  EXPECT_EQ(green.L[led], Y);
  EXPECT_EQ(green.x[led], X / sum);
  EXPECT_EQ(green.y[led], Y / sum);

  // Targets near the primaries' typical points, so that some LEDs miss each.
  const float targets[12] = {0, 0.690f, 0.300f, 0, 0.170f, 0.720f, 0, 0.135f, 0.050f, 0, 0.3f, 0.3f};
  std::vector<uint8_t> keep(rows * cols, 1);
  keep[0] = 0;
  keep[100] = 0;
  const AimhueImage mask{rows, cols, 0, static_cast<uint32_t>(keep.size()), keep.data()};
  std::vector<uint8_t> misses(keep.size(), 0xEE);
  Coverage coverage{};
  ASSERT_EQ(AimhueCalcScreenCoverage(screen_, targets, &mask, &coverage, misses.data(),
                                     misses.size()), kOk);
  EXPECT_EQ(misses[kDeadRow * cols + kDeadCol], kAllColours);
  EXPECT_EQ(misses[0], 0);
  EXPECT_EQ(misses[100], 0);

  std::array<int, 4> reached = {};
  int counted = 0;
  for (size_t led = 0; led < misses.size(); ++led) {
    ASSERT_EQ(misses[led] & ~kAllColours, 0u);
    if (keep[led] == 0) continue;
    ++counted;
    for (int primary = 0; primary < kPrimaryCount; ++primary) {
      reached[primary] += (misses[led] & ColourOfPrimary(primary)) == 0;
    }
    reached[3] += misses[led] == 0;
  }
  const float fractions[4] = {coverage.red, coverage.green, coverage.blue, coverage.all};
  for (int i = 0; i < 4; ++i) {
    EXPECT_EQ(fractions[i], static_cast<float>(static_cast<double>(reached[i]) / counted)) << i;
    EXPECT_GT(reached[i], 0) << i;
    EXPECT_LT(reached[i], counted) << i;
  }
}

// (Null and missing inputs of every exported function are refused in one table elsewhere.)
TEST_F(ScreenApi, MismatchedPrimariesPlanesAndMasksAreRefused) {
  LogCapture log;
  EXPECT_EQ(AimhueScreenSetPrimary(screen_, kRed | kGreen, triples_[0]), kOutOfRange);
  EXPECT_EQ(AimhueScreenSetPrimary(screen_, kGreen, triples_[0]), kOutOfRange);
  int32_t rows = -1;
  int32_t cols = -1;
  EXPECT_EQ(AimhueScreenSize(screen_, &rows, &cols), kEmptyPlane);
  EXPECT_EQ(rows, -1);
  AimhueScreenPlanes planes{};
  EXPECT_EQ(AimhueGetScreenPlanes(screen_, kRed | kBlue, &planes), kOutOfRange);
  EXPECT_EQ(planes.L, nullptr);
  ASSERT_EQ(AimhueScreenSetPrimary(screen_, kGreen, triples_[1]), kOk);
  ASSERT_EQ(AimhueScreenSetPrimary(screen_, kBlue, triples_[2]), kOk);
  // A red primary of another size does not join the screen.
  const synthetic::ScreenMeters other = synthetic::GenerateMeters(SmallScreen(8, 8, 1, 8, 8));
  const LedMeter* smallRed[3] = {&other[0][0], &other[0][1], &other[0][2]};
  EXPECT_EQ(AimhueScreenSetPrimary(screen_, kRed, smallRed), kOutOfRange);
  // Meter triples of two sizes cannot be searched or counted: the handle
  // keeps its results and the screen fails.
  bool ng = false;
  EXPECT_EQ(AimhueSearch(viaMeters_, smallRed, triples_[1], triples_[2], 3), kOutOfRange);
  EXPECT_EQ(AimhueCalcPercentNG(viaMeters_, smallRed, triples_[1], triples_[2], 3), kOutOfRange);
  EXPECT_EQ(AimhueJudgeNG(viaMeters_, &ng, smallRed, triples_[1], triples_[2], 3), kOk);
  EXPECT_TRUE(ng);
  EXPECT_EQ(log.Errors(), (Lines{"AimhueScreenSetPrimary--Error :: colour 3 is not a primary",
                                 "AimhueScreenSetPrimary--Error :: meters of colour 1 given as colour 2",
                                 "AimhueGetScreenPlanes--Error :: colour 5 is not a primary",
                                 "AimhueScreenSetPrimary--Error :: planes of 8 x 8 on a screen of 48 x 64"}));
  EXPECT_EQ(AimhueSearchScreen(viaScreen_, screen_), kEmptyPlane);
  EXPECT_TRUE(SameBits(Results(viaScreen_), Results(viaMeters_)));

  // With all three: a short miss plane and a mask of the wrong size.
  ASSERT_EQ(AimhueScreenSetPrimary(screen_, kRed, triples_[0]), kOk);
  const float targets[12] = {0, 0.3f, 0.3f, 0, 0.3f, 0.3f, 0, 0.3f, 0.3f, 0, 0.3f, 0.3f};
  std::vector<uint8_t> misses(48 * 64 - 1, 0xEE);
  Coverage coverage{-1, -1, -1, -1};
  EXPECT_EQ(AimhueCalcScreenCoverage(screen_, targets, nullptr, &coverage, misses.data(),
                                     misses.size()), kBufferTooSmall);
  std::vector<uint8_t> pixels(64 * 48, 1);
  const AimhueImage transposed{64, 48, 0, static_cast<uint32_t>(pixels.size()), pixels.data()};
  EXPECT_EQ(AimhueCalcScreenCoverage(screen_, targets, &transposed, &coverage, nullptr, 0),
            kOutOfRange);
  EXPECT_EQ(coverage.all, -1.0f);
  EXPECT_EQ(misses, std::vector<uint8_t>(misses.size(), 0xEE));
}

}  // namespace
}  // namespace aimhue::testing
