#include <aimhue/led_meter.h>
#include <aimhue/status.h>
#include <gtest/gtest.h>

#include "capture/byte_stream.h"
#include "support/file_rules.h"
#include "support/log_capture.h"
#include "support/temp_dir.h"
#include "support/test_meters.h"

namespace aimhue::testing {
namespace {

// 2 x 3 float chroma, empty state and pos, only a Layer record.
LedMeter LayerOnlyMeter() {
  LedMeter meter;
  meter.color = 2;
  meter.type = CIE_Y;
  meter.chroma = (cv::Mat_<float>(2, 3) << 1, 2, 3, 4, 5, 6);
  meter.SetLayer(Layer{7, 0.5f, 128});
  return meter;
}

TEST(MeterFile, LayerOnlyMeterIs105Bytes) {
  std::string expected = "L" + Words({1, 2, CIE_Y, 0, 0, 0, 0, 0, 0, 0, 0, 2, 3, CV_32FC1, 1});
  ByteWriter out(expected);
  for (float value : {1.0f, 2.0f, 3.0f, 4.0f, 5.0f, 6.0f}) out.WriteF32(value);
  out.WriteU32(16);
  out.WriteI32(7);
  out.WriteF32(0.5f);
  out.WriteI32(128);
  out.WriteU32(0xFFFFFFFFu);
  ASSERT_EQ(expected.size(), 105u);

  const LedMeter meter = LayerOnlyMeter();
  EXPECT_EQ(Content(meter), expected);
  uint64_t size = 0;
  EXPECT_EQ(meter.GetBufferSize(&size), kOk);
  EXPECT_EQ(size, 105u);
}

TEST(MeterFile, RecordsInAnyOrderUnknownTagsAndKeptRecords) {
  // Capture before Layer, an unknown tag between them, no Partition.
  const std::string content =
      "L" + Words({1, 1, CIE_X, 0, 0, 0, 0, 0, 0, 0, 0, 1, 1, CV_32FC1, 1, 0x3F800000}) +
      Words({2, 11, 12, 13, 14, 15, 77, 16, 3, 0x3F000000, 9, 0xFFFFFFFFu});
  LedMeter meter;
  meter.SetPartition(Partition{0, 0, 1, 1, 5, 5});
  meter.SetLayer(Layer{1, 1.0f, 1});
  meter.add_map = cv::Mat::ones(2, 2, CV_8UC1);
  const uchar* addMap = meter.add_map.data;
  ASSERT_EQ(meter.FromBuffer(content.data(), content.size()), kOk);
  ASSERT_NE(meter.capture, nullptr);
  EXPECT_EQ(meter.capture->exposure, 11);
  EXPECT_EQ(meter.capture->filter, 15);
  EXPECT_EQ(meter.layer->index, 3);
  EXPECT_EQ(meter.layer->linear_norms, 0.5f);
  ASSERT_NE(meter.partition, nullptr);  // not in the content: kept
  EXPECT_EQ(meter.partition->screen_w, 5);
  EXPECT_EQ(meter.led_panel, nullptr);
  EXPECT_EQ(meter.add_map.data, addMap);  // never stored, never loaded
  EXPECT_EQ(meter.chroma.at<float>(0, 0), 1.0f);
}

// Refused contents (and a chroma plane of 8-bit samples, which is not a
// meter's chroma) leave the meter exactly as it was; the shared rules.
TEST(MeterFile, RefusedContentsNamesAndBuffers) {
  LedMeter meter = MeterWithEveryRecord(2, 2);
  ExpectDamagedContentRules(meter, Content(meter), "LedMeter", ".meter", Content<LedMeter>);
  const std::string byteChroma = "L" + Words({1, 1, CIE_X, 0, 0, 0, 0, 0, 0, 0, 0, 1, 1, CV_8UC1, 1}) +
                                 "\x01" + Words({0xFFFFFFFFu});
  const std::string before = Content(meter);
  EXPECT_EQ(meter.FromBuffer(byteChroma.data(), byteChroma.size()), kBadVersion);
  EXPECT_EQ(Content(meter), before);
  ExpectFileNameAndOpenRules(LayerOnlyMeter(), meter, "LedMeter", ".meter");
  ExpectCallerBufferRules(LayerOnlyMeter(), 105);
  std::string buffer(200, '#');
  uint64_t size = 0;
  LedMeter empty;
  EXPECT_EQ(empty.FromBuffer(nullptr, 10), kNullInput);
  EXPECT_EQ(empty.GetBufferSize(&size), kEmptyInput);
  // An empty meter can still be written: header, three empty blocks, end tag.
  size = 200;
  EXPECT_EQ(empty.ToBuffer(buffer.data(), &size), kOk);
  EXPECT_EQ(size, 13u + 48u + 4u);
}

}  // namespace
}  // namespace aimhue::testing
