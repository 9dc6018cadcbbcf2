#include <aimhue/led_meter.h>
#include <aimhue/shot.h>
#include <aimhue/status.h>
#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>

#include "support/log_capture.h"
#include "support/temp_dir.h"

namespace aimhue {
namespace {

using ::aimhue::testing::LogCapture;
using ::aimhue::testing::TempDir;
using Lines = std::vector<std::string>;

// One capture of cell (cx, cy) of a 2 x 2 grid over a 5 x 4 partition.
Shot GridShot(int cx, int cy) {
  Shot shot;
  shot.SetImageSingle(cv::Mat(4, 4, CV_16UC1, cv::Scalar(0)), CIE_Y);
  shot.SetPartition(Partition{0, 0, 5, 4, 5, 4});
  shot.SetPattern(Pattern{1, 2, 2, cx, cy, -1, -1});
  shot.SetColor(2);
  shot.SetLayer(Layer{1, 0.5f, 200});
  return shot;
}

// The LEDs that cell (cx, cy) lights, with value 100 * row + column of the
// screen and position (column + 0.25, row + 0.5).
void GridSets(const Shot& shot, LedSet* positions, LedSet* values) {
  const Pattern& pattern = *shot.pattern;
  const cv::Size lit(pattern.lighted_led_w, pattern.lighted_led_h);
  values->data.create(lit, CV_32FC1);
  values->state.create(lit, CV_8UC1);
  positions->data.create(lit, CV_32FC2);
  positions->state = cv::Mat::zeros(lit, CV_8UC1);
  for (int i = 0; i < lit.height; ++i) {
    for (int j = 0; j < lit.width; ++j) {
      const int row = pattern.loc_y + i * 2;
      const int column = pattern.loc_x + j * 2;
      values->data.at<float>(i, j) = static_cast<float>(100 * row + column);
      values->state.at<uint8_t>(i, j) = static_cast<uint8_t>(row == 3 && column == 4);
      positions->data.at<cv::Vec2f>(i, j) = cv::Vec2f(column + 0.25f, row + 0.5f);
    }
  }
}

TEST(MeterAdd, FourCapturesOfATwoByTwoGridFillTheMeter) {
  LedMeter meter;
  for (const cv::Point cell : {cv::Point(1, 1), cv::Point(0, 0), cv::Point(1, 0), cv::Point(0, 1)}) {
    const Shot shot = GridShot(cell.x, cell.y);
    LedSet positions;
    LedSet values;
    GridSets(shot, &positions, &values);
    ASSERT_EQ(meter.Add(&shot, &positions, &values), kOk);
  }
  ASSERT_EQ(meter.chroma.size(), cv::Size(5, 4));
  for (int row = 0; row < 4; ++row) {
    for (int column = 0; column < 5; ++column) {
      EXPECT_EQ(meter.chroma.at<float>(row, column), 100.0f * row + column);
      EXPECT_EQ(meter.pos.at<cv::Vec2f>(row, column), cv::Vec2f(column + 0.25f, row + 0.5f));
      EXPECT_EQ(meter.state.at<uint8_t>(row, column), row == 3 && column == 4 ? 1 : 0);
    }
  }
  EXPECT_EQ(cv::countNonZero(meter.add_map), 0);
  EXPECT_EQ(meter.color, 2u);
  EXPECT_EQ(meter.type, static_cast<uint32_t>(CIE_Y));
  ASSERT_NE(meter.layer, nullptr);
  EXPECT_EQ(meter.layer->value, 200);

  LogCapture log;
  const Shot again = GridShot(1, 0);
  LedSet positions;
  LedSet values;
  GridSets(again, &positions, &values);
  const cv::Mat before = meter.chroma.clone();
  EXPECT_EQ(meter.Add(&again, &positions, &values), kCaptureAlreadyAdded);
  EXPECT_EQ(log.Errors(), Lines{"LedMeter::CheckInput--Error :: data has added."});
  EXPECT_EQ(cv::norm(before, meter.chroma, cv::NORM_INF), 0.0);
}

TEST(MeterAdd, RefusedCapturesLeaveTheMeter) {
  LogCapture log;
  LedMeter meter;
  const Shot first = GridShot(0, 0);
  LedSet positions;
  LedSet values;
  GridSets(first, &positions, &values);
  ASSERT_EQ(meter.Add(&first, nullptr, &values), kOk);
  const cv::Mat add_map = meter.add_map.clone();
  log.Clear();

  Shot next = GridShot(1, 0);
  GridSets(next, &positions, &values);
  EXPECT_EQ(meter.Add(&next, &positions, &values), kOutOfSequence);  // positions not begun
  EXPECT_EQ(meter.Add(nullptr, nullptr, &values), kNullInput);
  EXPECT_EQ(meter.Add(&next, nullptr, nullptr), kNullInput);
  LedSet wrong_size = values;
  wrong_size.data = cv::Mat(1, 1, CV_32FC1);
  wrong_size.state = cv::Mat(1, 1, CV_8UC1);
  EXPECT_EQ(meter.Add(&next, nullptr, &wrong_size), kLitLedSizeMismatch);
  LedSet empty;
  EXPECT_EQ(meter.Add(&next, nullptr, &empty), kEmptyInput);
  next.SetColor(4);
  EXPECT_EQ(meter.Add(&next, nullptr, &values), kNotSameSet);
  next.image = cv::Mat(2, 2, CV_16UC3);
  EXPECT_EQ(meter.Add(&next, nullptr, &values), kMultiChannelCapture);
  Shot colourless = GridShot(1, 0);
  colourless.color.reset();
  EXPECT_EQ(meter.Add(&colourless, nullptr, &values), kNoColor);
  EXPECT_EQ(log.Errors(), (Lines{"LedMeter::CheckInput--Error :: mismatch sequance.",
                                 "LedMeter::CheckInput--Error :: input nullptr.",
                                 "LedMeter::Add--Error :: value_set is nullptr.",
                                 "LedMeter::CheckInput--Error :: mismatch lighted led width and "
                                 "height.",
                                 "LedMeter::CheckInput--Error :: inpute empty.",
                                 "LedMeter::CheckInput--Error :: data not in same set.",
                                 "LedMeter::CheckInput--Error :: multi channels",
                                 "Shot::Check--Error :: meta::color info incompleted."}));
  EXPECT_EQ(cv::norm(add_map, meter.add_map, cv::NORM_INF), 0.0);
  EXPECT_EQ(meter.color, 2u);
}

TEST(MeterAdd, LoadedShotsCannotSteerTheScatterOutOfThePlanes) {
  LogCapture log;
  LedSet positions;
  LedSet values;
  Shot shot = GridShot(1, 1);
  GridSets(shot, &positions, &values);
  // Metadata changed behind the setters' back, as a loaded shot may hold.
  shot.pattern->loc_x = 2;
  LedMeter meter;
  EXPECT_EQ(meter.Add(&shot, &positions, &values), kBadPattern);
  shot.pattern->loc_x = 1;
  shot.pattern->interval_x = 1 << 30;
  EXPECT_EQ(meter.Add(&shot, &positions, &values), kBadPattern);
  shot.pattern->interval_x = 2;
  shot.part->w = 1 << 30;
  EXPECT_EQ(meter.Add(&shot, &positions, &values), kLitLedSizeMismatch);
  shot.part.reset();
  EXPECT_EQ(meter.Add(&shot, &positions, &values), kBadPartition);
  EXPECT_TRUE(meter.add_map.empty());
  EXPECT_TRUE(meter.chroma.empty());
}

TEST(MeterAlign, DiscBoundsAreInclusive) {
  LogCapture log;
  LedMeter meter;
  meter.type = CIE_Y;
  meter.chroma = cv::Mat(10, 10, CV_32FC1, cv::Scalar(2.0f));
  const float targets[3] = {1.0f, 8.0f, 3.0f};
  const int point[2] = {5, 5};
  const int five = 5;
  const int six = 6;
  EXPECT_EQ(meter.Align(targets, point, &six), kBadAlignment);
  EXPECT_EQ(log.Errors(), Lines{"LedMeter::Align--Error :: in_point or in_radius is invalid"});
  EXPECT_EQ(meter.chroma.at<float>(0, 0), 2.0f);
  EXPECT_EQ(meter.Align(targets, point, &five), kOk);  // reaches row and column 10
  EXPECT_EQ(meter.chroma.at<float>(9, 9), 8.0f);
}

TEST(MeterAlign, RadiusZeroNegativeAndWholePlane) {
  LedMeter meter;
  meter.type = CIE_Z;
  meter.chroma = (cv::Mat_<float>(2, 3) << 1, 2, 3, 4, 5, 6);
  const float targets[3] = {0.0f, 0.0f, 10.0f};
  const int point[2] = {1, 1};
  const int zero = 0;
  ASSERT_EQ(meter.Align(targets, point, &zero), kOk);  // the element at (row 1, column 1)
  EXPECT_EQ(meter.chroma.at<float>(1, 1), 10.0f);
  EXPECT_EQ(meter.chroma.at<float>(0, 0), 1.0f * (10.0f / 5.0f));

  meter.chroma = (cv::Mat_<float>(2, 3) << 1, 2, 3, 4, 5, 6);
  ASSERT_EQ(meter.Align(targets, nullptr, nullptr), kOk);
  const float factor = static_cast<float>(10.0 / 3.5);
  EXPECT_EQ(meter.chroma.at<float>(1, 2), 6.0f * factor);

  const int negative = -1;
  const int inside[2] = {0, 0};
  ASSERT_EQ(meter.Align(targets, inside, &negative), kOk);
  EXPECT_TRUE(std::isnan(meter.chroma.at<float>(0, 0)));

  LogCapture log;
  LedMeter empty;
  EXPECT_EQ(empty.Align(targets, nullptr, nullptr), kEmptyInput);
  EXPECT_EQ(empty.FixDeadPoint(), kEmptyInput);
  EXPECT_EQ(log.Errors(), Lines(2, "LedMeter::Align--Error :: chroma empty"));
}

// The literal repair: the median of each dead LED's 3 x 3 neighbourhood,
// the border replicated.
float Median3x3(const cv::Mat& plane, int row, int column) {
  std::vector<float> values;
  for (int dy = -1; dy <= 1; ++dy) {
    for (int dx = -1; dx <= 1; ++dx) {
      const int r = std::min(std::max(row + dy, 0), plane.rows - 1);
      const int c = std::min(std::max(column + dx, 0), plane.cols - 1);
      values.push_back(plane.at<float>(r, c));
    }
  }
  std::nth_element(values.begin(), values.begin() + 4, values.end());
  return values[4];
}

TEST(MeterFixDeadPoint, DeadLedsTakeTheMedianOthersStay) {
  cv::RNG random(7);
  for (int trial = 0; trial < 50; ++trial) {
    LedMeter meter;
    const int rows = 1 + random.uniform(0, 12);
    const int cols = 1 + random.uniform(0, 12);
    meter.chroma.create(rows, cols, CV_32FC1);
    random.fill(meter.chroma, cv::RNG::UNIFORM, -100.0f, 100.0f);
    meter.state.create(rows, cols, CV_8UC1);
    random.fill(meter.state, cv::RNG::UNIFORM, 0, 4);
    const cv::Mat before = meter.chroma.clone();
    ASSERT_EQ(meter.FixDeadPoint(), kOk);
    for (int r = 0; r < rows; ++r) {
      for (int c = 0; c < cols; ++c) {
        const float expected =
            (meter.state.at<uint8_t>(r, c) & 1) ? Median3x3(before, r, c) : before.at<float>(r, c);
        ASSERT_EQ(meter.chroma.at<float>(r, c), expected) << rows << "x" << cols;
      }
    }
  }
  LedMeter healthy;
  healthy.chroma = (cv::Mat_<float>(2, 2) << 1, 100, 3, 4);
  healthy.state = cv::Mat::zeros(2, 2, CV_8UC1);
  ASSERT_EQ(healthy.FixDeadPoint(), kOk);
  EXPECT_EQ(healthy.chroma.at<float>(0, 1), 100.0f);
}

TEST(MeterExport, GreyChromaAndPointPictures) {
  TempDir dir;
  LogCapture log;
  LedMeter meter;
  meter.chroma = (cv::Mat_<float>(2, 2) << 1, 2, 4, -8);
  ASSERT_EQ(meter.ExportGrayChroma(dir.Path("chroma.png")), kOk);
  EXPECT_EQ(cv::norm(cv::imread(dir.Path("chroma.png"), cv::IMREAD_UNCHANGED),
                     cv::Mat((cv::Mat_<uint8_t>(2, 2) << 32, 64, 128, 0)), cv::NORM_INF),
            0.0);
  meter.SetPartition(Partition{1, 1, 2, 2, 4, 3});
  ASSERT_EQ(meter.ExportGrayChroma(dir.Path("screen.png"), 3.0, {cv::Point(0, 0)}, true), kOk);
  const cv::Mat screen = cv::imread(dir.Path("screen.png"), cv::IMREAD_UNCHANGED);
  EXPECT_EQ(screen.size(), cv::Size(12, 9));
  EXPECT_EQ(screen.at<uint8_t>(0, 0), 0);
  EXPECT_EQ(screen.at<uint8_t>(8, 5), 128);  // LED (row 1, column 0) of the region
  EXPECT_EQ(meter.ExportGrayChroma(dir.Path("a.png"), 0.0), kOutOfRange);
  EXPECT_EQ(meter.ExportGrayChroma(dir.Path("a.png"), NAN), kOutOfRange);
  EXPECT_EQ(meter.ExportGrayChroma(dir.Path("a.png"), 1e9), kOutOfRange);

  meter.pos = cv::Mat(1, 2, CV_32FC2, cv::Scalar(10.0f, 20.0f));
  ASSERT_EQ(meter.ExportPointImage(dir.Path("y.png"), 1), kOk);
  EXPECT_EQ(cv::imread(dir.Path("y.png"), cv::IMREAD_UNCHANGED).at<uint8_t>(0, 1), 255);
  EXPECT_EQ(meter.ExportPointImage(dir.Path("z.png"), 2), kOutOfRange);
  LedMeter empty;
  EXPECT_EQ(empty.ExportGrayChroma(dir.Path("a.png")), kEmptyInput);
  EXPECT_EQ(empty.ExportPointImage(dir.Path("a.png")), kEmptyInput);
  EXPECT_EQ(meter.ExportPointImage(dir.Path("a.unknown-extension")), kOpenWriteFailed);
  EXPECT_EQ(log.Errors(), (Lines{"LedMeter::ExportGrayChroma--Error :: scale",
                                 "LedMeter::ExportGrayChroma--Error :: scale",
                                 "LedMeter::ExportGrayChroma--Error :: scale",
                                 "LedMeter::ExportPointImage--Error :: channel",
                                 "LedMeter::ExportGrayChroma--Error :: empty",
                                 "LedMeter::ExportPointImage--Error :: empty",
                                 "LedMeter::ExportPointImage--Error :: imwrite"}));
}

}  // namespace
}  // namespace aimhue
