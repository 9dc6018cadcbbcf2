#include <aimhue/api.h>
#include <aimhue/led_meter.h>
#include <aimhue/status.h>
#include <gtest/gtest.h>

#include "support/log_capture.h"
#include "support/test_meters.h"

namespace aimhue::testing {
namespace {


TEST(VConcatMeter, StacksStateAndChromaAndKeepsTheRestOfOut) {
  const LedMeter top = MakeMeter(CIE_Y, 2, 4, 8, 1.0f);
  const LedMeter bottom = MakeMeter(CIE_Y, 2, 2, 8, 2.0f);
  LedMeter out = MakeMeter(CIE_X, 1, 1, 1);
  ASSERT_EQ(AimhueVConcatMeter(&top, &bottom, &out), kOk);
  EXPECT_EQ(out.chroma.size(), cv::Size(8, 6));
  EXPECT_EQ(out.state.size(), cv::Size(8, 6));
  EXPECT_EQ(out.chroma.at<float>(3, 7), 1.0f);
  EXPECT_EQ(out.chroma.at<float>(4, 0), 2.0f);
  EXPECT_EQ(out.type, static_cast<uint32_t>(CIE_Y));
  EXPECT_EQ(out.color, 2u);
  EXPECT_EQ(out.pos.size(), cv::Size(1, 1));  // position plane and records are not touched
  EXPECT_EQ(out.partition->w, 1);

  // The output may be one of the inputs.
  LedMeter grown = MakeMeter(CIE_Y, 2, 1, 8, 1.0f);
  ASSERT_EQ(AimhueVConcatMeter(&grown, &bottom, &grown), kOk);
  EXPECT_EQ(grown.chroma.size(), cv::Size(8, 3));
  EXPECT_EQ(grown.chroma.at<float>(1, 0), 2.0f);
}

TEST(VConcatMeter, MismatchesAreRefusedInOrderWithOutUntouched) {
  LedMeter stateless = MakeMeter(CIE_Y, 2, 2, 8);
  stateless.state = cv::Mat(2, 5, CV_8UC1);  // state widths are not compared up front
  const struct {
    LedMeter bottom;
    std::string error;
  } cases[] = {
      {MakeMeter(CIE_X, 4, 2, 9), "LedMeter::Check--Error in LedMeter input cols"},
      {MakeMeter(CIE_X, 4, 2, 8), "LedMeter::Check--Error in LedMeter input type"},
      {MakeMeter(CIE_Y, 4, 2, 8), "LedMeter::Check--Error in LedMeter input color"},
      {std::move(stateless), "AimhueVConcatMeter--Error :: exception: "},
  };
  const LedMeter top = MakeMeter(CIE_Y, 2, 4, 8);
  for (const auto& c : cases) {
    LedMeter out = MakeMeter(CIE_Z, 1, 1, 1, 7.0f);
    LogCapture log;
    EXPECT_EQ(AimhueVConcatMeter(&top, &c.bottom, &out), kOutOfRange);
    ASSERT_EQ(log.Errors().size(), 1u);
    EXPECT_EQ(log.Errors()[0].substr(0, c.error.size()), c.error);
    EXPECT_EQ(out.chroma.size(), cv::Size(1, 1));
    EXPECT_EQ(out.type, static_cast<uint32_t>(CIE_Z));
  }
  LedMeter out;
  EXPECT_EQ(AimhueVConcatMeter(nullptr, &top, &out), kNullInput);
}

}  // namespace
}  // namespace aimhue::testing
