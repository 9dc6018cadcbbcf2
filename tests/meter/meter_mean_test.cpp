#include <aimhue/led_meter.h>

#include <filesystem>

#include "support/temp_dir.h"
#include "support/test_meters.h"

namespace aimhue::testing {
namespace {

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
  cv::Mat sum = (cv::Mat_<float>(1, 3) << 5, 10, 6);
  sum.convertTo(sum, -1, 1.0 / 3);
  EXPECT_EQ(cv::norm(mean.chroma, sum, cv::NORM_INF), 0.0);
  EXPECT_EQ(mean.state.at<uint8_t>(0, 0), 2);
  EXPECT_EQ(mean.layer->index, 2);
}

TEST(MeterMean, RefusalsWriteNoResult) {
  TempDir dir;
  const std::string first = SaveMeter(dir, "a.meter", 2, (cv::Mat_<float>(1, 2) << 1, 2));
  const std::string other = SaveMeter(dir, "b.meter", 4, (cv::Mat_<float>(1, 2) << 1, 2));
  const std::string wide = SaveMeter(dir, "c.meter", 2, (cv::Mat_<float>(1, 3) << 1, 2, 3));
  const std::string missing = dir.Path("missing.meter");
  const auto mean = [](std::vector<std::string> files, int count) {
    return [=](std::string& out) { return LedMeter::MeterMean(files, count, out); };
  };
  const std::string line = "LedMeter::MeterMean--Error ";
  std::string out = dir.Path("mean.meter");
  ExpectRefusals<std::string>(
      out,
      {{mean({first, first}, 3), kWrongFileCount, {line + "in file num"}},
       {mean({}, 0), kWrongFileCount, {line + "in file num"}},
       {mean({first, other}, 2), kOutOfRange, {line + "files are not in same color"}},
       {mean({first, wide}, 2), kOutOfRange, {line + "files are not in same size"}},
       {mean({first, ""}, 2), kNullInput, {line + ":: empty file name"}},
       {mean({first, missing}, 2),
        kOpenReadFailed,
        {"LedMeter::Load -- Failed to Open file. fullname = " + missing}}},
      [](const std::string& file) { return std::to_string(std::filesystem::exists(file)); });
  EXPECT_FALSE(std::filesystem::exists(out));
}

}  // namespace
}  // namespace aimhue::testing
