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
  EXPECT_EQ(bytes.size(), MatrixBlockSize(mat));
  return bytes;
}

std::string Header(int32_t rows, int32_t cols, int32_t type, int32_t channels) {
  std::string bytes;
  ByteWriter out(bytes);
  for (int32_t field : {rows, cols, type, channels}) out.WriteI32(field);
  return bytes;
}

TEST(MatrixBlock, PlanesFollowTheHeaderOneAfterAnother) {
  cv::Mat mat(2, 2, CV_8UC3);
  for (int i = 0; i < 12; ++i) mat.data[i] = static_cast<uchar>(i);  // pixels interleaved
  EXPECT_EQ(Block(mat), Header(2, 2, CV_8UC3, 3) + std::string("\x00\x03\x06\x09", 4) +
                            "\x01\x04\x07\x0A\x02\x05\x08\x0B");
  EXPECT_EQ(Block(cv::Mat(0, 0, CV_32FC1)), std::string(16, '\0'));
  // A sub-matrix (rows not contiguous) is written as its own rows.
  cv::Mat whole(4, 6, CV_32FC1);
  cv::randu(whole, -1.0, 1.0);
  EXPECT_EQ(Block(whole(cv::Rect(1, 1, 3, 2))), Block(whole(cv::Rect(1, 1, 3, 2)).clone()));
}

TEST(MatrixBlock, EveryDepthAndChannelCountRoundTripsBitIdentical) {
  std::mt19937 random(7);
  for (int depth = CV_8U; depth <= CV_16F; ++depth) {
    for (int channels : {1, 2, 3, 4, 7}) {
      cv::Mat mat(3, 5, CV_MAKETYPE(depth, channels));
      for (size_t i = 0; i < mat.total() * mat.elemSize(); ++i) mat.data[i] = random() & 0xFF;
      const std::string bytes = Block(mat);
      ByteReader in(bytes.data(), bytes.size());
      cv::Mat loaded;
      ASSERT_TRUE(ReadMatrixBlock(in, loaded)) << depth << " " << channels;
      ASSERT_EQ(loaded.type(), mat.type());
      EXPECT_EQ(std::memcmp(loaded.data, mat.data, mat.total() * mat.elemSize()), 0);
      EXPECT_EQ(in.Remaining(), 0u);
    }
  }
}

TEST(MatrixBlock, DamagedBlocksAreRefusedBeforeAnythingIsAllocated) {
  const cv::Mat before = cv::Mat::ones(1, 1, CV_8UC1);
  const int32_t kMax = std::numeric_limits<int32_t>::max();
  const std::string cases[] = {
      Header(2, 2, CV_8UC1, 1).substr(0, 15),           // header cut short
      Header(2, 2, CV_8UC1, 1) + std::string(3, 'x'),  // one sample missing
      Header(2, 2, CV_8UC1, 0) + std::string(4, 'x'),  // no channels
      Header(1, 1, CV_8UC1, CV_CN_MAX + 1) + std::string(CV_CN_MAX + 1, 'x'),
      Header(kMax, kMax, CV_64FC1, CV_CN_MAX),  // the product overflows 64 bits
      Header(65536, 65536, CV_8UC1, 1) + std::string(64, 'x'),
  };
  for (const std::string& bytes : cases) {
    ByteReader in(bytes.data(), bytes.size());
    cv::Mat mat = before;
    EXPECT_FALSE(ReadMatrixBlock(in, mat));
    EXPECT_EQ(mat.data, before.data);
  }
}

}  // namespace
}  // namespace aimhue
