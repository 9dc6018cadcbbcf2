// Every exported function refuses a null or missing input with its status,
// the documented line (none for a null pointer) and the handle unchanged;
// AimhueCalcWhite reports a scale the engine refuses as success, changing nothing.
#include <aimhue/api.h>
#include <aimhue/screen.h>
#include <aimhue/status.h>
#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <functional>
#include <vector>

#include "engine/aimhue.h"
#include "support/test_meters.h"

namespace aimhue::testing {
namespace {

// A 2 x 3 screen as nine meters, every LED alike.
class ExportedFunctions : public ::testing::Test {
 protected:
  ExportedFunctions() {
    for (int primary = 0; primary < 3; ++primary) {
      for (int axis = 0; axis < 3; ++axis) {
        meters_[primary][axis] = MakeMeter(1u << axis, 1u << primary, 2, 3, 0.3f);
        triples_[primary][axis] = &meters_[primary][axis];
      }
    }
  }
  std::array<std::array<LedMeter, 3>, 3> meters_;
  const LedMeter* triples_[3][3];
};

TEST_F(ExportedFunctions, RefuseNullAndMissingInputsLeavingTheHandle) {
  const LedMeter *const *r = triples_[0], *const *g = triples_[1], *const *b = triples_[2];
  AimhueHandle h = nullptr;
  AimhueScreen s = nullptr;  // green and blue only
  ASSERT_EQ(AimhueCreateHandle(&h), kOk);
  ASSERT_EQ(AimhueCreateScreen(&s), kOk);
  ASSERT_EQ(AimhueScreenSetPrimary(s, kGreen, g), kOk);
  ASSERT_EQ(AimhueScreenSetPrimary(s, kBlue, b), kOk);
  const float four[4] = {1, 1, 1, 1};
  float twelve[12] = {0, 0.3f, 0.3f, 0, 0.3f, 0.3f, 0, 0.3f, 0.3f, 0, 0.3f, 0.3f};
  const Coverage coverage{0.5f, 0.5f, 0.5f, 0.5f};
  const TargetLxy white{0, 0.3127f, 0.329f};
  AimhueResults results;
  AimhueScreenPlanes planes{};
  LedMeter out;
  std::array<char, 169> buffer{};
  uint64_t size = buffer.size();
  int32_t rows = -1;
  bool ng = false;
  const auto noRed = [](const char* who) {
    return Lines{std::string(who) + "--Error :: the screen has no red primary"};
  };
  const struct {
    std::function<int()> call;
    int status;
    Lines errors = {};
  } cases[] = {
      {[] { return AimhueCreateHandle(nullptr); }, kNullInput},
      {[] { return AimhueRelease(nullptr); }, kNullInput},
      {[] { return AimhueSetNGThresh(nullptr, 0.5f); }, kNullInput},
      {[&] { return AimhueSetPercentEnd(nullptr, four); }, kNullInput},
      {[&] { return AimhueSetPercentEnd(h, nullptr); }, kNullInput},
      {[&] { return AimhueSetPercentCalcChroma(nullptr, four); }, kNullInput},
      {[&] { return AimhueSetPercentCalcChroma(h, nullptr); }, kNullInput},
      {[&] { return AimhueGet(nullptr, twelve, nullptr); }, kNullInput},
      {[&] { return AimhueGet(h, nullptr, nullptr); }, kNullInput},
      {[&] { return AimhueGetResults(nullptr, &results); }, kNullInput},
      {[&] { return AimhueGetResults(h, nullptr); }, kNullInput},
      {[&] { return AimhueSetTargets(nullptr, twelve); }, kNullInput},
      {[&] { return AimhueSetTargets(h, nullptr); }, kNullInput},
      {[&] { return AimhueSetNGLimitFromCoverage(h, nullptr); }, kNullInput},
      {[&] { return AimhueJudgeCoverage(h, &coverage, nullptr); }, kNullInput},
      {[&] { return AimhueCalcWhite(nullptr, 1.0f, &white, 0); }, kNullInput},
      {[&] { return AimhueCalcWhite(h, 1.0f, nullptr, 0); }, kNullInput},
      {[&] { return AimhueCalcWhite(h, 2.0f, &white, 0); }, kOk},  // the engine refuses; the call does not
      // The count is checked before any meter, the handle before the count.
      {[&] { return AimhueSearch(h, nullptr, nullptr, nullptr, 2); }, kOutOfRange},
      {[&] { return AimhueCalcPercentNG(h, nullptr, nullptr, nullptr, 4); }, kOutOfRange},
      {[&] { return AimhueJudgeNG(h, &ng, nullptr, nullptr, nullptr, 4); }, kOutOfRange},
      {[&] { return AimhueSearch(nullptr, r, g, b, 2); }, kNullInput},
      {[&] { return AimhueCalcPercentNG(nullptr, r, g, b, 3); }, kNullInput},
      {[&] { return AimhueJudgeNG(nullptr, &ng, r, g, b, 3); }, kNullInput},
      {[&] { return AimhueJudgeNG(h, nullptr, r, g, b, 3); }, kNullInput},
      {[&] { return AimhueJudgeNG(h, &ng, r, nullptr, b, 3); }, kNullInput},
      {[&] { return AimhueCalcPercentOfTarget(nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, 2); },
       kOutOfRange},
      {[&] { return AimhueCalcPercentOfTarget(r, g, b, nullptr, twelve, nullptr, 3); }, kNullInput},
      {[&] { return AimhueCalcPercentOfTarget(r, g, b, twelve, nullptr, nullptr, 3); }, kNullInput},
      {[&] { return AimhueCalcPercentOfTarget(r, nullptr, b, twelve, twelve, nullptr, 3); }, kNullInput},
      {[&] { return AimhueSave(nullptr, "a.aimhue"); }, kNullInput},
      {[&] { return AimhueSave(h, nullptr); }, kNullInput},
      {[&] { return AimhueLoad(nullptr, "a.aimhue"); }, kNullInput},
      {[&] { return AimhueLoad(h, nullptr); }, kNullInput},
      {[&] { return AimhueToBuffer(nullptr, buffer.data(), &size); }, kNullInput},
      {[&] { return AimhueToBuffer(h, nullptr, &size); }, kNullInput},
      {[&] { return AimhueFromBuffer(nullptr, buffer.data(), 169); }, kNullInput},
      {[&] { return AimhueFromBuffer(h, nullptr, 169); }, kNullInput},
      {[&] { return AimhueGetBufferSize(nullptr, &size); }, kNullInput},
      {[&] { return AimhueGetBufferSize(h, nullptr); }, kNullInput},
      {[&] { return AimhueVConcatMeter(nullptr, r[0], &out); }, kNullInput},
      {[] { return AimhueCreateScreen(nullptr); }, kNullInput},
      {[&] { return AimhueScreenSetPrimary(nullptr, kRed, r); }, kNullInput},
      {[&] { return AimhueScreenSetPrimary(s, kRed, nullptr); }, kNullInput},
      {[&] { return AimhueScreenSize(s, &rows, nullptr); }, kNullInput},
      {[&] { return AimhueGetScreenPlanes(s, kGreen, nullptr); }, kNullInput},
      {[&] { return AimhueJudgeNGScreen(h, s, nullptr, nullptr); }, kNullInput},
      {[&] { return AimhueCalcScreenCoverage(s, nullptr, nullptr, nullptr, nullptr, 0); }, kNullInput},
      // A screen without its red primary: every computation names it.
      {[&] { return AimhueSearchScreen(h, s); }, kEmptyPlane, noRed("AimhueSearchScreen")},
      {[&] { return AimhueCalcPercentNGScreen(h, s, nullptr); },
       kEmptyPlane, noRed("AimhueCalcPercentNGScreen")},
      {[&] { return AimhueJudgeNGScreen(h, s, &ng, nullptr); }, kEmptyPlane, noRed("AimhueJudgeNGScreen")},
      {[&] { return AimhueCalcScreenCoverage(s, twelve, nullptr, nullptr, nullptr, 0); },
       kEmptyPlane, noRed("AimhueCalcScreenCoverage")},
      {[&] { return AimhueGetScreenPlanes(s, kRed, &planes); }, kEmptyPlane, noRed("AimhueGetScreenPlanes")},
  };
  const Aimhue before = *h;
  for (const auto& c : cases) {
    LogCapture log;
    EXPECT_EQ(c.call(), c.status) << &c - cases;
    EXPECT_EQ(log.Errors(), c.errors) << &c - cases;
    EXPECT_EQ(std::memcmp(h, &before, sizeof before), 0) << &c - cases;
  }
  EXPECT_FALSE(ng);
  EXPECT_EQ(rows, -1);
  EXPECT_EQ(planes.L, nullptr);
  AimhueDestroyHandle(nullptr);  // both do nothing
  AimhueDestroyScreen(nullptr);
  AimhueDestroyScreen(s);
  AimhueDestroyHandle(h);
}

// Every malformed mask descriptor is refused before any LED is counted.
TEST_F(ExportedFunctions, CoverageRefusesMalformedMasksLeavingTheOutput) {
  const float targets[12] = {0, 0.3f, 0.3f, 0, 0.3f, 0.3f, 0, 0.3f, 0.3f, 0, 0.3f, 0.3f};
  float out[4] = {-1, -1, -1, -1};
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
    EXPECT_EQ(AimhueCalcPercentOfTarget(triples_[0], triples_[1], triples_[2], targets, out, &m.mask, 3),
              m.status)
        << m.mask.rows << " " << m.mask.cols << " " << m.mask.type << " " << m.mask.size;
  }
  EXPECT_EQ(out[0], -1.0f);
}

}  // namespace
}  // namespace aimhue::testing
