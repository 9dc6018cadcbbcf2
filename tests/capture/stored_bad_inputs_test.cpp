// Every hostile file kept under tests/data/ (written by
// tests/data/make_bad_inputs.py) is refused cleanly: the documented status
// and the loading record unchanged.
#include <aimhue/led_meter.h>
#include <aimhue/status.h>
#include <gtest/gtest.h>

#include <cstring>

#include "engine/aimhue.h"
#include "support/log_capture.h"
#include "support/temp_dir.h"

namespace aimhue {
namespace {

using ::aimhue::testing::TestDataPath;

TEST(StoredBadInputs, AreRefusedAsDamagedDataWithTheRecordUnchanged) {
  for (const char* name :
       {"meter_chroma_declares_16gib.meter", "meter_chroma_size_overflows_64_bits.meter",
        "meter_without_end_tag.meter", "meter_endless_unknown_tags.meter",
        "meter_layer_record_cut_short.meter", "meter_pos_with_one_channel.meter",
        "meter_chroma_with_zero_channels.meter"}) {
    LedMeter meter;
    meter.chroma = cv::Mat::ones(1, 1, CV_32FC1);
    const uchar* before = meter.chroma.data;
    ::aimhue::testing::LogCapture log;
    EXPECT_EQ(meter.Load(TestDataPath(name)), kBadVersion) << name;
    EXPECT_EQ(log.Errors(), std::vector<std::string>{"LedMeter::Load -- Error data in file."});
    EXPECT_EQ(meter.chroma.data, before);
    EXPECT_EQ(meter.layer, nullptr);
  }
  for (const char* name : {"engine_image_cut_at_100_bytes.aimhue", "engine_mark_only.aimhue"}) {
    Aimhue engine;
    engine.ngLimit = 0.5f;
    const Aimhue before = engine;
    EXPECT_EQ(engine.Load(TestDataPath(name)), kBadVersion) << name;
    EXPECT_EQ(std::memcmp(&engine, &before, sizeof engine), 0);
  }
}

}  // namespace
}  // namespace aimhue
