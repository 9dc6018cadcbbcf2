#include <aimhue/led_meter.h>

#include <cmath>

#include "support/test_meters.h"

namespace aimhue::testing {
namespace {

std::string Line(const std::string& text) { return "LedMeter::Check--Error in LedMeter " + text; }

// Expects `status` with exactly the line for `text`, or none when `text` is empty.
void Expect(int result, const LogCapture& log, int status, const std::string& text = "") {
  EXPECT_EQ(result, status) << text;
  EXPECT_EQ(log.Errors(), text.empty() ? Lines{} : Lines{Line(text)});
}

#define EXPECT_CHECK(call, ...)     \
  do {                              \
    LogCapture log;                 \
    Expect(call, log, __VA_ARGS__); \
  } while (0)

TEST(LedMeterCheck, SingleTestsRunInTheirOrder) {
  const LedMeter valid = MakeMeter(CIE_Y, 2);
  LedMeter meter;
  meter.type = 3;
  meter.color = 0;
  meter.chroma = cv::Mat(0, 5, CV_32FC1);  // a shape without elements
  const LedMeter* tested = nullptr;
  const Partition part{0, 0, 3, 2, 3, 2};
  const Layer layer{0, 1.0f, 1};
  const uint32_t flags = kCheckNotNull | kCheckHasPartition | kCheckHasLayer |
                         kCheckChromaNotEmpty | kCheckPosNotEmpty | kCheckStateNotEmpty |
                         kCheckTypeValid | kCheckColorValid;
  ExpectOrder([&] { return LedMeter::Check(flags, tested); },
              {{kNullInput, Line("input is nullptr"), [&] { tested = &meter; }},
               {kOutOfRange, Line("part is nullptr"), [&] { meter.SetPartition(part); }},
               {kOutOfRange, Line("layer is nullptr"), [&] { meter.SetLayer(layer); }},
               {kEmptyPlane, Line("chroma is empty"), [&] { meter.chroma = valid.chroma; }},
               {kEmptyPlane, Line("pos is empty"), [&] { meter.pos = valid.pos; }},
               {kEmptyPlane, Line("state is empty"), [&] { meter.state = valid.state; }},
               {kOutOfRange, Line("input type"), [&] { meter.type = CIE_Z; }},
               {kOutOfRange, Line("input color"), [&] { meter.color = 4; }}});
  // Without kCheckNotNull a null meter is never read: a test that would read
  // it fails as a null input, and with nothing to test it passes.
  EXPECT_CHECK(LedMeter::Check(0, nullptr), kOk);
  EXPECT_CHECK(LedMeter::Check(kCheckColorValid, nullptr), kNullInput, "input is nullptr");
  EXPECT_CHECK(LedMeter::Check(kCheckTypeSame, &valid, nullptr), kNullInput, "input is nullptr");
  EXPECT_CHECK(LedMeter::Check(kCheckTypeIsY, nullptr, &valid), kNullInput, "input is nullptr");
}

// Single tests on a, then on b, then the pair tests that ask for agreement,
// in their order (colours before chroma sizes although the bit is higher).
TEST(LedMeterCheck, PairTestsRunAfterBothMetersInTheirOrder) {
  LedMeter a = MakeMeter(CIE_X, 1);
  LedMeter b = MakeMeter(CIE_Z, 2, 3, 2);  // the same element count in another shape
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
  ExpectOrder(
      [&] { return LedMeter::Check(flags, &a, &b); },
      {{kOutOfRange, Line("input color"), [&] { a.color = 1; }},
       {kOutOfRange, Line("input type"), [&] { b.type = CIE_Z; }},
       {kOutOfRange, Line("input type different"), [&] { b.type = CIE_X; }},
       {kOutOfRange, Line("input color different"), [&] { b.color = 1; }},
       {kOutOfRange, Line("input chroma size different"), [&] { b.chroma = a.chroma; }},
       {kOutOfRange, Line("input pos size different"), [&] { b.pos = a.pos; }},
       {kOutOfRange, Line("input state size different"), [&] { b.state = a.state; }},
       {kOutOfRange, Line("input type not CIE_Y"), [&] { a.type = b.type = CIE_Y; }},
       {kOutOfRange, Line("layer value not same."), [&] { b.layer->value = a.layer->value; }},
       {kOutOfRange, Line("layer linera_norms not same."), [&] {
          a.layer->linear_norms = 0.0f;
          b.layer->linear_norms = -0.0f;
        }}});
}

}  // namespace
}  // namespace aimhue::testing
