#include <aimhue/api.h>
#include <aimhue/led_meter.h>
#include <aimhue/status.h>
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstring>

#include "engine/aimhue.h"
#include "support/log_capture.h"
#include "support/test_meters.h"

namespace aimhue::testing {
namespace {


// A 2 x 3 screen whose every LED has the same X, Y, Z per primary.
class ComputeApi : public ::testing::Test {
 protected:
  void SetUp() override {
    const float xyz[3][3] = {{0.64f, 0.33f, 0.03f}, {0.30f, 0.60f, 0.10f}, {0.15f, 0.06f, 0.79f}};
    const uint32_t colors[3] = {1, 2, 4};
    const uint32_t types[3] = {CIE_X, CIE_Y, CIE_Z};
    for (int primary = 0; primary < 3; ++primary) {
      for (int axis = 0; axis < 3; ++axis) {
        meters_[primary][axis] = MakeMeter(types[axis], colors[primary], 2, 3, xyz[primary][axis]);
        triples_[primary][axis] = &meters_[primary][axis];
      }
    }
  }
  int Coverage(const float* targets, float* out, const AimhueImage* mask, int count = 3) {
    return AimhueCalcPercentOfTarget(triples_[0], triples_[1], triples_[2], targets, out, mask,
                                     count);
  }

  // Every target at a point that each LED's gamut holds, except where noted.
  std::array<float, 12> inside_ = {0, 0.35f, 0.33f, 0, 0.35f, 0.33f,
                                   0, 0.35f, 0.33f, 0, 0.35f, 0.33f};
  std::array<std::array<LedMeter, 3>, 3> meters_;
  const LedMeter* triples_[3][3];
};

TEST_F(ComputeApi, CoverageChecksRunInOrderAndLeaveTheOutputUnwritten) {
  float out[4] = {-1, -1, -1, -1};
  // The count is checked before any pointer, the pointers before the meters.
  EXPECT_EQ(AimhueCalcPercentOfTarget(nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, 2),
            kOutOfRange);
  EXPECT_EQ(Coverage(inside_.data(), out, nullptr, 4), kOutOfRange);
  EXPECT_EQ(Coverage(nullptr, out, nullptr), kNullInput);
  EXPECT_EQ(Coverage(inside_.data(), nullptr, nullptr), kNullInput);
  EXPECT_EQ(AimhueCalcPercentOfTarget(triples_[0], nullptr, triples_[2], inside_.data(), out,
                                      nullptr, 3),
            kNullInput);

  const std::vector<unsigned char> pixels(400, 1);
  const int32_t kMax = 0x7FFFFFFF;
  const struct {
    AimhueImage mask;
    int status;
  } masks[] = {
      {{10, 10, 0, 100, pixels.data()}, kOutOfRange},  // accepted, but not the screen's size
      {{10, 10, 0, 99, pixels.data()}, kInconsistentDescriptor},
      {{10, 10, 0, 100, nullptr}, kInconsistentDescriptor},
      {{0, 10, 0, 0, pixels.data()}, kInconsistentDescriptor},
      {{-3, -4, 0, 0, nullptr}, kInconsistentDescriptor},  // 12 cells by the size rule
      {{-10, 10, 0, 0, nullptr}, kInconsistentDescriptor},  // a negative product
      {{10, 10, -8, 0, pixels.data()}, kInconsistentDescriptor},
      {{kMax, kMax, 0, 1, pixels.data()}, kInconsistentDescriptor},  // beyond any 32-bit size
      {{0, 0, 0, 0, nullptr}, kEmptyInput},
      {{-3, 0, 0, 0, nullptr}, kEmptyInput},
      {{10, 10, 5, 400, pixels.data()}, kUnsupportedElementType},
      {{10, 10, 16, 300, pixels.data()}, kUnsupportedElementType},  // three channels
  };
  for (const auto& m : masks) {
    EXPECT_EQ(Coverage(inside_.data(), out, &m.mask), m.status)
        << m.mask.rows << " " << m.mask.cols << " " << m.mask.type << " " << m.mask.size;
  }
  EXPECT_EQ(out[0], -1.0f);

  // A combination failure is the combination's status and message; the
  // primaries after it are not looked at.
  meters_[1][2].type = CIE_Y;
  LogCapture log;
  EXPECT_EQ(Coverage(inside_.data(), out, nullptr), kOutOfRange);
  EXPECT_EQ(log.Errors(), Lines{"LedMeter::Check--Error in LedMeter input type same"});
  EXPECT_EQ(out[0], -1.0f);
}

TEST_F(ComputeApi, HandleFunctionsCheckHandleThenCountBeforeAnyMeter) {
  AimhueHandle handle = nullptr;
  ASSERT_EQ(AimhueCreateHandle(&handle), kOk);
  bool ng = false;
  for (int count : {2, 4}) {
    EXPECT_EQ(AimhueSearch(handle, nullptr, nullptr, nullptr, count), kOutOfRange);
    EXPECT_EQ(AimhueCalcPercentNG(handle, nullptr, nullptr, nullptr, count), kOutOfRange);
    EXPECT_EQ(AimhueJudgeNG(handle, &ng, nullptr, nullptr, nullptr, count), kOutOfRange);
  }
  EXPECT_EQ(AimhueSearch(nullptr, triples_[0], triples_[1], triples_[2], 3), kNullInput);
  EXPECT_EQ(AimhueCalcPercentNG(nullptr, triples_[0], triples_[1], triples_[2], 3), kNullInput);
  EXPECT_EQ(AimhueJudgeNG(nullptr, &ng, triples_[0], triples_[1], triples_[2], 3), kNullInput);
  EXPECT_EQ(AimhueJudgeNG(handle, nullptr, triples_[0], triples_[1], triples_[2], 3), kNullInput);

  // A failing combination is returned and the verdict is not written.
  meters_[2][0].color = 1;
  LogCapture log;
  EXPECT_EQ(AimhueJudgeNG(handle, &ng, triples_[0], triples_[1], triples_[2], 3), kOutOfRange);
  EXPECT_EQ(AimhueSearch(handle, triples_[0], triples_[1], triples_[2], 3), kOutOfRange);
  EXPECT_EQ(log.Errors(), (Lines{"LedMeter::Check--Error in LedMeter input color different",
                                 "LedMeter::Check--Error in LedMeter input color different"}));
  EXPECT_FALSE(ng);
  AimhueDestroyHandle(handle);
}

// The engine refuses a scale above 1, the exported call still succeeds.
TEST_F(ComputeApi, CalcWhiteDiscardsTheEnginesRangeStatus) {
  AimhueHandle handle = nullptr;
  ASSERT_EQ(AimhueCreateHandle(&handle), kOk);
  const TargetLxy white{0.0f, 0.3127f, 0.329f};
  float targets[12];
  ASSERT_EQ(AimhueGet(handle, targets, nullptr), kOk);
  EXPECT_EQ(AimhueCalcWhite(handle, 2.0f, &white, 0), kOk);
  float after[12];
  ASSERT_EQ(AimhueGet(handle, after, nullptr), kOk);
  EXPECT_EQ(std::memcmp(targets, after, sizeof targets), 0);
  EXPECT_EQ(AimhueCalcWhite(handle, 1.0f, nullptr, 0), kNullInput);
  EXPECT_EQ(AimhueCalcWhite(nullptr, 1.0f, &white, 0), kNullInput);
  AimhueDestroyHandle(handle);
}

}  // namespace
}  // namespace aimhue::testing
