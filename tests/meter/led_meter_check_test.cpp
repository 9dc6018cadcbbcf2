#include <aimhue/led_meter.h>
#include <aimhue/status.h>
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <string>
#include <vector>

#include "support/log_capture.h"
#include "support/test_meters.h"

namespace aimhue {
namespace {

using ::aimhue::testing::LogCapture;
using ::aimhue::testing::MakeMeter;

const std::string kPrefix = "LedMeter::Check--Error in LedMeter ";

// One Check call: its status and its error lines (each failure logs one).
struct Outcome {
  int status;
  std::vector<std::string> errors;
};

Outcome Checked(const std::function<int()>& check) {
  LogCapture log;
  const int status = check();
  return {status, log.Errors()};
}

void ExpectFailure(const Outcome& outcome, int status, const std::string& text) {
  EXPECT_EQ(outcome.status, status) << text;
  EXPECT_EQ(outcome.errors, std::vector<std::string>{kPrefix + text});
}

void ExpectPass(const Outcome& outcome) {
  EXPECT_EQ(outcome.status, kOk);
  EXPECT_TRUE(outcome.errors.empty());
}

constexpr uint32_t kAllSingle = kCheckNotNull | kCheckHasPartition | kCheckHasLayer |
                                kCheckChromaNotEmpty | kCheckPosNotEmpty |
                                kCheckStateNotEmpty | kCheckTypeValid | kCheckColorValid;

// A meter with every single-meter fault at once: each Check reports the
// first in order; repairing it exposes the next, which shows the whole order.
TEST(LedMeterCheck, SingleTestsRunInTheirFixedOrder) {
  ExpectFailure(Checked([] { return LedMeter::Check(kAllSingle, nullptr); }), kNullInput,
                "input is nullptr");
  LedMeter meter;
  meter.type = 3;
  meter.color = 0;
  meter.chroma = cv::Mat(0, 5, CV_32FC1);  // a shape without elements
  meter.pos = cv::Mat();                   // no data
  const LedMeter valid = MakeMeter(CIE_Y, 2);
  struct Step {
    std::string text;
    int status;
    std::function<void()> repair;
  };
  const Step steps[] = {
      {"part is nullptr", kOutOfRange, [&] { meter.SetPartition({0, 0, 3, 2, 3, 2}); }},
      {"layer is nullptr", kOutOfRange, [&] { meter.SetLayer({0, 1.0f, 1}); }},
      {"chroma is empty", kEmptyPlane, [&] { meter.chroma = valid.chroma; }},
      {"pos is empty", kEmptyPlane, [&] { meter.pos = valid.pos; }},
      {"state is empty", kEmptyPlane, [&] { meter.state = valid.state; }},
      {"input type", kOutOfRange, [&] { meter.type = CIE_Z; }},
      {"input color", kOutOfRange, [&] { meter.color = 4; }},
  };
  for (const Step& step : steps) {
    ExpectFailure(Checked([&] { return LedMeter::Check(kAllSingle, &meter); }), step.status,
                  step.text);
    step.repair();
  }
  ExpectPass(Checked([&] { return LedMeter::Check(kAllSingle, &meter); }));
}

TEST(LedMeterCheck, ValidCodesAreOneTwoAndFour) {
  LogCapture log;
  LedMeter meter = MakeMeter(CIE_X, 1);
  for (uint32_t code = 0; code <= 8; ++code) {
    const bool valid = code == 1 || code == 2 || code == 4;
    meter.type = code;
    meter.color = 1;
    EXPECT_EQ(LedMeter::Check(kCheckTypeValid, &meter), valid ? kOk : kOutOfRange) << code;
    meter.type = CIE_X;
    meter.color = code;
    EXPECT_EQ(LedMeter::Check(kCheckColorValid, &meter), valid ? kOk : kOutOfRange) << code;
  }
}

// Without kCheckNotNull a null meter is never read: a test that would read
// it fails as a null input, and with nothing to test it passes.
TEST(LedMeterCheck, NullMeterIsNeverRead) {
  const LedMeter meter = MakeMeter(CIE_X, 1);
  ExpectPass(Checked([] { return LedMeter::Check(0, nullptr); }));
  ExpectFailure(Checked([] { return LedMeter::Check(kCheckColorValid, nullptr); }), kNullInput,
                "input is nullptr");
  ExpectFailure(Checked([&] { return LedMeter::Check(kCheckTypeSame, &meter, nullptr); }), kNullInput,
                "input is nullptr");
  ExpectFailure(Checked([&] { return LedMeter::Check(kCheckTypeIsY, nullptr, &meter); }), kNullInput,
                "input is nullptr");
}

TEST(LedMeterCheck, EachPairTestFailsWithItsMessage) {
  struct Case {
    uint32_t flag;
    std::function<void(LedMeter&)> spoil;  // makes b fail the test
    std::string text;
  };
  const std::vector<Case> cases = {
      {kCheckTypeSame, [](LedMeter& b) { b.type = CIE_Z; }, "input type different"},
      {kCheckTypeDifferent, [](LedMeter&) {}, "input type same"},
      {kCheckColorSame, [](LedMeter& b) { b.color = 4; }, "input color different"},
      // The same element count in another shape is another size.
      {kCheckChromaSizeSame, [](LedMeter& b) { b.chroma = cv::Mat::ones(3, 2, CV_32FC1); },
       "input chroma size different"},
      {kCheckPosSizeSame, [](LedMeter& b) { b.pos = cv::Mat::zeros(2, 4, CV_32FC2); },
       "input pos size different"},
      {kCheckStateSizeSame, [](LedMeter& b) { b.state = cv::Mat::zeros(1, 3, CV_8UC1); },
       "input state size different"},
      {kCheckColorDifferent, [](LedMeter&) {}, "input color same"},
      {kCheckTypeIsY, [](LedMeter& b) { b.type = CIE_X; }, "input type not CIE_Y"},
      {kCheckLayerValueSame, [](LedMeter& b) { b.layer->value = 254; }, "layer value not same."},
      {kCheckLayerNormsSame, [](LedMeter& b) { b.layer->linear_norms = 0.5f; },
       "layer linera_norms not same."},
      // A missing layer cannot agree with the other one.
      {kCheckLayerValueSame, [](LedMeter& b) { b.layer.reset(); }, "layer value not same."},
      {kCheckLayerNormsSame, [](LedMeter& b) { b.layer.reset(); }, "layer linera_norms not same."},
  };
  for (const Case& test : cases) {
    const LedMeter a = MakeMeter(CIE_Y, 2);
    LedMeter b = MakeMeter(CIE_Y, 2);
    if (test.flag != kCheckTypeDifferent && test.flag != kCheckColorDifferent) {
      // Two equal meters pass every test that asks for agreement.
      ExpectPass(Checked([&] { return LedMeter::Check(test.flag, &a, &b); }));
    }
    test.spoil(b);
    ExpectFailure(Checked([&] { return LedMeter::Check(test.flag, &a, &b); }), kOutOfRange, test.text);
  }
}

TEST(LedMeterCheck, LayerNormsCompareExactly) {
  LedMeter a = MakeMeter(CIE_X, 1);
  LedMeter b = MakeMeter(CIE_Y, 1);
  a.layer->linear_norms = b.layer->linear_norms = std::nanf("");
  EXPECT_EQ(LedMeter::Check(kCheckLayerNormsSame, &a, &b), kOutOfRange);
  a.layer->linear_norms = 0.0f;
  b.layer->linear_norms = -0.0f;
  EXPECT_EQ(LedMeter::Check(kCheckLayerNormsSame, &a, &b), kOk);
  // Asking for the layer first names the real fault.
  b.layer.reset();
  ExpectFailure(Checked([&] {
                  return LedMeter::Check(kCheckHasLayer | kCheckLayerNormsSame, &a, &b);
                }),
                kOutOfRange, "layer is nullptr");
}

TEST(LedMeterCheck, TwoFailuresShowTheOrder) {
  LedMeter a = MakeMeter(CIE_X, 1);
  LedMeter b = MakeMeter(CIE_X, 2);
  b.type = 3;
  a.color = 3;
  // All single tests on a come before those on b.
  ExpectFailure(Checked([&] { return LedMeter::Check(0x110, &a, &b); }), kOutOfRange, "input color");
  a.color = 1;
  // Single tests on b come before the pair tests.
  ExpectFailure(Checked([&] { return LedMeter::Check(0x210, &a, &b); }), kOutOfRange, "input type");
  b.type = CIE_X;
  b.chroma = cv::Mat::ones(4, 4, CV_32FC1);
  // Colours (0x200) before chroma sizes (0x4), although the bit is higher.
  ExpectFailure(Checked([&] { return LedMeter::Check(0x204, &a, &b); }), kOutOfRange,
                "input color different");
  b.color = 1;
  b.state = cv::Mat::zeros(1, 1, CV_8UC1);
  // State sizes (0x2000) before distinct colours (0x400) and CIE_Y (0x80).
  ExpectFailure(Checked([&] { return LedMeter::Check(0x2480, &a, &b); }), kOutOfRange,
                "input state size different");
  ExpectFailure(Checked([&] { return LedMeter::Check(0x480, &a, &b); }), kOutOfRange,
                "input color same");
  b.layer->value = 0;
  b.layer->linear_norms = 2.0f;
  ExpectFailure(Checked([&] { return LedMeter::Check(0xC0080, &a, &b); }), kOutOfRange,
                "input type not CIE_Y");
  ExpectFailure(Checked([&] { return LedMeter::Check(0xC0000, &a, &b); }), kOutOfRange,
                "layer value not same.");
  // Distinct types (0x40) come before every later pair test.
  ExpectFailure(Checked([&] { return LedMeter::Check(0xC24C4, &a, &b); }), kOutOfRange,
                "input type same");
}

TEST(LedMeterCheck, ThreeMetersForTheCombination) {
  const LedMeter x = MakeMeter(CIE_X, 2);
  const LedMeter y = MakeMeter(CIE_Y, 2);
  const LedMeter z = MakeMeter(CIE_Z, 2);
  const LedMeter other_y = MakeMeter(CIE_Y, 2);
  ExpectPass(Checked([&] { return LedMeter::Check(kCheckForCombine, &x, &y, &z); }));
  ExpectFailure(Checked([&] { return LedMeter::Check(kCheckForCombine, &x, &y, &other_y); }),
                kOutOfRange, "input type same");
  ExpectFailure(Checked([&] { return LedMeter::Check(kCheckForCombine, &x, &y, nullptr); }),
                kNullInput, "input is nullptr");
  // The two-meter form with CIE_Y on both sides.
  ExpectPass(Checked([&] { return LedMeter::Check(kCheckTypeIsY, &y, &other_y); }));
}

TEST(LedMeterCheck, ThreeMetersRunABThenACThenDistinctnessOfBC) {
  const LedMeter a = MakeMeter(CIE_X, 1);
  const LedMeter b = MakeMeter(CIE_Y, 2);
  const LedMeter c = MakeMeter(CIE_Y, 2);
  // (a, b) is checked whole before c is looked at, even for null.
  ExpectFailure(Checked([&] { return LedMeter::Check(kCheckNotNull | kCheckColorSame, &a, &b, nullptr); }),
                kOutOfRange, "input color different");
  // (b, c) is only tested for distinct types and colours.
  ExpectFailure(Checked([&] { return LedMeter::Check(kCheckTypeDifferent, &a, &b, &c); }),
                kOutOfRange, "input type same");
  ExpectFailure(Checked([&] { return LedMeter::Check(kCheckColorDifferent, &a, &b, &c); }),
                kOutOfRange, "input color same");
  // (a, c) comes before (b, c).
  LedMeter c_other_size = MakeMeter(CIE_Y, 2, 3, 3);
  ExpectFailure(Checked([&] {
                  return LedMeter::Check(kCheckTypeDifferent | kCheckChromaSizeSame, &a, &b,
                                         &c_other_size);
                }),
                kOutOfRange, "input chroma size different");
}

}  // namespace
}  // namespace aimhue
