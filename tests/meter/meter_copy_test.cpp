#include <aimhue/led_meter.h>
#include <aimhue/target.h>

#include "support/test_meters.h"

namespace aimhue::testing {
namespace {

// The copy shares nothing with its source, releases what the source lacks
// and keeps the destination's add_map.
TEST(MeterCopy, IsDeepAndReplacesEveryRecord) {
  LedMeter source = MakeMeter(CIE_Z, kBlue, 2, 3, 0.25f);
  source.state.at<uint8_t>(1, 2) = 1;
  LedMeter copy = MakeMeter(CIE_X, kRed, 4, 4, 9.0f);
  copy.SetLedPanel(LedPanel{1, 4, 0, 1, 1, 2.0f});
  const cv::Mat addMap = cv::Mat::ones(2, 2, CV_8UC1);
  copy.add_map = addMap;
  ASSERT_EQ(source.CopyTo(copy), kOk);
  EXPECT_EQ(copy.add_map.data, addMap.data);
  EXPECT_EQ(copy.led_panel, nullptr);
  EXPECT_EQ(cv::norm(copy.chroma, source.chroma, cv::NORM_INF), 0.0);
  EXPECT_EQ(cv::norm(copy.state, source.state, cv::NORM_INF), 0.0);
  EXPECT_NE(copy.chroma.data, source.chroma.data);
  EXPECT_NE(copy.partition.get(), source.partition.get());
  EXPECT_EQ(Bytes(copy.layer), Bytes(source.layer));
  EXPECT_EQ(Bytes(copy.partition), Bytes(source.partition));
  EXPECT_EQ(copy.type, CIE_Z);
  EXPECT_EQ(copy.color, kBlue);
  ASSERT_EQ(copy.CopyTo(copy), kOk);  // onto itself: nothing changes
  EXPECT_EQ(cv::norm(copy.chroma, source.chroma, cv::NORM_INF), 0.0);
}

}  // namespace
}  // namespace aimhue::testing
