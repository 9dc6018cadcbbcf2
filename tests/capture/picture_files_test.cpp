#include <aimhue/picture_files.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <opencv2/imgcodecs.hpp>

namespace aimhue {
namespace {

// The codecs load on first use and give what OpenCV gives; a format they do
// not know is refused without touching the output.
TEST(PictureFiles, LoadTheCodecsOnFirstUseAndRefuseUnknownFormats) {
  cv::Mat picture(3, 5, CV_8UC1);
  cv::randu(picture, 0, 256);
  std::vector<uint8_t> png;
  ASSERT_TRUE(EncodePicture(".png", picture, png));
  EXPECT_EQ(cv::norm(cv::imdecode(png, cv::IMREAD_UNCHANGED), picture, cv::NORM_INF), 0.0);

  const std::string file =
      (std::filesystem::path(::testing::TempDir()) / "picture_files_test.png").string();
  ASSERT_TRUE(WritePictureFile(file, picture));
  EXPECT_EQ(cv::norm(ReadPictureFile(file, cv::IMREAD_UNCHANGED), picture, cv::NORM_INF), 0.0);
  std::filesystem::remove(file);

  std::vector<uint8_t> untouched = {1, 2, 3};
  EXPECT_FALSE(EncodePicture(".nosuchformat", picture, untouched));
  EXPECT_EQ(untouched, (std::vector<uint8_t>{1, 2, 3}));
  EXPECT_FALSE(WritePictureFile(file + ".nosuchformat", picture));
  EXPECT_TRUE(ReadPictureFile(file, cv::IMREAD_UNCHANGED).empty());  // gone
}

}  // namespace
}  // namespace aimhue
