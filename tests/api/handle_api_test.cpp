#include <aimhue/api.h>
#include <aimhue/status.h>
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstring>
#include <limits>

#include "engine/aimhue.h"
#include "support/log_capture.h"

namespace aimhue {
namespace {

class HandleApi : public ::testing::Test {
 protected:
  void SetUp() override { ASSERT_EQ(AimhueCreateHandle(&handle_), kOk); }
  void TearDown() override { AimhueDestroyHandle(handle_); }

  std::array<float, 12> Targets() {
    std::array<float, 12> targets;
    targets.fill(-1.0f);
    EXPECT_EQ(AimhueGet(handle_, targets.data(), nullptr), kOk);
    return targets;
  }

  AimhueHandle handle_ = nullptr;
};

// The documented creation defaults, read back through AimhueGetResults.
TEST_F(HandleApi, FreshHandleHasDefaultsAndZeroedResults) {
  AimhueResults results;
  std::memset(&results, 0xEE, sizeof results);
  ASSERT_EQ(AimhueGetResults(handle_, &results), kOk);
  AimhueResults expected{};
  for (float& v : expected.fractions) v = 1.0f;
  for (float& v : expected.percentEnd) v = 1.0f;
  expected.ngLimit = 0.8f;
  expected.ngThresh = 0.08f;
  expected.whiteScale = 1.1f;
  for (int32_t& v : expected.outliers) v = -1;
  EXPECT_EQ(std::memcmp(&results, &expected, sizeof results), 0);
}

// Every field lands in its own place: distinct values in each, then read.
TEST_F(HandleApi, GetResultsReadsEveryFieldAndLoadsForgetTheOutlierCounts) {
  float next = 1.0f;
  for (TargetBlock* block : {&handle_->target, &handle_->searchStart, &handle_->searchEnd}) {
    for (TargetLxy& point : *block) point = {next++, next++, next++};
  }
  for (float& v : handle_->percentCalcChroma) v = next++;
  for (float& v : handle_->percentEnd) v = next++;
  handle_->ngLimit = next++;
  handle_->ngThresh = next++;
  handle_->whiteScale = next++;
  handle_->outliers = {7, 8, 9};
  AimhueResults results;
  ASSERT_EQ(AimhueGetResults(handle_, &results), kOk);
  const AimhueResults& r = results;
  EXPECT_EQ(std::memcmp(r.targets, handle_->target.data(), sizeof r.targets), 0);
  EXPECT_EQ(std::memcmp(r.searchStart, handle_->searchStart.data(), sizeof r.searchStart), 0);
  EXPECT_EQ(std::memcmp(r.searchEnd, handle_->searchEnd.data(), sizeof r.searchEnd), 0);
  EXPECT_EQ(std::memcmp(r.fractions, handle_->percentCalcChroma.data(), sizeof r.fractions), 0);
  EXPECT_EQ(std::memcmp(r.percentEnd, handle_->percentEnd.data(), sizeof r.percentEnd), 0);
  EXPECT_EQ((std::array<float, 3>{r.ngLimit, r.ngThresh, r.whiteScale}),
            (std::array<float, 3>{next - 3, next - 2, next - 1}));
  EXPECT_EQ((std::array<int32_t, 3>{r.outliers[0], r.outliers[1], r.outliers[2]}),
            (std::array<int32_t, 3>{7, 8, 9}));

  char image[169];
  uint64_t size = sizeof image;
  ASSERT_EQ(AimhueToBuffer(handle_, image, &size), kOk);
  ASSERT_EQ(AimhueFromBuffer(handle_, image, static_cast<int64_t>(size)), kOk);
  EXPECT_EQ(handle_->outliers, (std::array<int32_t, 3>{-1, -1, -1}));
}

TEST_F(HandleApi, SetTargetsStoresAUsableBlockAndRefusesOthers) {
  const std::array<float, 12> block = {10, 0.64f, 0.33f, 20, 0.30f, 0.60f,
                                       5,  0.15f, 0.06f, 35, 0.3127f, 0.329f};
  ASSERT_EQ(AimhueSetTargets(handle_, block.data()), kOk);
  EXPECT_EQ(Targets(), block);

  const float nan = std::numeric_limits<float>::quiet_NaN();
  const float inf = std::numeric_limits<float>::infinity();
  struct Spoiled {
    int index;
    float value;
    const char* line;
  };
  const Spoiled cases[] = {
      {0, nan, "AimhueSetTargets--Error :: target 0 (L nan, x 0.64, y 0.33) is not finite or has y <= 0"},
      {4, -inf, "AimhueSetTargets--Error :: target 1 (L 20, x -inf, y 0.6) is not finite or has y <= 0"},
      {8, 0.0f, "AimhueSetTargets--Error :: target 2 (L 5, x 0.15, y 0) is not finite or has y <= 0"},
      {11, -0.1f, "AimhueSetTargets--Error :: target 3 (L 35, x 0.3127, y -0.1) is not finite or has y <= 0"},
  };
  for (const Spoiled& spoiled : cases) {
    std::array<float, 12> bad = block;
    bad[spoiled.index] = spoiled.value;
    aimhue::testing::LogCapture log;
    EXPECT_EQ(AimhueSetTargets(handle_, bad.data()), kOutOfRange);
    EXPECT_EQ(log.Errors(), std::vector<std::string>{spoiled.line});
    EXPECT_EQ(Targets(), block);
  }
}

TEST_F(HandleApi, NGThreshZeroIsNullInputAndRangeFailuresKeepTheOldValue) {
  EXPECT_EQ(AimhueSetNGThresh(handle_, 0.0f), kNullInput);
  EXPECT_EQ(AimhueSetNGThresh(handle_, -0.0f), kNullInput);
  EXPECT_EQ(AimhueSetNGThresh(handle_, 1.0f), kOk);
  EXPECT_EQ(handle_->ngThresh, 1.0f);
  EXPECT_EQ(AimhueSetNGThresh(handle_, 1.0001f), kOutOfRange);
  EXPECT_EQ(AimhueSetNGThresh(handle_, -0.5f), kOutOfRange);
  EXPECT_EQ(handle_->ngThresh, 1.0f);
  EXPECT_EQ(AimhueSetNGThresh(handle_, std::numeric_limits<float>::quiet_NaN()), kOk);
  EXPECT_TRUE(std::isnan(handle_->ngThresh));
}

TEST_F(HandleApi, PercentEndTestsAllFourAndStoresNothingOnFailure) {
  const float good[4] = {0.9f, 0.8f, 0.7f, 0.6f};
  EXPECT_EQ(AimhueSetPercentEnd(handle_, good), kOk);
  const float zeroAll[4] = {0.5f, 0.5f, 0.5f, 0.0f};
  EXPECT_EQ(AimhueSetPercentEnd(handle_, zeroAll), kOutOfRange);
  const float overBlue[4] = {0.5f, 0.5f, 1.5f, 0.5f};
  EXPECT_EQ(AimhueSetPercentEnd(handle_, overBlue), kOutOfRange);
  EXPECT_EQ(handle_->percentEnd, (std::array<float, 4>{0.9f, 0.8f, 0.7f, 0.6f}));
  const float withNaN[4] = {1, std::numeric_limits<float>::quiet_NaN(), 1, 1};
  EXPECT_EQ(AimhueSetPercentEnd(handle_, withNaN), kOk);
  EXPECT_TRUE(std::isnan(handle_->percentEnd[1]));
}

TEST_F(HandleApi, PercentCalcChromaInterpolatesAndHidesRangeFailures) {
  handle_->searchStart[0] = {12.5f, 0.60f, 0.30f};
  handle_->searchEnd[0] = {99.0f, 0.70f, 0.29f};
  handle_->searchStart[1] = {20.0f, 0.25f, 0.70f};
  handle_->searchEnd[1] = {99.0f, 0.25f, 0.70f};  // identical point: kept as it is
  handle_->searchStart[2] = {3.0f, 0.15f, 0.06f};
  handle_->searchEnd[2] = {99.0f, 0.14f, 0.06f};  // one equal coordinate
  aimhue::testing::LogCapture log;
  const float half[4] = {0.5f, 0.5f, 0.5f, 1.0f};
  EXPECT_EQ(AimhueSetPercentCalcChroma(handle_, half), kOk);
  EXPECT_EQ(log.Infos(), std::vector<std::string>{"Aimhue::SetPercentCalcChroma"});
  // Start + (end - start) x fraction in 32-bit, the start's L, white untouched.
  EXPECT_EQ(Targets(), (std::array<float, 12>{12.5f, (0.70f - 0.60f) * 0.5f + 0.60f,
                                              (0.29f - 0.30f) * 0.5f + 0.30f, 20.0f, 0.25f, 0.70f,
                                              3.0f, (0.14f - 0.15f) * 0.5f + 0.15f, 0.06f, 0, 0, 0}));

  const auto before = Targets();
  const float badFourth[4] = {1, 1, 1, 1.5f};
  const float zeroRed[4] = {0, 1, 1, 1};
  EXPECT_EQ(AimhueSetPercentCalcChroma(handle_, badFourth), kOk);
  EXPECT_EQ(AimhueSetPercentCalcChroma(handle_, zeroRed), kOk);
  EXPECT_EQ(Targets(), before);
  EXPECT_EQ(handle_->percentCalcChroma, (std::array<float, 4>{0.5f, 0.5f, 0.5f, 1.0f}));
}

TEST_F(HandleApi, ReleaseZeroesTargetsAndFractionsOnly) {
  handle_->target[3] = {30.0f, 0.3127f, 0.329f};
  handle_->searchEnd[1] = {1.0f, 0.2f, 0.7f};
  ASSERT_EQ(AimhueSetNGThresh(handle_, 0.25f), kOk);
  ASSERT_EQ(AimhueRelease(handle_), kOk);
  float targets[12];
  float fractions[4];
  ASSERT_EQ(AimhueGet(handle_, targets, fractions), kOk);
  for (float value : targets) EXPECT_EQ(value, 0.0f);
  for (float value : fractions) EXPECT_EQ(value, 0.0f);
  EXPECT_EQ(handle_->ngThresh, 0.25f);
  EXPECT_EQ(handle_->searchEnd[1].y, 0.7f);
  EXPECT_EQ(handle_->percentEnd[0], 1.0f);
}

}  // namespace
}  // namespace aimhue
