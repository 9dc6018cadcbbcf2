#include <aimhue/led_meter.h>

#include <climits>

#include "support/test_meters.h"

namespace aimhue::testing {
namespace {

TEST(LedMeterSetters, RegionsInsideTheScreenAndPanelsWithLeds) {
  LedMeter meter;
  ASSERT_EQ(meter.SetPartition({0, 0, 10, 10, 10, 10}), kOk);
  // The region rule is shared with the shot's setter, whose test covers its
  // boundaries; here its status and this setter's line.
  std::vector<Refusal<LedMeter>> refusals = {
      {[](LedMeter& m) { return m.SetPartition({5, 0, INT_MAX, 1, 10, 10}); },
       kBadPartition,
       {"LedMeter::SetPartition--Error :: invalid screen wh or partition xywh"}}};
  for (const LedPanel& bad : {LedPanel{1, 2, 3, 0, 8, 1.5f}, LedPanel{1, 2, 3, 8, 0, 1.5f}}) {
    refusals.push_back({[=](LedMeter& m) { return m.SetLedPanel(bad); },
                        kBadLedPanel,
                        {"LedMeter::SetLedPanel--Error :: invalid panel_wh"}});
  }
  ExpectRefusals<LedMeter>(meter, refusals);  // no panel allocated
  ASSERT_EQ(meter.SetLedPanel({1, 2, 3, 16, 8, 1.5f}), kOk);
  ExpectRefusals<LedMeter>(meter, refusals);
}

TEST(LedMeterClear, ReleasesRecordsAndKeepsPlaneTypes) {
  LedMeter meter = MakeMeter(CIE_Y, 2);
  ASSERT_EQ(meter.SetLedPanel({0, 0, 0, 2, 2, 1.0f}), kOk);
  ASSERT_EQ(meter.SetCapture({1, 1, 1, 1, 1}), kOk);
  meter.chroma = cv::Mat::ones(2, 2, CV_64FC1);  // a foreign type is not kept
  meter.add_map = cv::Mat::ones(1, 1, CV_8UC1);
  meter.Clear();
  LedMeter fresh;
  for (const LedMeter* cleared : {&meter, &fresh}) {
    EXPECT_TRUE(!cleared->partition && !cleared->layer && !cleared->led_panel && !cleared->capture);
    const std::pair<const cv::Mat*, int> planes[] = {{&cleared->state, CV_8UC1},
                                                     {&cleared->pos, CV_32FC2},
                                                     {&cleared->chroma, CV_32FC1},
                                                     {&cleared->add_map, CV_8UC1}};
    for (const auto& [plane, type] : planes) EXPECT_TRUE(plane->empty() && plane->type() == type);
  }
}

}  // namespace
}  // namespace aimhue::testing
