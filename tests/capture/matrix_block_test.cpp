#include "capture/matrix_block.h"

#include <gtest/gtest.h>

#include <limits>
#include <random>
#include <string>

namespace aimhue {
namespace {

std::string Block(const cv::Mat& mat) {
  std::string bytes;
  ByteWriter out(bytes);
  WriteMatrixBlock(mat, out);
  return bytes;
}

std::string Header(int32_t rows, int32_t cols, int32_t type, int32_t channels) {
  std::string bytes;
  ByteWriter out(bytes);
  out.WriteI32(rows);
  out.WriteI32(cols);
  out.WriteI32(type);
  out.WriteI32(channels);
  return bytes;
}

bool Identical(const cv::Mat& a, const cv::Mat& b) {
  if (a.type() != b.type() || a.size() != b.size()) return false;
  for (int row = 0; row < a.rows; ++row) {
    if (std::memcmp(a.ptr(row), b.ptr(row), a.cols * a.elemSize()) != 0) return false;
  }
  return true;
}

TEST(MatrixBlock, ThreeChannelMatrixIsStoredPlaneByPlane) {
  cv::Mat mat(2, 2, CV_8UC3);
  for (int i = 0; i < 12; ++i) mat.data[i] = static_cast<uchar>(i);  // pixels interleaved
  const std::string expected = Header(2, 2, CV_8UC3, 3) +
                               std::string("\x00\x03\x06\x09", 4) +  // channel 0
                               std::string("\x01\x04\x07\x0A", 4) +  // channel 1
                               std::string("\x02\x05\x08\x0B", 4);   // channel 2
  EXPECT_EQ(Block(mat), expected);
  EXPECT_EQ(MatrixBlockSize(mat), expected.size());
}

TEST(MatrixBlock, EmptyMatrixIsFourZeros) {
  for (const cv::Mat& empty : {cv::Mat(), cv::Mat(0, 0, CV_32FC1), cv::Mat(0, 0, CV_8UC1)}) {
    EXPECT_EQ(Block(empty), std::string(16, '\0'));
    EXPECT_EQ(MatrixBlockSize(empty), 16u);
  }
}

TEST(MatrixBlock, EveryDepthAndChannelCountRoundTripsBitIdentical) {
  std::mt19937 random(7);
  for (int depth = CV_8U; depth <= CV_16F; ++depth) {
    for (int channels : {1, 2, 3, 4, 7}) {
      cv::Mat mat(3, 5, CV_MAKETYPE(depth, channels));
      for (size_t i = 0; i < mat.total() * mat.elemSize(); ++i) mat.data[i] = random() & 0xFF;
      const std::string bytes = Block(mat);
      ASSERT_EQ(bytes.size(), MatrixBlockSize(mat));
      ByteReader in(bytes.data(), bytes.size());
      cv::Mat loaded;
      ASSERT_TRUE(ReadMatrixBlock(in, loaded)) << depth << " " << channels;
      EXPECT_TRUE(Identical(mat, loaded)) << depth << " " << channels;
      EXPECT_EQ(in.Remaining(), 0u);
    }
  }
}

TEST(MatrixBlock, SubMatrixIsWrittenRowByRow) {
  cv::Mat whole(4, 6, CV_32FC1);
  cv::randu(whole, -1.0, 1.0);
  const cv::Mat part = whole(cv::Rect(1, 1, 3, 2));
  ASSERT_FALSE(part.isContinuous());
  EXPECT_EQ(Block(part), Block(part.clone()));
}

TEST(MatrixBlock, NonPositiveSizeReadsAsEmptyWithoutPlanes) {
  const std::string bytes = Header(0, 5, CV_32FC1, 1) + "tail";
  ByteReader in(bytes.data(), bytes.size());
  cv::Mat mat(2, 2, CV_8UC1);
  ASSERT_TRUE(ReadMatrixBlock(in, mat));
  EXPECT_TRUE(mat.empty());
  EXPECT_EQ(in.Remaining(), 4u);
}

TEST(MatrixBlock, DamagedBlocksAreRefusedAndLeaveTheMatrixUnchanged) {
  const cv::Mat before = cv::Mat::ones(1, 1, CV_8UC1);
  const std::string cases[] = {
      Header(2, 2, CV_8UC1, 1).substr(0, 15),           // header cut short
      Header(2, 2, CV_8UC1, 1) + std::string(3, 'x'),  // one sample missing
      Header(2, 2, CV_8UC1, 0) + std::string(4, 'x'),  // no channels
      Header(1, 1, CV_8UC1, CV_CN_MAX + 1) + std::string(CV_CN_MAX + 1, 'x'),
      // A header that declares far more than the data, near the int limits:
      Header(std::numeric_limits<int32_t>::max(), std::numeric_limits<int32_t>::max(), CV_64FC1,
             CV_CN_MAX),
      Header(65536, 65536, CV_8UC1, 1) + std::string(64, 'x'),
  };
  for (const std::string& bytes : cases) {
    ByteReader in(bytes.data(), bytes.size());
    cv::Mat mat = before;
    EXPECT_FALSE(ReadMatrixBlock(in, mat));
    EXPECT_EQ(mat.data, before.data);
  }
}

TEST(MatrixBlock, ChannelsComeFromTheChannelFieldAndDepthFromTheTypeCode) {
  // Type code CV_16UC3 but one channel declared: one 16-bit plane is read.
  const std::string bytes = Header(1, 2, CV_16UC3, 1) + std::string("\x01\x00\x02\x00", 4);
  ByteReader in(bytes.data(), bytes.size());
  cv::Mat mat;
  ASSERT_TRUE(ReadMatrixBlock(in, mat));
  EXPECT_EQ(mat.type(), CV_16UC1);
  EXPECT_EQ(mat.at<uint16_t>(0, 1), 2);
}

}  // namespace
}  // namespace aimhue
