// Every hostile file kept under tests/data/ (written by
// tests/data/make_bad_inputs.py) is refused cleanly: the documented status
// and the loading record unchanged.
#include <aimhue/led_meter.h>
#include <aimhue/shot.h>
#include <aimhue/status.h>
#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <string>
#include <vector>

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

// Shots that load with status 0 but once crashed an operation (an OpenCV
// exception escaped, or OpenCV called a missing half-float kernel): the
// operation is refused with a status and one line, and the shot kept.
TEST(StoredBadInputs, ShotsThatLoadAreRefusedByTheOperationsTheyCrashed) {
  const auto rotate = [](Shot& shot) { return shot.Rotate(90); };
  const auto remove = [](Shot& shot) { return shot.RemoveBackground(shot); };
  const auto colour = [](Shot& shot) { return shot.ExportColorImage("unwritten.png"); };
  const auto grey = [](Shot& shot) { return shot.ExportGrayImage("unwritten.png"); };
  const struct {
    const char* name;
    std::function<int(Shot&)> operation;
    int status;
    std::string error;  // the line, or its start for an exception's text
  } cases[] = {
      {"shot_with_empty_image.shot", rotate, kEmptyInput, "Shot::Rotate--Error :: empty"},
      {"shot_16bit_image_with_five_channels.shot", rotate, kOutOfRange,
       "Shot::Rotate--Error :: exception: "},
      {"shot_half_float_colour_image.shot", remove, kUnsupportedElementType,
       "SHOT::RemoveBackground -- Error element type"},
      {"shot_half_float_colour_image.shot", colour, kUnsupportedElementType,
       "Shot::ExportColorImage--Error :: element type"},
      {"shot_half_float_colour_image.shot", grey, kUnsupportedElementType,
       "Shot::ExportGrayImage--Error :: element type"},
  };
  for (const auto& test : cases) {
    Shot shot;
    ASSERT_EQ(shot.Load(TestDataPath(test.name)), kOk) << test.name;
    const cv::Mat before = shot.image;
    ::aimhue::testing::LogCapture log;
    EXPECT_EQ(test.operation(shot), test.status) << test.name;
    const std::vector<std::string> errors = log.Errors();
    ASSERT_EQ(errors.size(), 1u) << test.name;
    EXPECT_EQ(errors[0].rfind(test.error, 0), 0u) << errors[0];
    EXPECT_EQ(shot.image.data, before.data) << test.name;
    EXPECT_EQ(shot.image.size, before.size) << test.name;
  }
}

}  // namespace
}  // namespace aimhue
