#include <aimhue/led_meter.h>
#include <aimhue/status.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "support/log_capture.h"
#include "support/temp_dir.h"

namespace aimhue {
namespace {

using ::aimhue::testing::LogCapture;
using ::aimhue::testing::TempDir;
using Lines = std::vector<std::string>;

std::string SaveMeter(const TempDir& dir, const std::string& name, uint32_t color,
                      const cv::Mat& chroma) {
  LedMeter meter;
  meter.color = color;
  meter.type = CIE_Y;
  meter.chroma = chroma;
  meter.state = cv::Mat(chroma.size(), CV_8UC1, cv::Scalar(color));
  meter.SetLayer(Layer{static_cast<int32_t>(color), 1.0f, 1});
  EXPECT_EQ(meter.Save(dir.Path(name)), kOk);
  return dir.Path(name);
}

TEST(MeterMean, AveragesTheValuePlanesOnly) {
  TempDir dir;
  const std::string first = SaveMeter(dir, "a.meter", 2, (cv::Mat_<float>(1, 3) << 1, 2, 3));
  const std::string second = SaveMeter(dir, "b.meter", 2, (cv::Mat_<float>(1, 3) << 3, 6, 0));
  ASSERT_EQ(LedMeter::MeterMean({first, second, first}, 3, dir.Path("mean.meter")), kOk);
  LedMeter mean;
  ASSERT_EQ(mean.Load(dir.Path("mean.meter")), kOk);
  const cv::Mat expected = (cv::Mat_<float>(1, 3) << 5.0 / 3, 10.0 / 3, 6.0 / 3);
  cv::Mat sum = (cv::Mat_<float>(1, 3) << 5, 10, 6);
  sum.convertTo(sum, -1, 1.0 / 3);
  EXPECT_EQ(cv::norm(mean.chroma, sum, cv::NORM_INF), 0.0);
  EXPECT_LT(cv::norm(mean.chroma, expected, cv::NORM_INF), 1e-6);
  EXPECT_EQ(mean.state.at<uint8_t>(0, 0), 2);
  EXPECT_EQ(mean.layer->index, 2);
}

TEST(MeterMean, RefusalsWriteNoResult) {
  LogCapture log;
  TempDir dir;
  const std::string first = SaveMeter(dir, "a.meter", 2, (cv::Mat_<float>(1, 2) << 1, 2));
  const std::string other = SaveMeter(dir, "b.meter", 4, (cv::Mat_<float>(1, 2) << 1, 2));
  const std::string wide = SaveMeter(dir, "c.meter", 2, (cv::Mat_<float>(1, 3) << 1, 2, 3));
  const std::string out = dir.Path("mean.meter");
  log.Clear();
  EXPECT_EQ(LedMeter::MeterMean({first, first}, 3, out), kWrongFileCount);
  EXPECT_EQ(LedMeter::MeterMean({}, 0, out), kWrongFileCount);
  EXPECT_EQ(LedMeter::MeterMean({first, other}, 2, out), kOutOfRange);
  EXPECT_EQ(LedMeter::MeterMean({first, wide}, 2, out), kOutOfRange);
  EXPECT_EQ(LedMeter::MeterMean({first, ""}, 2, out), kNullInput);
  EXPECT_EQ(LedMeter::MeterMean({first, dir.Path("missing.meter")}, 2, out), kOpenReadFailed);
  const Lines errors = log.Errors();
  ASSERT_GE(errors.size(), 5u);
  EXPECT_EQ(Lines(errors.begin(), errors.begin() + 5),
            (Lines{"LedMeter::MeterMean--Error in file num", "LedMeter::MeterMean--Error in file num",
                   "LedMeter::MeterMean--Error files are not in same color",
                   "LedMeter::MeterMean--Error files are not in same size",
                   "LedMeter::MeterMean--Error :: empty file name"}));
  EXPECT_FALSE(std::filesystem::exists(out));
}

}  // namespace
}  // namespace aimhue
