#include "engine/subsample.h"

#include <gtest/gtest.h>

#include <array>

#include "meter/chroma_lxy.h"

namespace aimhue {
namespace {

// A set whose nine planes (over three sets) hold LED index + plane / 16,
// so that every copied element tells where it came from.
ChromaLxy NumberedSet(int rows, int cols, int firstPlane) {
  ChromaLxy set;
  std::array<cv::Mat*, 3> planes = {&set.L, &set.x, &set.y};
  for (int plane = 0; plane < 3; ++plane) {
    cv::Mat& m = *planes[plane];
    m.create(rows, cols, CV_32FC1);
    for (int r = 0; r < rows; ++r) {
      for (int c = 0; c < cols; ++c) {
        m.at<float>(r, c) = static_cast<float>(r * cols + c) + (firstPlane + plane) / 16.0f;
      }
    }
  }
  return set;
}

struct Screen {
  ChromaLxy red;
  ChromaLxy green;
  ChromaLxy blue;
  ChromaLxy redOut;
  ChromaLxy greenOut;
  ChromaLxy blueOut;

  Screen(int rows, int cols)
      : red(NumberedSet(rows, cols, 0)),
        green(NumberedSet(rows, cols, 3)),
        blue(NumberedSet(rows, cols, 6)) {
    Subsample(red, green, blue, redOut, greenOut, blueOut);
  }
  std::array<const cv::Mat*, 9> Outputs() const {
    return {&redOut.L,   &redOut.x,   &redOut.y,  &greenOut.L, &greenOut.x,
            &greenOut.y, &blueOut.L,  &blueOut.x, &blueOut.y};
  }
};

TEST(Subsample, StrideAndCount) {
  EXPECT_EQ(SubsampleStrideFor(1).step, 1);
  EXPECT_EQ(SubsampleStrideFor(100000).step, 1);
  EXPECT_EQ(SubsampleStrideFor(100000).count, 100000);
  EXPECT_EQ(SubsampleStrideFor(100001).step, 2);
  EXPECT_EQ(SubsampleStrideFor(100001).count, 50001);
  EXPECT_EQ(SubsampleStrideFor(300003).step, 4);
  EXPECT_EQ(SubsampleStrideFor(300003).count, 75001);
  EXPECT_EQ(SubsampleStrideFor(3840LL * 2160).step, 83);
  EXPECT_EQ(SubsampleStrideFor(3840LL * 2160).count, 99933);
}

TEST(Subsample, AtTheLimitSharesEveryPlane) {
  Screen screen(250, 400);
  const std::array<const cv::Mat*, 9> inputs = {&screen.red.L,   &screen.red.x,   &screen.red.y,
                                                &screen.green.L, &screen.green.x, &screen.green.y,
                                                &screen.blue.L,  &screen.blue.x,  &screen.blue.y};
  const auto outputs = screen.Outputs();
  for (size_t plane = 0; plane < 9; ++plane) {
    EXPECT_EQ(outputs[plane]->data, inputs[plane]->data) << plane;
    EXPECT_EQ(outputs[plane]->size(), cv::Size(400, 250));
  }
}

TEST(Subsample, OneLedOverTheLimitTakesEverySecond) {
  Screen screen(1, 100001);
  const auto outputs = screen.Outputs();
  for (int plane = 0; plane < 9; ++plane) {
    const cv::Mat& out = *outputs[plane];
    ASSERT_EQ(out.size(), cv::Size(1, 50001));
    ASSERT_EQ(out.type(), CV_32FC1);
    EXPECT_EQ(out.at<float>(0, 0), plane / 16.0f);
    EXPECT_EQ(out.at<float>(1, 0), 2.0f + plane / 16.0f);
    EXPECT_EQ(out.at<float>(50000, 0), 100000.0f + plane / 16.0f);
  }
  EXPECT_NE(screen.redOut.L.data, screen.red.L.data);
}

TEST(Subsample, StrideRunsAcrossRowEnds) {
  // 3 x 100001 LEDs: step 4, 75001 LEDs, the last one i = 300000 at row 2,
  // column 99998; LED 100004 (j = 25001) is row 1, column 3.
  Screen screen(3, 100001);
  ASSERT_EQ(screen.blueOut.y.rows, 75001);
  const cv::Mat& blueY = screen.blueOut.y;
  const float blueYPlane = 8 / 16.0f;
  EXPECT_EQ(blueY.at<float>(75000, 0), screen.blue.y.at<float>(2, 99998));
  EXPECT_EQ(blueY.at<float>(75000, 0), 300000.0f + blueYPlane);
  EXPECT_EQ(blueY.at<float>(25001, 0), screen.blue.y.at<float>(1, 3));
  EXPECT_EQ(screen.greenOut.L.at<float>(25001, 0), 100004.0f + 3 / 16.0f);
}

}  // namespace
}  // namespace aimhue
