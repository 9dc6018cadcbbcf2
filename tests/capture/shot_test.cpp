#include <aimhue/shot.h>
#include <aimhue/target.h>

#include <algorithm>
#include <iterator>

#include <opencv2/imgproc.hpp>

#include "support/test_meters.h"

namespace aimhue::testing {
namespace {

TEST(ShotSetters, PartitionInsideTheScreenAndPatternCounts) {
  Shot shot;
  // Before any partition the counts are stored as given, whatever they are.
  ASSERT_EQ(shot.SetPattern(Pattern{7, 3, 3, 2, 0, 99, -5}), kOk);
  EXPECT_EQ(shot.pattern->lighted_led_h, -5);
  ASSERT_EQ(shot.SetPartition(Partition{0, 0, 10, 9, 10, 9}), kOk);
  ASSERT_EQ(shot.SetPattern(Pattern{7, 3, 3, 2, 0, 0, 0}), kOk);
  EXPECT_EQ(shot.pattern->lighted_led_w, 3);                        // columns 2, 5, 8
  EXPECT_EQ(shot.pattern->lighted_led_h, 3);                        // rows 0, 3, 6
  ASSERT_EQ(shot.SetPattern(Pattern{7, 3, 3, 2, 0, 3, 3}), kOk);    // agreeing counts
  ASSERT_EQ(shot.SetPartition(Partition{2, 0, 8, 9, 10, 9}), kOk);  // x + w == screen_w
  std::vector<Refusal<Shot>> refusals;
  for (const Partition& bad :
       {Partition{2, 0, 9, 9, 10, 9}, Partition{-1, 0, 1, 1, 10, 9}, Partition{0, 0, 0, 1, 10, 9},
        Partition{0, 0, 1, 1, 0, 9}, Partition{0, 1, 0x7fffffff, 1, 10, 9}}) {
    refusals.push_back({[=](Shot& s) { return s.SetPartition(bad); },
                        kBadPartition,
                        {"Shot::SetPartition--Error :: invalid screen wh or partition xywh"}});
  }
  // Phase outside the period, or no period.
  for (const Pattern& bad : {Pattern{9, 3, 3, 3, 0, 0, 0}, Pattern{9, 0, 3, 0, 0, 0, 0},
                             Pattern{9, 3, 3, 0, -1, 0, 0}}) {
    refusals.push_back({[=](Shot& s) { return s.SetPattern(bad); },
                        kBadPattern,
                        {"Shot::SetPattern--Error :: invalid pattern_type pattern_loc_xy"}});
  }
  ExpectRefusals<Shot>(shot, refusals);
  // Disagreeing counts: 103, and the pattern is stored as given all the same.
  LogCapture log;
  EXPECT_EQ(shot.SetPattern(Pattern{8, 3, 3, 2, 0, 4, 3}), kPatternPartitionMismatch);
  EXPECT_EQ(log.Errors(), Lines{"Shot::SetPattern or SetPartition --Error :: mismatch pattern "
                                "and partition info"});
  EXPECT_EQ(shot.pattern->type, 8);
  EXPECT_EQ(shot.pattern->lighted_led_w, 4);
}

TEST(ShotImage, ColourSetterTakesThePlaneOfTheTypeOrRefuses) {
  cv::Mat raw(6, 8, CV_16UC1), expected;
  cv::randu(raw, 0, 4096);
  cv::demosaicing(raw, expected, cv::COLOR_BayerBG2BGR);
  const uint32_t types[] = {CAM_R, CAM_G, CAM_B, CAM_RGB};
  for (int plane = 0; plane < 4; ++plane) {
    Shot shot;
    ASSERT_EQ(shot.SetImageColor(raw, cv::COLOR_BayerBG2BGR, types[plane]), kOk);
    cv::Mat wanted = expected;
    if (plane < 3) cv::extractChannel(expected, wanted, plane);
    EXPECT_EQ(shot.image.type(), wanted.type());
    EXPECT_EQ(cv::norm(shot.image, wanted, cv::NORM_INF), 0.0);
    EXPECT_EQ(shot.type, types[plane]);
  }
  const auto set = [&](const cv::Mat& image, int bayer, uint32_t type) {
    return [=](Shot& s) { return s.SetImageColor(image, bayer, type); };
  };
  const std::string bayer_line = "Shot::SetImageColor--Error :: in_bayer_type";
  const std::string type_line =
      "Shot::SetImage--Error :: in_cie_type != CAM_R && in_cie_type != CAM_G && in_cie_type != "
      "CAM_B && in_cie_type != CAM_RGB";
  const std::string data_line = "Shot::SetImageColor--Error :: data and type mismatch";
  const cv::Mat bytes(4, 4, CV_8UC1);
  Shot shot;
  ExpectRefusals<Shot>(
      shot, {{set(raw, cv::COLOR_BayerRG2BGR, CIE_Y), kUnsupportedCaptureType, {type_line}},
             {set(bytes, cv::COLOR_BayerRG2BGR, CAM_R), kBadImageDataType, {data_line}},
             {set(raw, 0, CAM_R), kZeroBayerCode, {bayer_line}},
             {set(raw, cv::COLOR_BayerRG2GRAY, CAM_RGB), kOutOfRange, {bayer_line}},
             {set(raw, cv::COLOR_BGR2HSV, CAM_RGB), kOutOfRange, {bayer_line}}});
}

TEST(ShotCheck, TestsRunInTheirOrder) {
  const std::string error = "Shot::Check--Error ";
  {
    LogCapture log;
    EXPECT_EQ(Shot::Check(0x100, nullptr), kNullInput);  // refused, not dereferenced
    EXPECT_EQ(Shot::Check(0x0, nullptr), kOk);
    EXPECT_EQ(log.Errors(), Lines{error + "in Shot input is nullptr"});
  }
  Shot shot;
  const Shot* tested = nullptr;
  shot.image = cv::Mat(0, 5, CV_16UC1);
  shot.type = CAM_RGB;
  ExpectOrder(
      [&] { return Shot::Check(0x111107, tested); },
      {{kNullInput, error + "in Shot input is nullptr", [&] { tested = &shot; }},
       {kNullInput, error + "shot.image is empty",
        [&] { shot.image = cv::Mat(2, 2, CV_16UC1, cv::Scalar(0)); }},
       {kUnsupportedCaptureType, error + "::  only support single channel",
        [&] { shot.type = CIE_Y; }},
       {kNoColor, error + ":: meta::color info incompleted.", [&] { shot.SetColor(2); }},
       {kNoDevice, error + ":: meta::device info incompleted.", [&] { shot.SetDevice(Device{}); }},
       {kBadPattern, error + "::  pattern meta info incompleted.",
        [&] {
          shot.SetPattern(Pattern{0, 1, 1, 0, 0, 1, 1});
        }},
       {kBadLedPanel, error + "::  panel meta info incompleted.", [&] {
          shot.SetLedPanel(LedPanel{0, 0, 0, 1, 1, 1.0f});
        }}});
  // The pair form: the second shot, then the first, then the pair.
  Shot a, b;
  a.image = cv::Mat(2, 3, CV_16UC1, cv::Scalar(0));
  a.type = CIE_X;
  ExpectOrder([&] { return Shot::Check(0x33, &a, &b); },
              {{kNullInput, error + "shot.image is empty",
                [&] { b.image = cv::Mat(3, 2, CV_16UC1, cv::Scalar(0)), b.type = CIE_Y; }},
               {kCaptureMismatch, error + ":: meta::type mismatch.", [&] { b.type = CIE_X; }},
               {kCaptureMismatch, error + ":: image size mismatch.", [&] { b.image = a.image; }}});
}

// Only present records are described; a device text that fills its 64
// bytes without a terminator is printed up to its end and no further.
TEST(ShotInfo, DescribesPresentRecordsAndTheImage) {
  Shot shot;
  Device device{};
  std::fill(std::begin(device.id), std::end(device.id), 'd');
  device.cam_type = 7;
  ASSERT_EQ(shot.SetDevice(device), kOk);
  ASSERT_EQ(shot.SetColor(kBlue), kOk);
  shot.type = CIE_Y;
  shot.image = cv::Mat(3, 5, CV_32FC3);
  LogCapture log;
  shot.Info();
  EXPECT_EQ(log.Infos(), Lines{"Shot::Info"});
  EXPECT_EQ(log.Debugs(), (Lines{"    color                  = 4",
                                 "    device.id              = " + std::string(64, 'd'),
                                 "    device.cam_type        = 7",
                                 "    device.lens_id         = ",
                                 "    device.lens_type       = 0",
                                 "    type                   = 0x2",
                                 "    image.type(cv)         = 21",
                                 "    image.depth(cv)        = 5",
                                 "    image.channels(cv)     = 3",
                                 "    image.wh(cv)           = [5 3]"}));
}

}  // namespace
}  // namespace aimhue::testing
