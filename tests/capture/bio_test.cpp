#include <aimhue/bio.h>

#include <gtest/gtest.h>

#include "support/log_capture.h"
#include "support/temp_dir.h"

namespace aimhue::testing {
namespace {

using Lines = std::vector<std::string>;

TEST(BinaryMatrixFile, OtherMarkDamagedDataAndZeroRowsStillGiveTrue) {
  TempDir dir;
  const cv::Mat before = cv::Mat::ones(2, 2, CV_8UC1);
  cv::Mat mat = before;
  LogCapture log;
  EXPECT_TRUE(BIO::LoadBinToMat(dir.Write("b.bin", "B rest"), mat));
  const std::string cutShort("L\x02\0\0\0\x02\0\0\0\0\0\0\0\x01\0\0\0\x01\x02", 19);
  EXPECT_TRUE(BIO::LoadBinToMat(dir.Write("short.bin", cutShort), mat));
  EXPECT_EQ(mat.data, before.data);
  EXPECT_EQ(log.Errors(), Lines{"BIO::LoadBinToMat -- Error data in file."});

  const std::string zeroRows("L\0\0\0\0\x02\0\0\0\0\0\0\0\x01\0\0\0", 17);
  EXPECT_TRUE(BIO::LoadBinToMat(dir.Write("zero.bin", zeroRows), mat));
  EXPECT_TRUE(mat.empty());
}

TEST(TextMatrixFile, ReadsRowsOfTheGivenSizeAndZerosWhatIsMissing) {
  TempDir dir;
  const int size[2] = {3, 2};  // width, height
  cv::Mat mat;
  ASSERT_TRUE(BIO::LoadTxtToMat(dir.Write("m.txt", "1 2 3\n4\t5 6 7\n"), size, mat));
  ASSERT_EQ(mat.type(), CV_32FC1);
  EXPECT_EQ(cv::norm(mat, cv::Mat((cv::Mat_<float>(2, 3) << 1, 2, 3, 4, 5, 6)), cv::NORM_INF), 0);
  ASSERT_TRUE(BIO::LoadTxtToMat(dir.Write("short.txt", "1 2 x 4"), size, mat));
  EXPECT_EQ(cv::norm(mat, cv::Mat((cv::Mat_<float>(2, 3) << 1, 2, 0, 0, 0, 0)), cv::NORM_INF), 0);
}

TEST(NameListFile, AppendsEveryLineIncludingEmptyOnes) {
  TempDir dir;
  std::vector<std::string> names = {"old"};
  ASSERT_TRUE(BIO::ReadFullNameListTxt(dir.Write("n.txt", "a\n\nb"), names));
  EXPECT_EQ(names, (std::vector<std::string>{"old", "a", "", "b"}));
}

TEST(Bio, RefusalsGiveFalseAndLeaveTheOutputUnchanged) {
  TempDir dir;
  const std::string missing = dir.Path("none");
  const int zeroWidth[2] = {0, 2};
  const int size[2] = {1, 1};
  const cv::Mat before = cv::Mat::ones(1, 1, CV_32FC1);
  cv::Mat mat = before;
  std::vector<std::string> names;
  LogCapture log;
  EXPECT_FALSE(BIO::LoadBinToMat(missing, mat));
  EXPECT_FALSE(BIO::SaveMatToBin(dir.Path("no/dir.bin"), mat));
  EXPECT_FALSE(BIO::LoadTxtToMat(dir.Write("m.txt", "1"), zeroWidth, mat));
  EXPECT_FALSE(BIO::LoadTxtToMat(missing, nullptr, mat));
  EXPECT_FALSE(BIO::LoadTxtToMat(missing, size, mat));
  EXPECT_FALSE(BIO::ReadFullNameListTxt(missing, names));
  EXPECT_EQ(mat.data, before.data);
  EXPECT_TRUE(names.empty());
  EXPECT_EQ(log.Errors(),
            (Lines{"BIO::LoadBinToMat -- Failed to Open file. fullname = " + missing,
                   "BIO::SaveMatToBin -- Failed to Open file. fullname = " + dir.Path("no/dir.bin"),
                   "BIO::LoadTxtToMat--Error :: invalid size.",
                   "BIO::LoadTxtToMat--Error :: invalid size.",
                   "BIO::LoadTxtToMat -- Failed to Open file. fullname = " + missing,
                   "BIO::ReadFullNameListTxt -- Failed to Open file. fullname = " + missing}));
}

}  // namespace
}  // namespace aimhue::testing
