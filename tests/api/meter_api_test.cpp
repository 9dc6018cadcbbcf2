#include <aimhue/api.h>
#include <aimhue/led_meter.h>
#include <aimhue/status.h>
#include <gtest/gtest.h>

#include "support/log_capture.h"

namespace aimhue {
namespace {

using ::aimhue::testing::LogCapture;
using Lines = std::vector<std::string>;

LedMeter Meter(int rows, int cols, float first, uint32_t type = CIE_Y, uint32_t color = 2) {
  LedMeter meter;
  meter.type = type;
  meter.color = color;
  meter.chroma = cv::Mat(rows, cols, CV_32FC1);
  meter.state = cv::Mat(rows, cols, CV_8UC1, cv::Scalar(1));
  for (int i = 0; i < rows * cols; ++i) meter.chroma.at<float>(i) = first + static_cast<float>(i);
  return meter;
}

TEST(VConcatMeter, StacksStateAndChromaAndKeepsTheRestOfOut) {
  const LedMeter top = Meter(4, 8, 0.0f);
  const LedMeter bottom = Meter(2, 8, 100.0f);
  LedMeter out;
  out.pos = cv::Mat::zeros(1, 1, CV_32FC2);
  out.SetLayer(Layer{5, 1.0f, 5});
  ASSERT_EQ(AimhueVConcatMeter(&top, &bottom, &out), kOk);
  EXPECT_EQ(out.chroma.size(), cv::Size(8, 6));
  EXPECT_EQ(out.state.size(), cv::Size(8, 6));
  EXPECT_EQ(out.chroma.at<float>(3, 7), 31.0f);
  EXPECT_EQ(out.chroma.at<float>(4, 0), 100.0f);
  EXPECT_EQ(out.type, static_cast<uint32_t>(CIE_Y));
  EXPECT_EQ(out.color, 2u);
  EXPECT_EQ(out.pos.size(), cv::Size(1, 1));
  ASSERT_NE(out.layer, nullptr);

  // The output may be one of the inputs.
  LedMeter grown = Meter(1, 8, 0.0f);
  ASSERT_EQ(AimhueVConcatMeter(&grown, &bottom, &grown), kOk);
  EXPECT_EQ(grown.chroma.size(), cv::Size(8, 3));
  EXPECT_EQ(grown.chroma.at<float>(1, 0), 100.0f);
}

TEST(VConcatMeter, MismatchesAreRefusedInOrderWithOutUntouched) {
  const struct {
    LedMeter bottom;
    std::string error;
  } cases[] = {
      {Meter(2, 9, 0.0f, CIE_X, 4), "LedMeter::Check--Error in LedMeter input cols"},
      {Meter(2, 8, 0.0f, CIE_X, 4), "LedMeter::Check--Error in LedMeter input type"},
      {Meter(2, 8, 0.0f, CIE_Y, 4), "LedMeter::Check--Error in LedMeter input color"},
  };
  const LedMeter top = Meter(4, 8, 0.0f);
  for (const auto& c : cases) {
    LedMeter out = Meter(1, 1, 7.0f, CIE_Z, 1);
    LogCapture log;
    EXPECT_EQ(AimhueVConcatMeter(&top, &c.bottom, &out), kOutOfRange);
    EXPECT_EQ(log.Errors(), Lines{c.error});
    EXPECT_EQ(out.chroma.size(), cv::Size(1, 1));
    EXPECT_EQ(out.type, static_cast<uint32_t>(CIE_Z));
  }
}

TEST(VConcatMeter, PlanesThatCannotBeStackedAreRefusedNotThrown) {
  const LedMeter top = Meter(2, 8, 0.0f);
  LedMeter bottom = Meter(2, 8, 0.0f);
  bottom.state = cv::Mat(2, 5, CV_8UC1);  // state widths are not compared up front
  LedMeter out;
  LogCapture log;
  EXPECT_EQ(AimhueVConcatMeter(&top, &bottom, &out), kOutOfRange);
  ASSERT_EQ(log.Errors().size(), 1u);
  EXPECT_EQ(log.Errors()[0].rfind("AimhueVConcatMeter--Error :: exception: ", 0), 0u);
  EXPECT_TRUE(out.chroma.empty());
  EXPECT_EQ(AimhueVConcatMeter(nullptr, &bottom, &out), kNullInput);

  // Meters without state planes stack their chroma alone.
  LedMeter a = Meter(1, 3, 0.0f);
  LedMeter b = Meter(1, 3, 0.0f);
  a.state = cv::Mat(0, 0, CV_8UC1);
  b.state = cv::Mat(0, 0, CV_8UC1);
  EXPECT_EQ(AimhueVConcatMeter(&a, &b, &out), kOk);
  EXPECT_EQ(out.chroma.rows, 2);
  EXPECT_TRUE(out.state.empty());
}

}  // namespace
}  // namespace aimhue
