#include <aimhue/shot.h>

#include <opencv2/imgcodecs.hpp>

#include "support/temp_dir.h"
#include "support/test_meters.h"

namespace aimhue::testing {
namespace {

Shot MakeShot(const cv::Mat& image, uint32_t type) {
  Shot shot;
  shot.image = image;
  shot.type = type;
  return shot;
}

Shot RgbShot(int rows, int cols) {
  cv::Mat image(rows, cols, CV_16UC3);
  cv::randu(image, 0, 65536);
  return MakeShot(image, CAM_RGB);
}

TEST(ShotConvert, EveryPixelIsTheMatrixTimesItsColourOrRefused) {
  Shot shot = RgbShot(5, 7);
  cv::Mat pixels;  // N x 3 floats
  shot.image.reshape(1, 35).convertTo(pixels, CV_32F);
  cv::Mat_<float> matrix(3, 3);
  cv::randu(matrix, -2.0f, 2.0f);
  ASSERT_EQ(shot.ConvertColorSpace(CIE_XYZ, matrix), kOk);
  ASSERT_EQ(shot.image.type(), CV_32FC3);
  for (int n = 0; n < 35; ++n) {  // the literal (M * P^T)^T
    for (int k = 0; k < 3; ++k) {
      float sum = 0.0f;
      for (int j = 0; j < 3; ++j) sum = sum + matrix(k, j) * pixels.at<float>(n, j);
      EXPECT_EQ(shot.image.at<cv::Vec3f>(n / 7, n % 7)[k], sum);
    }
  }
  const std::string error = "Shot::ConvertColorSpace--Error :: ";
  struct {
    Shot shot;
    uint32_t type;
    cv::Mat matrix;
    int status;
    std::string line;
  } cases[] = {
      {RgbShot(2, 2), 0x03, cv::Mat(3, 4, CV_32F), kUnsupportedCaptureType,
       error + "in_cie_type != CIE_Y && in_cie_type != CIE_X && in_cie_type != CIE_Z && "
               "in_cie_type != CIE_XYZ"},
      {RgbShot(2, 2), CIE_X, cv::Mat(3, 4, CV_32F), kOutOfRange,
       "Shot::ConvertToCIEXYZ--Error :: in_color_trans.size()!=cv::Size(3,3)"},
      {MakeShot(cv::Mat(2, 2, CV_16UC3), CAM_G), CIE_X, matrix, kUnsupportedCaptureType,
       error + "shot type is not CAM_RGB"},
      {MakeShot(cv::Mat(2, 2, CV_16UC1), CAM_RGB), CIE_X, matrix, kBadImageDataType,
       error + "data channel must be 3"},
      {MakeShot(cv::Mat(0, 0, CV_16UC3), CAM_RGB), CIE_X, matrix, kEmptyInput, error + "empty"}};
  for (auto& item : cases) {
    ExpectRefusals<Shot>(item.shot,
                         {{[&](Shot& s) { return s.ConvertColorSpace(item.type, item.matrix); },
                           item.status,
                           {item.line}}});
  }
}

TEST(ShotSplit, OnlyTheGivenOutputsWithMetadata) {
  Shot shot = RgbShot(2, 3), green, single = MakeShot(cv::Mat(2, 2, CV_16UC1), CAM_R);
  shot.SetPartition(Partition{0, 0, 6, 4, 6, 4});
  shot.SetPattern(Pattern{1, 2, 2, 1, 1, -1, -1});
  shot.SetColor(2);
  green.SetDevice(Device{});  // cleared by the metadata copy
  ASSERT_EQ(shot.Split(nullptr, &green, nullptr), kOk);
  cv::Mat plane;
  cv::extractChannel(shot.image, plane, 1);
  EXPECT_TRUE(SameImage(green.image, plane));
  EXPECT_NE(green.image.data, shot.image.data);
  EXPECT_TRUE(green.type == CAM_G && !green.device && *green.color == 2);
  EXPECT_EQ(green.pattern->lighted_led_w, 3);
  ExpectRefusals<Shot>(green, {{[&](Shot&) { return shot.Split(nullptr, nullptr, nullptr); },
                                kNullInput,
                                {"SHOT::Split -- all input was nullptr"}},
                               {[&](Shot& g) { return single.Split(&g, nullptr, nullptr); },
                                kBadImageDataType,
                                {"Shot::Split -- Error image.channels() != 3 || type!= CAM_RGB"}},
                               {[](Shot& g) { return Shot().Split(&g, nullptr, nullptr); },
                                kEmptyInput,
                                {"Shot::Split--Error :: empty"}}});
}

TEST(ShotRotate, QuarterTurnsAndTheNegativeRule) {
  const cv::Mat image = (cv::Mat_<uint16_t>(2, 3) << 1, 2, 3, 4, 5, 6);
  const cv::Mat r90 = (cv::Mat_<uint16_t>(3, 2) << 3, 6, 2, 5, 1, 4);
  const cv::Mat r180 = (cv::Mat_<uint16_t>(2, 3) << 6, 5, 4, 3, 2, 1);
  const cv::Mat r270 = (cv::Mat_<uint16_t>(3, 2) << 4, 1, 5, 2, 6, 3);
  const std::pair<int, cv::Mat> turns[] = {{90, r90},    {-90, r270},  {180, r180}, {270, r270},
                                           {360, image}, {720, image}, {-450, r270}};
  for (const auto& [angle, expected] : turns) {
    Shot shot = MakeShot(image.clone(), CAM_G);
    EXPECT_EQ(shot.Rotate(angle), kOk) << angle;
    EXPECT_TRUE(SameImage(shot.image, expected)) << angle;
  }
  Shot kept = MakeShot(image.clone(), CAM_G);
  std::vector<Refusal<Shot>> refusals;
  for (int angle : {-360, 45, -720, 2147483647, -2147483647 - 1}) {
    refusals.push_back({[=](Shot& s) { return s.Rotate(angle); },
                        kOutOfRange,
                        {"Shot::Rotate--Error :: roll_angle"}});
  }
  ExpectRefusals<Shot>(kept, refusals);
}

TEST(ShotBackground, SubtractsAndClipsAtZero) {
  Shot shot = MakeShot((cv::Mat_<uint16_t>(1, 3) << 65, 100, 0), CAM_G);
  ASSERT_EQ(shot.RemoveBackground(MakeShot((cv::Mat_<uint16_t>(1, 3) << 70, 1, 0), CAM_G)), kOk);
  EXPECT_TRUE(SameImage(shot.image, (cv::Mat_<uint16_t>(1, 3) << 0, 99, 0)));
  shot = MakeShot((cv::Mat_<float>(1, 3) << 1.5f, -2.0f, 3.0f), CIE_Y);
  ASSERT_EQ(shot.RemoveBackground(MakeShot((cv::Mat_<float>(1, 3) << 0.5f, 0, 4), CIE_Y)), kOk);
  EXPECT_TRUE(SameImage(shot.image, (cv::Mat_<float>(1, 3) << 1.0f, 0.0f, 0.0f)));
  const Shot other_type = MakeShot(cv::Mat(1, 3, CV_16UC1, cv::Scalar(0)), CIE_Y);
  ExpectRefusals<Shot>(shot, {{[&](Shot& s) { return s.RemoveBackground(other_type); },
                               kCaptureMismatch,
                               {"SHOT::RemoveBackground -- Error data mismatch"}},
                              {[](Shot& s) { return s.RemoveBackground(Shot()); },
                               kEmptyInput,
                               {"SHOT::RemoveBackground -- Error empty data"}}});
}

TEST(ShotExport, GreyAndColourPictures) {
  TempDir dir;
  const auto picture = [&](const std::string& name) {
    return cv::imread(dir.Path(name), cv::IMREAD_UNCHANGED);
  };
  Device twelve_bit{};
  twelve_bit.cam_type = 320012;
  Shot shot = MakeShot((cv::Mat_<uint16_t>(1, 4) << 4095, 2048, 0, 65535), CAM_G);
  shot.SetDevice(twelve_bit);
  ASSERT_EQ(shot.ExportGrayImage(dir.Path("grey.png")), kOk);
  EXPECT_TRUE(SameImage(picture("grey.png"), (cv::Mat_<uint8_t>(1, 4) << 255, 128, 0, 255)));
  shot.device.reset();  // without a device the largest value becomes 255
  ASSERT_EQ(shot.ExportGrayImage(dir.Path("normalised.png")), kOk);
  EXPECT_TRUE(SameImage(picture("normalised.png"), (cv::Mat_<uint8_t>(1, 4) << 16, 8, 0, 255)));
  shot.SetImageSingle(cv::Mat(2, 2, CV_16UC1, cv::Scalar(1000)), CAM_R);
  shot.SetColor(4);  // bit 2: the writer's third channel, red
  ASSERT_EQ(shot.ExportColorImage(dir.Path("red.png")), kOk);
  EXPECT_EQ(picture("red.png").at<cv::Vec3b>(1, 1), cv::Vec3b(0, 0, 255));
  shot.color.reset();
  ASSERT_EQ(shot.ExportColorImage(dir.Path("white.png")), kOk);
  EXPECT_EQ(picture("white.png").at<cv::Vec3b>(0, 0), cv::Vec3b(255, 255, 255));
  // Channels 0 and 2 are exchanged: the stored R, G, B planes make a correct picture.
  Shot rgb = MakeShot(cv::Mat(1, 1, CV_16UC3, cv::Scalar(4095, 0, 0)), CAM_RGB);
  rgb.SetDevice(twelve_bit);
  ASSERT_EQ(rgb.ExportColorImage(dir.Path("rgb.png")), kOk);
  EXPECT_EQ(picture("rgb.png").at<cv::Vec3b>(0, 0), cv::Vec3b(0, 0, 255));

  Shot empty;
  const std::string grey = "Shot::ExportGrayImage--Error :: ";
  const std::string colour = "Shot::ExportColorImage--Error :: ";
  const auto export_grey = [&](const std::string& name) {
    return [=, &dir](Shot& s) { return s.ExportGrayImage(dir.Path(name)); };
  };
  const auto export_colour = [&](Shot& s) { return s.ExportColorImage(dir.Path("no/a.png")); };
  ExpectRefusals<Shot>(empty, {{export_grey("a.png"), kEmptyInput, {grey + "empty"}},
                               {export_colour, kEmptyInput, {colour + "empty"}}});
  ExpectRefusals<Shot>(shot,
                       {{export_grey("a.unknown-extension"), kOpenWriteFailed, {grey + "imwrite"}},
                        {export_colour, kOpenWriteFailed, {colour + "imwrite"}}});
}

}  // namespace
}  // namespace aimhue::testing
