// Every hostile file kept under tests/data/ (written by
// tests/data/make_bad_inputs.py) is refused cleanly: the documented status,
// one error line, and the loading record unchanged.
#include <aimhue/led_meter.h>
#include <aimhue/status.h>
#include <gtest/gtest.h>

#include <cstring>

#include "engine/aimhue.h"
#include "support/log_capture.h"
#include "support/temp_dir.h"

namespace aimhue {
namespace {

using ::aimhue::testing::LogCapture;
using ::aimhue::testing::ReadFileBytes;
using ::aimhue::testing::TestDataPath;
using Lines = std::vector<std::string>;

std::string MeterContent(const LedMeter& meter) {
  std::string buffer(4096, '\0');
  uint64_t size = buffer.size();
  EXPECT_EQ(meter.ToBuffer(buffer.data(), &size), kOk);
  buffer.resize(size);
  return buffer;
}

TEST(StoredBadInputs, MeterFilesAreRefusedAsDamagedData) {
  for (const char* name :
       {"meter_chroma_declares_16gib.meter", "meter_chroma_size_overflows_64_bits.meter",
        "meter_without_end_tag.meter", "meter_endless_unknown_tags.meter",
        "meter_layer_record_cut_short.meter", "meter_pos_with_one_channel.meter",
        "meter_chroma_with_zero_channels.meter"}) {
    SCOPED_TRACE(name);
    LedMeter meter;
    meter.chroma = cv::Mat::ones(1, 1, CV_32FC1);
    meter.SetLayer(Layer{1, 1.0f, 1});
    const std::string before = MeterContent(meter);
    LogCapture log;
    EXPECT_EQ(meter.Load(TestDataPath(name)), kBadVersion);
    EXPECT_EQ(log.Errors(), Lines{"LedMeter::Load -- Error data in file."});
    EXPECT_EQ(MeterContent(meter), before);

    const std::string bytes = ReadFileBytes(TestDataPath(name));
    ASSERT_FALSE(bytes.empty());
    EXPECT_EQ(meter.FromBuffer(bytes.data(), bytes.size()), kBadVersion);
    EXPECT_EQ(MeterContent(meter), before);
  }
}

TEST(StoredBadInputs, ShortEngineImagesAreRefused) {
  const struct {
    const char* name;
    const char* error;
  } cases[] = {
      {"engine_image_cut_at_100_bytes.aimhue", "Aimhue::Load -- Error data in file."},
      {"engine_mark_only.aimhue", "Aimhue::Load -- Error version in file."},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    Aimhue engine;
    engine.ngLimit = 0.5f;
    const Aimhue before = engine;
    LogCapture log;
    EXPECT_EQ(engine.Load(TestDataPath(c.name)), kBadVersion);
    EXPECT_EQ(log.Errors(), Lines{c.error});
    EXPECT_EQ(std::memcmp(&engine, &before, sizeof engine), 0);
  }
}

}  // namespace
}  // namespace aimhue
