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

// Runs `check` and expects `status` with exactly the one line for `text`,
// or a pass without any error line when `text` is empty.
void Expect(const std::function<int()>& check, int status, const std::string& text = "") {
  LogCapture log;
  EXPECT_EQ(check(), status) << text;
  const std::vector<std::string> lines =
      text.empty() ? std::vector<std::string>{}
                   : std::vector<std::string>{"LedMeter::Check--Error in LedMeter " + text};
  EXPECT_EQ(log.Errors(), lines);
}

// A fault, its report, and how to repair it.
struct Fault {
  std::string text;
  int status;
  std::function<void()> repair;
};

// With every fault present at once each check reports the first in order;
// repairing it exposes the next, until the check passes.
void ExpectOrder(const std::function<int()>& check, const std::vector<Fault>& faults) {
  for (const Fault& fault : faults) {
    Expect(check, fault.status, fault.text);
    fault.repair();
  }
  Expect(check, kOk);
}

constexpr uint32_t kAllSingle = kCheckNotNull | kCheckHasPartition | kCheckHasLayer |
                                kCheckChromaNotEmpty | kCheckPosNotEmpty | kCheckStateNotEmpty |
                                kCheckTypeValid | kCheckColorValid;

TEST(LedMeterCheck, SingleTestsRunInTheirOrder) {
  const LedMeter valid = MakeMeter(CIE_Y, 2);
  LedMeter meter;
  meter.type = 3;
  meter.color = 0;
  meter.chroma = cv::Mat(0, 5, CV_32FC1);  // a shape without elements
  meter.pos = cv::Mat();                   // no data
  const LedMeter* tested = nullptr;
  ExpectOrder([&] { return LedMeter::Check(kAllSingle, tested); },
              {{"input is nullptr", kNullInput, [&] { tested = &meter; }},
               {"part is nullptr", kOutOfRange,
                [&] {
                  meter.SetPartition({0, 0, 3, 2, 3, 2});
                }},
               {"layer is nullptr", kOutOfRange,
                [&] {
                  meter.SetLayer({0, 1.0f, 1});
                }},
               {"chroma is empty", kEmptyPlane, [&] { meter.chroma = valid.chroma; }},
               {"pos is empty", kEmptyPlane, [&] { meter.pos = valid.pos; }},
               {"state is empty", kEmptyPlane, [&] { meter.state = valid.state; }},
               {"input type", kOutOfRange, [&] { meter.type = CIE_Z; }},
               {"input color", kOutOfRange, [&] { meter.color = 4; }}});
}

// Without kCheckNotNull a null meter is never read: a test that would read
// it fails as a null input, and with nothing to test it passes.
TEST(LedMeterCheck, NullMeterIsNeverRead) {
  const LedMeter meter = MakeMeter(CIE_X, 1);
  Expect([] { return LedMeter::Check(0, nullptr); }, kOk);
  Expect([] { return LedMeter::Check(kCheckColorValid, nullptr); }, kNullInput, "input is nullptr");
  Expect([&] { return LedMeter::Check(kCheckTypeSame, &meter, nullptr); }, kNullInput,
         "input is nullptr");
  Expect([&] { return LedMeter::Check(kCheckTypeIsY, nullptr, &meter); }, kNullInput,
         "input is nullptr");
}

