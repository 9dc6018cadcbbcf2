// Complete calibrations through the exported interface on separate handles,
// run from several threads at once, give exactly the results of the same
// calibrations run one after another. Run under ThreadSanitizer in CI.
#include <aimhue/api.h>
#include <aimhue/led_meter.h>
#include <aimhue/status.h>
#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include "support/chroma_sets.h"
#include "synthetic/synthetic_screen.h"

namespace aimhue {
namespace {

using synthetic::ScreenMeters;

// Everything a calibration run reports, compared bit for bit.
struct CalibrationResult {
  int status = -1;
  std::array<float, 12> targets{};
  std::array<float, 4> coverage{};
  bool ng = true;
  std::string image;  // the handle's 169-byte image

  bool operator==(const CalibrationResult& other) const {
    return status == other.status && ng == other.ng && image == other.image &&
           std::memcmp(targets.data(), other.targets.data(), sizeof targets) == 0 &&
           std::memcmp(coverage.data(), other.coverage.data(), sizeof coverage) == 0;
  }
};

// No dead LED: its NaN chromaticity would make every result NaN.
ScreenMeters Screen(uint64_t seed) {
  return synthetic::GenerateMeters(testing::SmallScreen(60, 80, seed, 20, 20));
}

// The whole calling order on one new handle.
CalibrationResult Calibrate(const ScreenMeters& screen) {
  CalibrationResult result;
  const LedMeter* triples[3][3];
  for (int primary = 0; primary < 3; ++primary) {
    for (int axis = 0; axis < 3; ++axis) triples[primary][axis] = &screen[primary][axis];
  }
  AimhueHandle handle = nullptr;
  if (AimhueCreateHandle(&handle) != kOk || handle == nullptr) return result;
  const float ends[4] = {0.95f, 0.95f, 0.95f, 0.95f};
  const float chroma[4] = {0.5f, 0.5f, 0.5f, 1.0f};
  const TargetLxy white{0.0f, 0.3127f, 0.3290f};
  int status = AimhueSetPercentEnd(handle, ends);
  if (status == kOk) status = AimhueSearch(handle, triples[0], triples[1], triples[2], 3);
  if (status == kOk) status = AimhueSetPercentCalcChroma(handle, chroma);
  if (status == kOk) status = AimhueCalcWhite(handle, 1.0f, &white, 0);
  if (status == kOk) status = AimhueGet(handle, result.targets.data(), nullptr);
  if (status == kOk) {
    status = AimhueCalcPercentOfTarget(triples[0], triples[1], triples[2], result.targets.data(),
                                       result.coverage.data(), nullptr, 3);
  }
  if (status == kOk) status = AimhueCalcPercentNG(handle, triples[0], triples[1], triples[2], 3);
  if (status == kOk) {
    status = AimhueJudgeNG(handle, &result.ng, triples[0], triples[1], triples[2], 3);
  }
  if (status == kOk) {
    result.image.resize(169);
    uint64_t size = result.image.size();
    status = AimhueToBuffer(handle, result.image.data(), &size);
  }
  AimhueDestroyHandle(handle);
  result.status = status;
  return result;
}

TEST(CalibrationConcurrency, ParallelRunsOnSeparateHandlesMatchSequentialRuns) {
  constexpr int kScreens = 2;
  constexpr int kThreads = 4;  // two threads per screen: the meters are read concurrently too
  std::vector<ScreenMeters> screens;
  std::vector<CalibrationResult> expected;
  for (int screen = 0; screen < kScreens; ++screen) {
    screens.push_back(Screen(100 + screen));
    expected.push_back(Calibrate(screens.back()));
    ASSERT_EQ(expected.back().status, kOk);
    ASSERT_GT(expected.back().coverage[3], 0.0f);  // a real calibration, not NaN
  }
  std::vector<CalibrationResult> results(kThreads);
  std::vector<std::thread> threads;
  for (int thread = 0; thread < kThreads; ++thread) {
    threads.emplace_back(
        [&, thread] { results[thread] = Calibrate(screens[thread % kScreens]); });
  }
  for (std::thread& thread : threads) thread.join();
  for (int thread = 0; thread < kThreads; ++thread) {
    EXPECT_TRUE(results[thread] == expected[thread % kScreens]) << "thread " << thread;
  }
}

}  // namespace
}  // namespace aimhue
