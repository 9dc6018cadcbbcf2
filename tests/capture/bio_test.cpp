#include <aimhue/bio.h>

#include <gtest/gtest.h>

#include "support/log_capture.h"
#include "support/temp_dir.h"

namespace aimhue {
namespace {

using ::aimhue::testing::LogCapture;
using ::aimhue::testing::ReadFileBytes;
using ::aimhue::testing::TempDir;
using Lines = std::vector<std::string>;

TEST(BinaryMatrixFile, ThreeChannelMatrixIs29Bytes) {
  TempDir dir;
  cv::Mat mat(2, 2, CV_8UC3);
  for (int i = 0; i < 12; ++i) mat.data[i] = static_cast<uchar>(10 + i);
  ASSERT_TRUE(BIO::SaveMatToBin(dir.Path("m.bin"), mat));
  const std::string expected("L\x02\0\0\0\x02\0\0\0\x10\0\0\0\x03\0\0\0"
                             "\x0A\x0D\x10\x13\x0B\x0E\x11\x14\x0C\x0F\x12\x15",
                             29);
  EXPECT_EQ(ReadFileBytes(dir.Path("m.bin")), expected);

  cv::Mat loaded;
  ASSERT_TRUE(BIO::LoadBinToMat(dir.Path("m.bin"), loaded));
  ASSERT_EQ(loaded.type(), CV_8UC3);
  EXPECT_EQ(cv::norm(mat, loaded, cv::NORM_INF), 0.0);
}

TEST(BinaryMatrixFile, OtherMarkZeroRowsAndDamagedDataAreNotFailures) {
  TempDir dir;
  const cv::Mat before = cv::Mat::ones(2, 2, CV_8UC1);
  cv::Mat mat = before;
  LogCapture log;
  EXPECT_TRUE(BIO::LoadBinToMat(dir.Write("b.bin", "B rest"), mat));
  EXPECT_EQ(mat.data, before.data);

  const std::string cutShort("L\x02\0\0\0\x02\0\0\0\0\0\0\0\x01\0\0\0\x01\x02", 19);
  EXPECT_TRUE(BIO::LoadBinToMat(dir.Write("short.bin", cutShort), mat));
  EXPECT_EQ(mat.data, before.data);
  EXPECT_EQ(log.Errors(), Lines{"BIO::LoadBinToMat -- Error data in file."});

  const std::string zeroRows("L\0\0\0\0\x02\0\0\0\0\0\0\0\x01\0\0\0", 17);
  EXPECT_TRUE(BIO::LoadBinToMat(dir.Write("zero.bin", zeroRows), mat));
  EXPECT_TRUE(mat.empty());
}

TEST(BinaryMatrixFile, UnopenableFilesGiveFalseWithTheName) {
  TempDir dir;
  LogCapture log;
  cv::Mat mat;
  EXPECT_FALSE(BIO::LoadBinToMat(dir.Path("none.bin"), mat));
  EXPECT_FALSE(BIO::SaveMatToBin(dir.Path("no/dir.bin"), mat));
  EXPECT_EQ(log.Errors(),
            (Lines{"BIO::LoadBinToMat -- Failed to Open file. fullname = " + dir.Path("none.bin"),
                   "BIO::SaveMatToBin -- Failed to Open file. fullname = " +
                       dir.Path("no/dir.bin")}));
}

TEST(TextMatrixFile, ReadsRowsOfTheGivenSize) {
  TempDir dir;
  const int size[2] = {3, 2};  // width, height
  cv::Mat mat;
  ASSERT_TRUE(BIO::LoadTxtToMat(dir.Write("m.txt", "1 2 3\n4\t5 6 7\n"), size, mat));
  ASSERT_EQ(mat.type(), CV_32FC1);
  const cv::Mat expected = (cv::Mat_<float>(2, 3) << 1, 2, 3, 4, 5, 6);
  EXPECT_EQ(cv::norm(mat, expected, cv::NORM_INF), 0.0);

  // Missing or unreadable numbers leave zeros behind the last good one.
  ASSERT_TRUE(BIO::LoadTxtToMat(dir.Write("short.txt", "1 2 x 4"), size, mat));
  const cv::Mat partial = (cv::Mat_<float>(2, 3) << 1, 2, 0, 0, 0, 0);
  EXPECT_EQ(cv::norm(mat, partial, cv::NORM_INF), 0.0);
}

TEST(TextMatrixFile, RefusesAnInvalidSizeAndAnUnopenableFile) {
  TempDir dir;
  LogCapture log;
  const std::string name = dir.Write("m.txt", "1 2 3");
  const cv::Mat before = cv::Mat::ones(1, 1, CV_32FC1);
  cv::Mat mat = before;
  const int zeroWidth[2] = {0, 2};
  EXPECT_FALSE(BIO::LoadTxtToMat(name, zeroWidth, mat));
  EXPECT_FALSE(BIO::LoadTxtToMat(name, nullptr, mat));
  const int size[2] = {1, 1};
  EXPECT_FALSE(BIO::LoadTxtToMat(dir.Path("none.txt"), size, mat));
  EXPECT_EQ(mat.data, before.data);
  EXPECT_EQ(log.Errors(),
            (Lines{"BIO::LoadTxtToMat--Error :: invalid size.",
                   "BIO::LoadTxtToMat--Error :: invalid size.",
                   "BIO::LoadTxtToMat -- Failed to Open file. fullname = " +
                       dir.Path("none.txt")}));
}

TEST(NameListFile, AppendsEveryLineIncludingEmptyOnes) {
  TempDir dir;
  std::vector<std::string> names = {"old"};
  ASSERT_TRUE(BIO::ReadFullNameListTxt(dir.Write("n.txt", "a\n\nb"), names));
  EXPECT_EQ(names, (std::vector<std::string>{"old", "a", "", "b"}));

  LogCapture log;
  EXPECT_FALSE(BIO::ReadFullNameListTxt(dir.Path("none.txt"), names));
  EXPECT_EQ(names.size(), 4u);
  EXPECT_EQ(log.Errors(), Lines{"BIO::ReadFullNameListTxt -- Failed to Open file. fullname = " +
                                dir.Path("none.txt")});
}

}  // namespace
}  // namespace aimhue
