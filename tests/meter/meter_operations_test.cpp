#include <aimhue/led_meter.h>
#include <aimhue/target.h>

#include <cmath>
#include <opencv2/imgcodecs.hpp>

#include "support/temp_dir.h"
#include "support/test_meters.h"

namespace aimhue::testing {
namespace {

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

// The LEDs that the cell of `shot` lights: value 100 * row + column of the
// screen, position (column + 0.25, row + 0.5), only LED (3, 4) dead.
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
  LedSet positions, values;
  for (const cv::Point cell :
       {cv::Point(1, 1), cv::Point(0, 0), cv::Point(1, 0), cv::Point(0, 1)}) {
    const Shot shot = GridShot(cell.x, cell.y);
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
  EXPECT_EQ(meter.layer->value, 200);
  const Shot again = GridShot(1, 0);
  GridSets(again, &positions, &values);
  ExpectRefusals<LedMeter>(meter, {{[&](LedMeter& m) { return m.Add(&again, &positions, &values); },
                                    kCaptureAlreadyAdded,
                                    {"LedMeter::CheckInput--Error :: data has added."}}});
}

TEST(MeterAdd, RefusedCapturesLeaveTheMeter) {
  LedMeter meter;
  LedSet positions, values, empty, wrong_size{cv::Mat(1, 1, CV_8UC1), cv::Mat(1, 1, CV_32FC1)};
  const Shot first = GridShot(0, 0);
  GridSets(first, &positions, &values);
  ASSERT_EQ(meter.Add(&first, nullptr, &values), kOk);  // positions not begun
  Shot next[6] = {GridShot(1, 0), GridShot(1, 0), GridShot(1, 0),
                  GridShot(1, 0), GridShot(1, 0), GridShot(1, 0)};
  GridSets(next[0], &positions, &values);
  next[1].SetColor(4);
  next[2].SetColor(4);
  next[2].image = cv::Mat(2, 2, CV_16UC3);
  next[3].color.reset();
  // Another partition, or an interval that makes another grid, light other
  // LEDs than `values` holds: the capture is from another set, whichever
  // check would see it first.
  next[4].SetPartition(Partition{0, 0, 6, 4, 6, 4});
  next[5].SetPattern(Pattern{1, 1, 2, 0, 0, -1, -1});
  const auto add = [&](const Shot* shot, const LedSet* pos, const LedSet* value) {
    return [=](LedMeter& m) { return m.Add(shot, pos, value); };
  };
  const std::string check = "LedMeter::CheckInput--Error :: ";
  const std::string size = check + "mismatch lighted led width and height.";
  const std::string null_values = "LedMeter::Add--Error :: value_set is nullptr.";
  const std::string no_colour = "Shot::Check--Error :: meta::color info incompleted.";
  ExpectRefusals<LedMeter>(
      meter, {{add(next, &positions, &values), kOutOfSequence, {check + "mismatch sequance."}},
              {add(nullptr, nullptr, &values), kNullInput, {check + "input nullptr."}},
              {add(next, nullptr, nullptr), kNullInput, {null_values}},
              {add(next, nullptr, &wrong_size), kLitLedSizeMismatch, {size}},
              {add(next, nullptr, &empty), kEmptyInput, {check + "inpute empty."}},
              {add(next + 1, nullptr, &values), kNotSameSet, {check + "data not in same set."}},
              {add(next + 2, nullptr, &values), kMultiChannelCapture, {check + "multi channels"}},
              {add(next + 3, nullptr, &values), kNoColor, {no_colour}},
              {add(next + 4, nullptr, &values), kNotSameSet, {check + "data not in same set."}},
              {add(next + 5, nullptr, &values), kNotSameSet, {check + "data not in same set."}}});
}

TEST(MeterAlign, DiscToTheScreenEdgeOrWholePlane) {
  LedMeter meter;
  meter.type = CIE_Y;
  meter.chroma = cv::Mat(10, 10, CV_32FC1, cv::Scalar(2.0f));
  const float targets[3] = {1.0f, 8.0f, 3.0f};
  const int point[2] = {5, 5}, six = 6, five = 5;
  ExpectRefusals<LedMeter>(meter,
                           {{[&](LedMeter& m) { return m.Align(targets, point, &six); },
                             kBadAlignment,
                             {"LedMeter::Align--Error :: in_point or in_radius is invalid"}}});
  EXPECT_EQ(meter.Align(targets, point, &five), kOk);  // the disc reaches row and column 10
  EXPECT_EQ(meter.chroma.at<float>(9, 9), 8.0f);

  meter.type = CIE_Z;
  const float z_targets[3] = {0.0f, 0.0f, 10.0f};
  meter.chroma = (cv::Mat_<float>(2, 3) << 1, 2, 3, 4, 5, 6);
  ASSERT_EQ(meter.Align(z_targets, nullptr, nullptr), kOk);  // the whole plane's mean
  EXPECT_EQ(meter.chroma.at<float>(1, 2), 6.0f * static_cast<float>(10.0 / 3.5));

  LedMeter empty;
  const std::string empty_line = "LedMeter::Align--Error :: chroma empty";
  ExpectRefusals<LedMeter>(
      empty, {{[&](LedMeter& m) { return m.Align(z_targets, nullptr, nullptr); },
               kEmptyInput,
               {empty_line}},
              {[](LedMeter& m) { return m.FixDeadPoint(); }, kEmptyInput, {empty_line}}});
}

TEST(MeterExport, GreyChromaAndPointPictures) {
  TempDir dir;
  LedMeter meter;
  meter.chroma = (cv::Mat_<float>(2, 2) << 1, 2, 4, -8);
  meter.SetPartition(Partition{1, 1, 2, 2, 4, 3});
  ASSERT_EQ(meter.ExportGrayChroma(dir.Path("screen.png"), 3.0, {cv::Point(0, 0)}, true), kOk);
  const cv::Mat screen = cv::imread(dir.Path("screen.png"), cv::IMREAD_UNCHANGED);
  EXPECT_EQ(screen.size(), cv::Size(12, 9));
  EXPECT_EQ(screen.at<uint8_t>(0, 0), 0);
  EXPECT_EQ(screen.at<uint8_t>(8, 5), 128);  // LED (row 1, column 0) of the region
  meter.pos = cv::Mat(1, 2, CV_32FC2, cv::Scalar(10.0f, 20.0f));

  const std::string grey = "LedMeter::ExportGrayChroma--Error :: ";
  const std::string point = "LedMeter::ExportPointImage--Error :: ";
  const auto scaled = [&](double scale) {
    return [=, &dir](LedMeter& m) { return m.ExportGrayChroma(dir.Path("a.png"), scale); };
  };
  const auto points = [&](const std::string& name, int channel, bool empty) {
    return [=, &dir](LedMeter& m) {
      const LedMeter none;
      return (empty ? none : m).ExportPointImage(dir.Path(name), channel);
    };
  };
  ExpectRefusals<LedMeter>(
      meter, {{scaled(0.0), kOutOfRange, {grey + "scale"}},
              {scaled(NAN), kOutOfRange, {grey + "scale"}},
              {scaled(1e9), kOutOfRange, {grey + "scale"}},
              {[&](LedMeter&) { return LedMeter().ExportGrayChroma(dir.Path("a.png")); },
               kEmptyInput,
               {grey + "empty"}},
              {points("z.png", 2, false), kOutOfRange, {point + "channel"}},
              {points("a.png", 0, true), kEmptyInput, {point + "empty"}},
              {points("a.unknown-extension", 0, false), kOpenWriteFailed, {point + "imwrite"}}});
}

TEST(MeterMerge, CopiesTheMaskedValuesAndRefusesMismatches) {
  LedMeter meter = MakeMeter(CIE_Y, kGreen, 2, 3, 1.0f);
  const LedMeter source = MakeMeter(CIE_Y, kGreen, 2, 3, 5.0f);
  const cv::Mat mask = (cv::Mat_<uint8_t>(2, 3) << 0, 1, 0, 255, 0, 7);
  ASSERT_EQ(meter.MergeChroma(source, mask), kOk);
  const cv::Mat merged = (cv::Mat_<float>(2, 3) << 1, 5, 1, 5, 1, 5);
  EXPECT_EQ(cv::norm(meter.chroma, merged, cv::NORM_INF), 0.0);
  // Half floats cannot be compared by OpenCV, which throws: one line, meter kept.
  const std::string before = Bytes(meter);
  {
    LogCapture log;
    EXPECT_EQ(meter.MergeChroma(source, cv::Mat(2, 3, CV_16FC1, cv::Scalar(1))), kOutOfRange);
    ASSERT_EQ(log.Errors().size(), 1u);
    EXPECT_EQ(log.Errors()[0].rfind("LedMeter::MergeChroma--Error :: exception: ", 0), 0u);
    EXPECT_EQ(Bytes(meter), before);
  }
  const LedMeter wide = MakeMeter(CIE_Y, kGreen, 2, 4, 7.0f);
  LedMeter empty;
  ExpectRefusals<LedMeter>(
      meter, {{[&](LedMeter& m) { return m.MergeChroma(empty, mask); }, kEmptyInput,
               {"LedMeter::MergeChroma--Error :: input empty"}},
              {[&](LedMeter& m) { return m.MergeChroma(source, cv::Mat()); }, kEmptyInput,
               {"LedMeter::MergeChroma--Error :: input empty"}},
              {[&](LedMeter& m) { return m.MergeChroma(wide, mask); }, kOutOfRange,
               {"LedMeter::MergeChroma--Error :: input size mismatch"}},
              {[&](LedMeter& m) { return m.MergeChroma(source, cv::Mat(2, 3, CV_8UC2)); },
               kOutOfRange, {"LedMeter::MergeChroma--Error :: input size mismatch"}}});
}

}  // namespace
}  // namespace aimhue::testing
