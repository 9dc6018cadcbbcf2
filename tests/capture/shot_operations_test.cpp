#include <aimhue/shot.h>
#include <aimhue/status.h>
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include <opencv2/imgcodecs.hpp>

#include "support/log_capture.h"
#include "support/temp_dir.h"

namespace aimhue {
namespace {

using ::aimhue::testing::LogCapture;
using ::aimhue::testing::TempDir;
using Lines = std::vector<std::string>;

bool SameImage(const cv::Mat& a, const cv::Mat& b) {
  return a.type() == b.type() && a.size() == b.size() &&
         (a.empty() || cv::norm(a, b, cv::NORM_INF) == 0.0);
}

Shot RgbShot(int rows, int cols) {
  Shot shot;
  cv::Mat image(rows, cols, CV_16UC3);
  cv::randu(image, 0, 65536);
  shot.image = image;
  shot.type = CAM_RGB;
  return shot;
}

TEST(ShotConvert, EveryPixelIsTheMatrixTimesItsColour) {
  Shot shot = RgbShot(5, 7);
  const cv::Mat original = shot.image.clone();
  cv::Mat_<float> matrix(3, 3);
  cv::randu(matrix, -2.0f, 2.0f);
  ASSERT_EQ(shot.ConvertColorSpace(CIE_XYZ, matrix), kOk);
  ASSERT_EQ(shot.image.type(), CV_32FC3);
  // The literal form: (M * P^T)^T with P the N x 3 float pixel matrix.
  cv::Mat pixels;
  original.reshape(1, original.rows * original.cols).convertTo(pixels, CV_32F);
  for (int n = 0; n < pixels.rows; ++n) {
    for (int k = 0; k < 3; ++k) {
      float sum = 0.0f;
      for (int j = 0; j < 3; ++j) sum = sum + matrix(k, j) * pixels.at<float>(n, j);
      EXPECT_EQ(shot.image.at<cv::Vec3f>(n / 7, n % 7)[k], sum);
    }
  }
}

TEST(ShotConvert, RefusalsInOrderLeaveTheShot) {
  LogCapture log;
  Shot shot = RgbShot(2, 2);
  const cv::Mat original = shot.image;
  EXPECT_EQ(shot.ConvertColorSpace(0x03, cv::Mat(3, 4, CV_32F)), kUnsupportedCaptureType);
  EXPECT_EQ(shot.ConvertColorSpace(CIE_X, cv::Mat(3, 4, CV_32F)), kOutOfRange);
  shot.type = CAM_G;
  EXPECT_EQ(shot.ConvertColorSpace(CIE_X, cv::Mat::eye(3, 3, CV_32F)), kUnsupportedCaptureType);
  Shot grey;
  grey.type = CAM_RGB;
  grey.image = cv::Mat(2, 2, CV_16UC1);
  EXPECT_EQ(grey.ConvertColorSpace(CIE_X, cv::Mat::eye(3, 3, CV_32F)), kBadImageDataType);
  grey.image = cv::Mat(0, 0, CV_16UC3);
  EXPECT_EQ(grey.ConvertColorSpace(CIE_X, cv::Mat::eye(3, 3, CV_32F)), kEmptyInput);
  EXPECT_EQ(log.Errors(),
            (Lines{"Shot::ConvertColorSpace--Error :: in_cie_type != CIE_Y && in_cie_type != "
                   "CIE_X && in_cie_type != CIE_Z && in_cie_type != CIE_XYZ",
                   "Shot::ConvertToCIEXYZ--Error :: in_color_trans.size()!=cv::Size(3,3)",
                   "Shot::ConvertColorSpace--Error :: shot type is not CAM_RGB",
                   "Shot::ConvertColorSpace--Error :: data channel must be 3",
                   "Shot::ConvertColorSpace--Error :: empty"}));
  EXPECT_EQ(shot.image.data, original.data);
}

TEST(ShotSplit, OnlyTheGivenOutputsWithMetadata) {
  Shot shot = RgbShot(2, 3);
  shot.SetPartition(Partition{0, 0, 6, 4, 6, 4});
  shot.SetPattern(Pattern{1, 2, 2, 1, 1, -1, -1});
  shot.SetColor(2);
  Shot green;
  green.SetDevice(Device{});  // cleared by the metadata copy
  ASSERT_EQ(shot.Split(nullptr, &green, nullptr), kOk);
  cv::Mat plane;
  cv::extractChannel(shot.image, plane, 1);
  EXPECT_TRUE(SameImage(green.image, plane));
  EXPECT_NE(green.image.data, shot.image.data);
  EXPECT_EQ(green.type, CAM_G);
  EXPECT_EQ(green.device, nullptr);
  ASSERT_NE(green.pattern, nullptr);
  EXPECT_EQ(green.pattern->lighted_led_w, 3);
  EXPECT_EQ(*green.color, 2);

  LogCapture log;
  EXPECT_EQ(shot.Split(nullptr, nullptr, nullptr), kNullInput);
  Shot single;
  single.SetImageSingle(cv::Mat(2, 2, CV_16UC1), CAM_R);
  EXPECT_EQ(single.Split(&green, nullptr, nullptr), kBadImageDataType);
  Shot empty;
  EXPECT_EQ(empty.Split(&green, nullptr, nullptr), kEmptyInput);
  EXPECT_EQ(log.Errors(), (Lines{"SHOT::Split -- all input was nullptr",
                                 "Shot::Split -- Error image.channels() != 3 || type!= CAM_RGB",
                                 "Shot::Split--Error :: empty"}));
  EXPECT_EQ(green.type, CAM_G);
}

TEST(ShotRotate, QuarterTurnsAndTheNegativeRule) {
  const cv::Mat image = (cv::Mat_<uint16_t>(2, 3) << 1, 2, 3, 4, 5, 6);
  Shot shot;
  shot.image = image.clone();
  ASSERT_EQ(shot.Rotate(90), kOk);
  EXPECT_TRUE(SameImage(shot.image, (cv::Mat_<uint16_t>(3, 2) << 3, 6, 2, 5, 1, 4)));

  const auto rotated = [&](int angle) {
    Shot copy;
    copy.image = image.clone();
    EXPECT_EQ(copy.Rotate(angle), kOk) << angle;
    return copy.image;
  };
  EXPECT_TRUE(SameImage(rotated(-90), rotated(270)));
  EXPECT_TRUE(SameImage(rotated(180), (cv::Mat_<uint16_t>(2, 3) << 6, 5, 4, 3, 2, 1)));
  EXPECT_TRUE(SameImage(rotated(270), (cv::Mat_<uint16_t>(3, 2) << 4, 1, 5, 2, 6, 3)));
  EXPECT_TRUE(SameImage(rotated(720), image));
  EXPECT_TRUE(SameImage(rotated(360), image));
  EXPECT_TRUE(SameImage(rotated(-450), rotated(270)));

  LogCapture log;
  Shot kept;
  kept.image = image.clone();
  for (int angle : {-360, 45, -720, 2147483647, -2147483647 - 1}) {
    EXPECT_EQ(kept.Rotate(angle), kOutOfRange) << angle;
  }
  EXPECT_EQ(log.Errors(), Lines(5, "Shot::Rotate--Error :: roll_angle"));
  EXPECT_TRUE(SameImage(kept.image, image));
}

TEST(ShotBackground, SubtractsAndClipsAtZero) {
  Shot shot;
  Shot background;
  shot.image = (cv::Mat_<uint16_t>(1, 3) << 65, 100, 0);
  background.image = (cv::Mat_<uint16_t>(1, 3) << 70, 1, 0);
  ASSERT_EQ(shot.RemoveBackground(background), kOk);
  EXPECT_TRUE(SameImage(shot.image, (cv::Mat_<uint16_t>(1, 3) << 0, 99, 0)));

  shot.image = (cv::Mat_<float>(1, 3) << 1.5f, -2.0f, 3.0f);
  background.image = (cv::Mat_<float>(1, 3) << 0.5f, 0.0f, 4.0f);
  ASSERT_EQ(shot.RemoveBackground(background), kOk);
  EXPECT_TRUE(SameImage(shot.image, (cv::Mat_<float>(1, 3) << 1.0f, 0.0f, 0.0f)));

  LogCapture log;
  const cv::Mat kept = shot.image;
  background.image = cv::Mat(1, 3, CV_16UC1, cv::Scalar(0));
  EXPECT_EQ(shot.RemoveBackground(background), kCaptureMismatch);
  EXPECT_EQ(shot.RemoveBackground(Shot()), kEmptyInput);
  EXPECT_EQ(log.Errors(), (Lines{"SHOT::RemoveBackground -- Error data mismatch",
                                 "SHOT::RemoveBackground -- Error empty data"}));
  EXPECT_EQ(shot.image.data, kept.data);
}

TEST(ShotExport, TwelveBitGreyMapsFullScaleTo255) {
  TempDir dir;
  Shot shot;
  shot.SetImageSingle((cv::Mat_<uint16_t>(1, 4) << 4095, 2048, 0, 65535), CAM_G);
  Device device{};
  device.cam_type = 320012;
  shot.SetDevice(device);
  ASSERT_EQ(shot.ExportGrayImage(dir.Path("grey.png")), kOk);
  const cv::Mat picture = cv::imread(dir.Path("grey.png"), cv::IMREAD_UNCHANGED);
  EXPECT_TRUE(SameImage(picture, (cv::Mat_<uint8_t>(1, 4) << 255, 128, 0, 255)));

  // Without a device the largest value becomes 255.
  shot.device.reset();
  ASSERT_EQ(shot.ExportGrayImage(dir.Path("normalised.png")), kOk);
  const cv::Mat normalised = cv::imread(dir.Path("normalised.png"), cv::IMREAD_UNCHANGED);
  EXPECT_EQ(normalised.at<uint8_t>(0, 3), 255);
  EXPECT_EQ(normalised.at<uint8_t>(0, 0), 16);
}

TEST(ShotExport, ColourPictureLightsTheChannelsOfTheColourCode) {
  TempDir dir;
  Shot shot;
  shot.SetImageSingle(cv::Mat(2, 2, CV_16UC1, cv::Scalar(1000)), CAM_R);
  shot.SetColor(4);  // bit 2: the writer's third channel, red
  ASSERT_EQ(shot.ExportColorImage(dir.Path("red.png")), kOk);
  const cv::Mat picture = cv::imread(dir.Path("red.png"), cv::IMREAD_UNCHANGED);
  EXPECT_EQ(picture.at<cv::Vec3b>(1, 1), cv::Vec3b(0, 0, 255));

  shot.color.reset();
  ASSERT_EQ(shot.ExportColorImage(dir.Path("grey.png")), kOk);
  EXPECT_EQ(cv::imread(dir.Path("grey.png")).at<cv::Vec3b>(0, 0), cv::Vec3b(255, 255, 255));

  // A three-channel image is written with channels 0 and 2 exchanged: the
  // stored R, G, B planes come out as a correct picture.
  Shot rgb;
  rgb.type = CAM_RGB;
  rgb.image = cv::Mat(1, 1, CV_16UC3, cv::Scalar(4095, 0, 0));
  Device device{};
  device.cam_type = 320012;
  rgb.SetDevice(device);
  ASSERT_EQ(rgb.ExportColorImage(dir.Path("rgb.png")), kOk);
  EXPECT_EQ(cv::imread(dir.Path("rgb.png")).at<cv::Vec3b>(0, 0), cv::Vec3b(0, 0, 255));
}

TEST(ShotExport, RefusedWrites) {
  LogCapture log;
  TempDir dir;
  Shot shot;
  EXPECT_EQ(shot.ExportGrayImage(dir.Path("a.png")), kEmptyInput);
  EXPECT_EQ(shot.ExportColorImage(dir.Path("a.png")), kEmptyInput);
  shot.SetImageSingle(cv::Mat(2, 2, CV_16UC1, cv::Scalar(1)), CAM_R);
  EXPECT_EQ(shot.ExportGrayImage(dir.Path("a.unknown-extension")), kOpenWriteFailed);
  EXPECT_EQ(shot.ExportColorImage(dir.Path("no-such-folder/a.png")), kOpenWriteFailed);
  EXPECT_EQ(log.Errors(), (Lines{"Shot::ExportGrayImage--Error :: empty",
                                 "Shot::ExportColorImage--Error :: empty",
                                 "Shot::ExportGrayImage--Error :: imwrite",
                                 "Shot::ExportColorImage--Error :: imwrite"}));
}

TEST(ShotPointLocator, PresetMetadata) {
  Shot shot;
  const int screen[2] = {8, 8};
  const int interval[2] = {4, 4};
  EXPECT_EQ(shot.SetForPointLocator(120016, screen, interval, 6, 3), kOk);
  EXPECT_STREQ(shot.device->id, "custom :: ForPointLocator");
  EXPECT_STREQ(shot.device->lens_id, "custom :: ForPointLocator");
  EXPECT_EQ(shot.device->cam_type, 120016);
  EXPECT_EQ(shot.device->lens_type, 3);
  EXPECT_EQ(shot.part->screen_w, 8);
  EXPECT_EQ(shot.pattern->loc_x, 2);
  EXPECT_EQ(shot.pattern->loc_y, 1);
  EXPECT_EQ(shot.pattern->lighted_led_w, 2);
  EXPECT_EQ(shot.panel->layout, 4);
  EXPECT_EQ(shot.panel->pixel_pitch, -1.0f);
  EXPECT_EQ(*shot.color, 2);

  // No screen: neither partition nor pattern; a zero interval is refused by
  // the pattern setter instead of dividing by zero.
  Shot bare;
  const int no_screen[2] = {0, 8};
  EXPECT_EQ(bare.SetForPointLocator(1, no_screen, interval, 6, 0), kOk);
  EXPECT_EQ(bare.part, nullptr);
  const int zero[2] = {0, 4};
  EXPECT_EQ(bare.SetForPointLocator(1, screen, zero, 6, 0), kOk);
  EXPECT_EQ(bare.pattern, nullptr);
}

}  // namespace
}  // namespace aimhue