// Single tests on a, then on b, then the pair tests that ask for agreement,
// in their order (colours before chroma sizes although the bit is higher).
TEST(LedMeterCheck, PairTestsRunAfterBothMetersInTheirOrder) {
  LedMeter a = MakeMeter(CIE_X, 1);
  LedMeter b = MakeMeter(CIE_Z, 2, 3, 2);
  a.color = 3;
  b.type = 5;
  b.pos = cv::Mat::zeros(2, 4, CV_32FC2);
  b.state = cv::Mat::zeros(1, 3, CV_8UC1);
  b.layer->value = 254;
  // Equal floats only: NaN never matches, -0 matches +0.
  a.layer->linear_norms = b.layer->linear_norms = std::nanf("");
  const uint32_t flags = kCheckTypeValid | kCheckColorValid | kCheckTypeSame | kCheckColorSame |
                         kCheckChromaSizeSame | kCheckPosSizeSame | kCheckStateSizeSame |
                         kCheckTypeIsY | kCheckLayerValueSame | kCheckLayerNormsSame;
  ExpectOrder([&] { return LedMeter::Check(flags, &a, &b); },
              {{"input color", kOutOfRange, [&] { a.color = 1; }},
               {"input type", kOutOfRange, [&] { b.type = CIE_Z; }},
               {"input type different", kOutOfRange, [&] { b.type = CIE_X; }},
               {"input color different", kOutOfRange, [&] { b.color = 1; }},
               // The same element count in another shape is another size.
               {"input chroma size different", kOutOfRange, [&] { b.chroma = a.chroma; }},
               {"input pos size different", kOutOfRange, [&] { b.pos = a.pos; }},
               {"input state size different", kOutOfRange, [&] { b.state = a.state; }},
               {"input type not CIE_Y", kOutOfRange, [&] { a.type = b.type = CIE_Y; }},
               {"layer value not same.", kOutOfRange, [&] { b.layer->value = a.layer->value; }},
               {"layer linera_norms not same.", kOutOfRange, [&] {
                  a.layer->linear_norms = 0.0f;
                  b.layer->linear_norms = -0.0f;
                }}});
}

TEST(LedMeterCheck, DistinctnessTestsAndMissingLayers) {
  LedMeter a = MakeMeter(CIE_Y, 2);
  LedMeter b = MakeMeter(CIE_Y, 2);
  b.state = cv::Mat();
  b.color = 4;
  // Distinct types (0x40) come second; distinct colours (0x400) after the
  // sizes and before CIE_Y.
  Expect([&] { return LedMeter::Check(0x244, &a, &b); }, kOutOfRange, "input type same");
  b.color = 2;
  b.state = cv::Mat::zeros(1, 1, CV_8UC1);
  Expect([&] { return LedMeter::Check(0x2480, &a, &b); }, kOutOfRange,
         "input state size different");
  b.type = CIE_X;
  Expect([&] { return LedMeter::Check(0x480, &a, &b); }, kOutOfRange, "input color same");
  // A missing layer cannot agree with the other one; asking for the layer
  // first names the real fault.
  b.layer.reset();
  Expect([&] { return LedMeter::Check(kCheckLayerValueSame, &a, &b); }, kOutOfRange,
         "layer value not same.");
  Expect([&] { return LedMeter::Check(kCheckLayerNormsSame, &b, &a); }, kOutOfRange,
         "layer linera_norms not same.");
  Expect([&] { return LedMeter::Check(kCheckHasLayer | kCheckLayerNormsSame, &a, &b); },
         kOutOfRange, "layer is nullptr");
}

TEST(LedMeterCheck, ThreeMeters) {
  const LedMeter x = MakeMeter(CIE_X, 2);
  const LedMeter y = MakeMeter(CIE_Y, 2);
  const LedMeter z = MakeMeter(CIE_Z, 2);
  const LedMeter other_y = MakeMeter(CIE_Y, 2);
  const LedMeter other_colour_y = MakeMeter(CIE_Y, 1);
  const LedMeter big_y = MakeMeter(CIE_Y, 2, 3, 3);
  Expect([&] { return LedMeter::Check(kCheckForCombine, &x, &y, &z); }, kOk);
  Expect([&] { return LedMeter::Check(kCheckForCombine, &x, &y, &other_y); }, kOutOfRange,
         "input type same");
  Expect([&] { return LedMeter::Check(kCheckForCombine, &x, &y, nullptr); }, kNullInput,
         "input is nullptr");
  Expect([&] { return LedMeter::Check(kCheckTypeIsY, &y, &other_y); }, kOk);
  // (a, b) is checked whole before c is looked at, even for null.
  Expect(
      [&] {
        return LedMeter::Check(kCheckNotNull | kCheckColorSame, &x, &other_colour_y, nullptr);
      },
      kOutOfRange, "input color different");
  // (a, c) before (b, c); (b, c) is only tested for distinct types and colours.
  Expect([&] { return LedMeter::Check(0x44, &x, &y, &big_y); }, kOutOfRange,
         "input chroma size different");
  Expect([&] { return LedMeter::Check(kCheckColorDifferent, &other_colour_y, &z, &y); },
         kOutOfRange, "input color same");
}

}  // namespace
}  // namespace aimhue
