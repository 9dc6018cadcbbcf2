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

// At the limit every plane is shared; above it each plane gets its own
// column of every step-th LED, the stride running across row ends: 3 x 100001
// LEDs give step 4 and 75001 LEDs, LED 100004 (the 25001st) at row 1, column
// 3 and the last (300000) at row 2, column 99998.
TEST(Subsample, AtTheLimitSharesEveryPlaneAboveItStridesAcrossRowEnds) {
  Screen limit(250, 400);
  for (int plane = 0; plane < 9; ++plane) {
    EXPECT_EQ(limit.Out()[plane]->data, limit.In()[plane]->data) << plane;
    EXPECT_EQ(limit.Out()[plane]->size(), cv::Size(400, 250));
  }
  Screen over(3, 100001);
  for (int plane = 0; plane < 9; ++plane) {
    const cv::Mat& out = *over.Out()[plane];
    ASSERT_EQ(out.size(), cv::Size(1, 75001));
    ASSERT_EQ(out.type(), CV_32FC1);
    EXPECT_NE(out.data, over.In()[plane]->data);
    EXPECT_EQ(out.at<float>(0, 0), plane / 16.0f);
    EXPECT_EQ(out.at<float>(25001, 0), 100004.0f + plane / 16.0f);
    EXPECT_EQ(out.at<float>(75000, 0), 300000.0f + plane / 16.0f);
  }
}

}  // namespace
}  // namespace aimhue
