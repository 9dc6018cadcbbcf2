#include "engine/subsample.h"

#include <gtest/gtest.h>

#include <array>

#include "meter/chroma_lxy.h"

namespace aimhue {
namespace {

// Three sets whose nine planes hold LED index + plane / 16, so that every
// copied value tells where it came from, and their subsample.
struct Screen {
  Screen(int rows, int cols) {
    for (int plane = 0; plane < 9; ++plane) {
      cv::Mat& m = *In()[plane];
      m.create(rows, cols, CV_32FC1);
      for (int i = 0; i < rows * cols; ++i) m.at<float>(i) = static_cast<float>(i) + plane / 16.0f;
    }
    Subsample(sets[0], sets[1], sets[2], sets[3], sets[4], sets[5]);
  }
  std::array<cv::Mat*, 9> Planes(int first) {
    return {&sets[first].L,     &sets[first].x,     &sets[first].y,
            &sets[first + 1].L, &sets[first + 1].x, &sets[first + 1].y,
            &sets[first + 2].L, &sets[first + 2].x, &sets[first + 2].y};
  }
  std::array<cv::Mat*, 9> In() { return Planes(0); }
  std::array<cv::Mat*, 9> Out() { return Planes(3); }
  ChromaLxy sets[6];  // red, green, blue in; red, green, blue out
};

TEST(Subsample, StrideAndCount) {
  const std::array<int64_t, 3> cases[] = {
      {1, 1, 1}, {100000, 1, 100000}, {100001, 2, 50001}, {300003, 4, 75001}, {3840LL * 2160, 83, 99933}};
  for (const auto& [leds, step, count] : cases) {
    EXPECT_EQ(SubsampleStrideFor(leds).step, step) << leds;
    EXPECT_EQ(SubsampleStrideFor(leds).count, count) << leds;
  }
}

TEST(Subsample, AtTheLimitSharesEveryPlaneAndOneMoreTakesEverySecond) {
  Screen limit(250, 400);
  for (int plane = 0; plane < 9; ++plane) {
    EXPECT_EQ(limit.Out()[plane]->data, limit.In()[plane]->data) << plane;
    EXPECT_EQ(limit.Out()[plane]->size(), cv::Size(400, 250));
  }
  Screen over(1, 100001);
  for (int plane = 0; plane < 9; ++plane) {
    const cv::Mat& out = *over.Out()[plane];
    ASSERT_EQ(out.size(), cv::Size(1, 50001));
    ASSERT_EQ(out.type(), CV_32FC1);
    EXPECT_NE(out.data, over.In()[plane]->data);
    EXPECT_EQ(out.at<float>(0, 0), plane / 16.0f);
    EXPECT_EQ(out.at<float>(1, 0), 2.0f + plane / 16.0f);
    EXPECT_EQ(out.at<float>(50000, 0), 100000.0f + plane / 16.0f);
  }
}

TEST(Subsample, StrideRunsAcrossRowEnds) {
  // 3 x 100001 LEDs: step 4, 75001 LEDs, the last one (300000) at row 2,
  // column 99998; LED 100004 (the 25001st) at row 1, column 3.
  Screen screen(3, 100001);
  const cv::Mat& blueY = screen.sets[5].y;
  ASSERT_EQ(blueY.rows, 75001);
  EXPECT_EQ(blueY.at<float>(75000, 0), screen.sets[2].y.at<float>(2, 99998));
  EXPECT_EQ(blueY.at<float>(75000, 0), 300000.0f + 8 / 16.0f);
  EXPECT_EQ(blueY.at<float>(25001, 0), screen.sets[2].y.at<float>(1, 3));
  EXPECT_EQ(screen.sets[4].L.at<float>(25001, 0), 100004.0f + 3 / 16.0f);
}

}  // namespace
}  // namespace aimhue
