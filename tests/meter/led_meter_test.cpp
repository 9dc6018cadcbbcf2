#include <aimhue/led_meter.h>
#include <aimhue/status.h>
#include <gtest/gtest.h>

#include <climits>
#include <string>
#include <vector>

#include "support/log_capture.h"

namespace aimhue {
namespace {

using ::aimhue::testing::LogCapture;
using Lines = std::vector<std::string>;

const char* const kBadPartitionLine =
    "LedMeter::SetPartition--Error :: invalid screen wh or partition xywh";

TEST(LedMeterSetPartition, AcceptsRegionsInsideTheScreenOnly) {
  LedMeter meter;
  LogCapture log;
  ASSERT_EQ(meter.SetPartition({0, 0, 10, 10, 10, 10}), kOk);
  ASSERT_NE(meter.partition, nullptr);
  EXPECT_EQ(meter.partition->w, 10);
  EXPECT_EQ(log.Infos(), Lines{"LedMeter::SetPartition"});
  EXPECT_TRUE(log.Errors().empty());

  const Partition invalid[] = {
      {0, 0, 11, 10, 10, 10},      // one column past the right edge
      {-1, 0, 5, 5, 10, 10},       // starts left of the screen
      {0, 0, 10, 10, 0, 10},       // no screen
      {0, 0, 0, 10, 10, 10},       // empty region
      {5, 0, INT_MAX, 1, 10, 10},  // x + w - 1 beyond the int range
  };
  for (const Partition& partition : invalid) {
    log.Clear();
    EXPECT_EQ(meter.SetPartition(partition), kBadPartition);
    EXPECT_EQ(log.Errors(), Lines{kBadPartitionLine});
    // The earlier record is kept whole.
    EXPECT_EQ(meter.partition->x, 0);
    EXPECT_EQ(meter.partition->w, 10);
  }
}

TEST(LedMeterSetLedPanel, RefusesAnEmptyPanelWithoutAllocating) {
  LedMeter meter;
  LogCapture log;
  EXPECT_EQ(meter.SetLedPanel({1, 2, 3, 0, 8, 1.5f}), kBadLedPanel);
  EXPECT_EQ(meter.SetLedPanel({1, 2, 3, 8, 0, 1.5f}), kBadLedPanel);
  EXPECT_EQ(meter.led_panel, nullptr);
  EXPECT_EQ(log.Errors(), Lines(2, "LedMeter::SetLedPanel--Error :: invalid panel_wh"));

  ASSERT_EQ(meter.SetLedPanel({1, 2, 3, 16, 8, 1.5f}), kOk);
  EXPECT_EQ(meter.SetLedPanel({9, 9, 9, 0, 0, 9.0f}), kBadLedPanel);
  EXPECT_EQ(meter.led_panel->type, 1);
  EXPECT_EQ(meter.led_panel->w, 16);
  EXPECT_EQ(meter.led_panel->pixel_pitch, 1.5f);
}

void ExpectCleared(const LedMeter& meter) {
  EXPECT_EQ(meter.partition, nullptr);
  EXPECT_EQ(meter.layer, nullptr);
  EXPECT_EQ(meter.led_panel, nullptr);
  EXPECT_EQ(meter.capture, nullptr);
  const std::pair<const cv::Mat*, int> planes[] = {{&meter.state, CV_8UC1},
                                                   {&meter.pos, CV_32FC2},
                                                   {&meter.chroma, CV_32FC1},
                                                   {&meter.add_map, CV_8UC1}};
  for (const auto& plane : planes) {
    EXPECT_TRUE(plane.first->empty());
    EXPECT_EQ(plane.first->type(), plane.second);
  }
}

TEST(LedMeterClear, ReleasesRecordsAndKeepsPlaneTypes) {
  LedMeter meter;
  ExpectCleared(meter);
  ASSERT_EQ(meter.SetPartition({0, 0, 2, 2, 4, 4}), kOk);
  ASSERT_EQ(meter.SetLayer({1, 1.0f, 255}), kOk);
  ASSERT_EQ(meter.SetLedPanel({0, 0, 0, 2, 2, 1.0f}), kOk);
  ASSERT_EQ(meter.SetCapture({1, 1, 1, 1, 1}), kOk);
  meter.state = cv::Mat::ones(2, 2, CV_8UC1);
  meter.pos = cv::Mat::ones(2, 2, CV_32FC2);
  meter.chroma = cv::Mat::ones(2, 2, CV_64FC1);  // a foreign type is not kept
  meter.add_map = cv::Mat::ones(1, 1, CV_8UC1);
  meter.Clear();
  ExpectCleared(meter);
}

}  // namespace
}  // namespace aimhue
