#include <aimhue/shot.h>
#include <aimhue/status.h>
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include <opencv2/imgproc.hpp>

#include "support/log_capture.h"

namespace aimhue {
namespace {

using ::aimhue::testing::LogCapture;
using Lines = std::vector<std::string>;

TEST(ShotSetters, PartitionMustLieInsideThePositiveScreen) {
  LogCapture log;
  Shot shot;
  EXPECT_EQ(shot.SetPartition(Partition{2, 0, 8, 9, 10, 9}), kOk);  // x + w == screen_w
  for (const Partition& bad : {Partition{2, 0, 9, 9, 10, 9}, Partition{-1, 0, 1, 1, 10, 9},
                               Partition{0, 0, 0, 1, 10, 9}, Partition{0, 0, 1, 1, 0, 9},
                               Partition{0, 1, 0x7fffffff, 1, 10, 9}}) {
    log.Clear();
    EXPECT_EQ(shot.SetPartition(bad), kBadPartition);
    EXPECT_EQ(log.Errors(), Lines{"Shot::SetPartition--Error :: invalid screen wh or partition xywh"});
  }
  EXPECT_EQ(shot.part->x, 2);  // the refused records left the first one
  EXPECT_EQ(shot.part->w, 8);
}

TEST(ShotSetters, PatternCountsLitLedsOfThePartition) {
  LogCapture log;
  Shot shot;
  // Before any partition the counts are stored as given, whatever they are.
  EXPECT_EQ(shot.SetPattern(Pattern{7, 3, 3, 2, 0, 99, -5}), kOk);
  EXPECT_EQ(shot.pattern->lighted_led_w, 99);
  EXPECT_EQ(shot.pattern->lighted_led_h, -5);

  ASSERT_EQ(shot.SetPartition(Partition{0, 0, 10, 9, 10, 9}), kOk);
  EXPECT_EQ(shot.SetPattern(Pattern{7, 3, 3, 2, 0, 0, 0}), kOk);
  EXPECT_EQ(shot.pattern->lighted_led_w, 3);  // columns 2, 5, 8
  EXPECT_EQ(shot.pattern->lighted_led_h, 3);  // rows 0, 3, 6
  EXPECT_EQ(shot.SetPattern(Pattern{7, 3, 3, 2, 0, 3, 3}), kOk);
  EXPECT_TRUE(log.Errors().empty());

  // Disagreeing counts: 103, and the pattern is stored as given all the same.
  EXPECT_EQ(shot.SetPattern(Pattern{8, 3, 3, 2, 0, 4, 3}), kPatternPartitionMismatch);
  EXPECT_EQ(log.Errors(),
            Lines{"Shot::SetPattern or SetPartition --Error :: mismatch pattern and partition info"});
  EXPECT_EQ(shot.pattern->type, 8);
  EXPECT_EQ(shot.pattern->lighted_led_w, 4);

  // Phase outside the period, or no period: refused, nothing stored.
  for (const Pattern& bad : {Pattern{9, 3, 3, 3, 0, 0, 0}, Pattern{9, 0, 3, 0, 0, 0, 0},
                             Pattern{9, 3, 3, 0, -1, 0, 0}}) {
    log.Clear();
    EXPECT_EQ(shot.SetPattern(bad), kBadPattern);
    EXPECT_EQ(log.Errors(), Lines{"Shot::SetPattern--Error :: invalid pattern_type pattern_loc_xy"});
    EXPECT_EQ(shot.pattern->type, 8);
  }
}

TEST(ShotImage, ColourSetterRefusesInOrderAndLeavesTheShot) {
  LogCapture log;
  Shot shot;
  const cv::Mat raw(4, 4, CV_16UC1, cv::Scalar(100));
  EXPECT_EQ(shot.SetImageColor(raw, cv::COLOR_BayerRG2BGR, CIE_Y), kUnsupportedCaptureType);
  EXPECT_EQ(shot.SetImageColor(cv::Mat(4, 4, CV_8UC1), cv::COLOR_BayerRG2BGR, CAM_R),
            kBadImageDataType);
  EXPECT_EQ(shot.SetImageColor(raw, 0, CAM_R), kZeroBayerCode);
  EXPECT_EQ(shot.SetImageColor(raw, cv::COLOR_BayerRG2GRAY, CAM_RGB), kOutOfRange);
  EXPECT_EQ(shot.SetImageColor(raw, cv::COLOR_BGR2HSV, CAM_RGB), kOutOfRange);
  EXPECT_EQ(log.Errors(),
            (Lines{"Shot::SetImage--Error :: in_cie_type != CAM_R && in_cie_type != CAM_G && "
                   "in_cie_type != CAM_B && in_cie_type != CAM_RGB",
                   "Shot::SetImageColor--Error :: data and type mismatch",
                   "Shot::SetImageColor--Error :: in_bayer_type",
                   "Shot::SetImageColor--Error :: in_bayer_type",
                   "Shot::SetImageColor--Error :: in_bayer_type"}));
  EXPECT_TRUE(shot.image.empty());
  EXPECT_EQ(shot.type, 0u);
}

TEST(ShotImage, ColourSetterTakesThePlaneOfTheType) {
  cv::Mat raw(6, 8, CV_16UC1);
  cv::randu(raw, 0, 4096);
  cv::Mat expected;
  cv::demosaicing(raw, expected, cv::COLOR_BayerBG2BGR);
  std::vector<cv::Mat> planes;
  cv::split(expected, planes);
  const uint32_t types[] = {CAM_R, CAM_G, CAM_B};
  for (int plane = 0; plane < 3; ++plane) {
    Shot shot;
    ASSERT_EQ(shot.SetImageColor(raw, cv::COLOR_BayerBG2BGR, types[plane]), kOk);
    EXPECT_EQ(cv::norm(shot.image, planes[plane], cv::NORM_INF), 0.0);
    EXPECT_EQ(shot.type, types[plane]);
  }
  Shot shot;
  ASSERT_EQ(shot.SetImageColor(raw, cv::COLOR_BayerBG2BGR, CAM_RGB), kOk);
  EXPECT_EQ(shot.image.type(), CV_16UC3);
  EXPECT_EQ(cv::norm(shot.image, expected, cv::NORM_INF), 0.0);
}

TEST(ShotCheck, SingleFormRunsTheTestsInOrder) {
  LogCapture log;
  EXPECT_EQ(Shot::Check(0x1, nullptr), kNullInput);
  EXPECT_EQ(Shot::Check(0x100, nullptr), kNullInput);  // refused, not dereferenced
  EXPECT_EQ(Shot::Check(0x0, nullptr), kOk);
  Shot shot;
  shot.image = cv::Mat(0, 5, CV_16UC1);
  EXPECT_EQ(Shot::Check(0x2, &shot), kNullInput);
  shot.image = cv::Mat(2, 2, CV_16UC1, cv::Scalar(0));
  shot.type = CAM_RGB;
  EXPECT_EQ(Shot::Check(0x111107, &shot), kUnsupportedCaptureType);
  shot.type = CIE_Y;
  EXPECT_EQ(Shot::Check(0x111107, &shot), kNoColor);
  shot.SetColor(2);
  EXPECT_EQ(Shot::Check(0x111107, &shot), kNoDevice);
  shot.SetDevice(Device{});
  EXPECT_EQ(Shot::Check(0x111107, &shot), kBadPattern);
  shot.SetPattern(Pattern{0, 1, 1, 0, 0, 1, 1});
  EXPECT_EQ(Shot::Check(0x111107, &shot), kBadLedPanel);
  shot.SetLedPanel(LedPanel{0, 0, 0, 1, 1, 1.0f});
  EXPECT_EQ(Shot::Check(0x111107, &shot), kOk);
  EXPECT_EQ(log.Errors(), (Lines{"Shot::Check--Error in Shot input is nullptr",
                                 "Shot::Check--Error in Shot input is nullptr",
                                 "Shot::Check--Error shot.image is empty",
                                 "Shot::Check--Error ::  only support single channel",
                                 "Shot::Check--Error :: meta::color info incompleted.",
                                 "Shot::Check--Error :: meta::device info incompleted.",
                                 "Shot::Check--Error ::  pattern meta info incompleted.",
                                 "Shot::Check--Error ::  panel meta info incompleted."}));
}

TEST(ShotCheck, PairFormChecksSecondThenFirstThenThePair) {
  LogCapture log;
  Shot a;
  Shot b;
  a.image = cv::Mat(2, 3, CV_16UC1, cv::Scalar(0));
  a.type = CIE_X;
  EXPECT_EQ(Shot::Check(0x3, &a, &b), kNullInput);  // b's empty image found first
  EXPECT_EQ(log.Errors(), Lines{"Shot::Check--Error shot.image is empty"});
  b.image = cv::Mat(3, 2, CV_16UC1, cv::Scalar(0));
  b.type = CIE_Y;
  log.Clear();
  EXPECT_EQ(Shot::Check(0x33, &a, &b), kCaptureMismatch);
  b.type = CIE_X;
  EXPECT_EQ(Shot::Check(0x33, &a, &b), kCaptureMismatch);
  EXPECT_EQ(log.Errors(), (Lines{"Shot::Check--Error :: meta::type mismatch.",
                                 "Shot::Check--Error :: image size mismatch."}));
  b.image = cv::Mat(2, 3, CV_16UC1, cv::Scalar(0));
  EXPECT_EQ(Shot::Check(0x33, &a, &b), kOk);
}

TEST(ShotInfo, PresentGroupsInTheirOrderThenTheImage) {
  Shot shot;
  shot.SetPartition(Partition{1, 2, 3, 4, 10, 20});
  shot.SetLedPanel(LedPanel{5, 6, 7, 8, 9, 1.25f});
  shot.SetLayer(Layer{3, 0.5f, 128});
  shot.SetPattern(Pattern{1, 2, 2, 1, 0, -1, -1});
  shot.SetColor(4);
  Device device{};
  std::strcpy(device.id, "cam");
  std::strcpy(device.lens_id, "lens");
  device.cam_type = 120016;
  device.lens_type = 3;
  shot.SetDevice(device);
  shot.SetCapture(Capture{10, 11, 12, 13, 14});
  shot.image = cv::Mat(2, 5, CV_32FC3);
  shot.type = CIE_XYZ;
  LogCapture log;
  shot.Info();
  EXPECT_EQ(log.Debugs(), (Lines{"    part.xywh              = [1 2 3 4]",
                                 "    part.screen_wh         = [10 20]",
                                 "    panel.wh               = [8 9]",
                                 "    panel.type             = 5",
                                 "    panel.layout           = 6",
                                 "    panel.subpixel_type    = 7",
                                 "    panel.pixel_pitch      = 1.250000",
                                 "    layer.index            = 3",
                                 "    layer.value            = 128",
                                 "    layer.linear_norms     = 0.500000",
                                 "    pattern.type           = 1",
                                 "    pattern.interval       = [2 2]",
                                 "    pattern.loc            = [1 0]",
                                 "    pattern.lighted_led_wh = [1 2]",
                                 "    color                  = 4",
                                 "    device.id              = cam",
                                 "    device.cam_type        = 120016",
                                 "    device.lens_id         = lens",
                                 "    device.lens_type       = 3",
                                 "    capture.exposure       = 10",
                                 "    capture.gain           = 11",
                                 "    capture.aperture       = 12",
                                 "    capture.microfocus     = 13",
                                 "    capture.filter         = 14",
                                 "    type                   = 0x7",
                                 "    image.type(cv)         = 21",
                                 "    image.depth(cv)        = 5",
                                 "    image.channels(cv)     = 3",
                                 "    image.wh(cv)           = [5 2]"}));

  // Without metadata only the type and image lines remain.
  shot.ClearMeta();
  log.Clear();
  shot.Info();
  EXPECT_EQ(log.Infos(), Lines{"Shot::Info"});
  EXPECT_EQ(log.Debugs().size(), 5u);
  EXPECT_EQ(log.Debugs()[0], "    type                   = 0x7");
}

}  // namespace
}  // namespace aimhue
