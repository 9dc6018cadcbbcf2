#include "meter_set.h"

#include <gtest/gtest.h>

#include <cmath>

namespace aimhue {
namespace tool {
namespace {

// A screen of `rows` x `cols` LEDs whose X, Y and Z are 1, 2 and 1 in every
// primary (chromaticity 0.25, 0.5).
Meters UniformMeters(int rows, int cols) {
  Meters meters;
  const float values[3] = {1.0f, 2.0f, 1.0f};
  for (int p = 0; p < 3; ++p) {
    for (int c = 0; c < 3; ++c) {
      meters[p][c].color = 1u << p;
      meters[p][c].type = 1u << c;
      meters[p][c].chroma = cv::Mat(rows, cols, CV_32FC1, cv::Scalar(values[c]));
    }
  }
  return meters;
}

void KillLed(Meters& meters, int primary, int row, int col) {
  for (LedMeter& meter : meters[primary]) meter.chroma.at<float>(row, col) = 0.0f;
}

TEST(CountDeadLeds, CountsLedsWhoseThreeValuesAreZero) {
  Meters meters = UniformMeters(4, 5);
  KillLed(meters, 0, 1, 1);
  KillLed(meters, 2, 0, 0);
  KillLed(meters, 2, 3, 4);
  meters[1][0].chroma.at<float>(2, 2) = 0.0f;  // X alone is zero: alive
  EXPECT_EQ(CountDeadLeds(meters), (std::array<int64_t, 3>{1, 0, 2}));
  meters[1][2].chroma = cv::Mat(3, 5, CV_32FC1, cv::Scalar(1.0f));  // planes do not fit
  EXPECT_EQ(CountDeadLeds(meters)[1], 0);
}

TEST(HandleDeadLeds, MarksAndRepairsLoneDeadLedsButNotAClusterCore) {
  Meters meters = UniformMeters(7, 7);
  KillLed(meters, 0, 0, 6);  // a lone dead LED in a corner
  for (int row = 3; row < 6; ++row) {
    for (int col = 2; col < 5; ++col) KillLed(meters, 1, row, col);  // a 3 x 3 cluster
  }
  meters[0][1].state = cv::Mat::zeros(2, 2, CV_8UC1);  // a state plane of the wrong size
  const DeadLedSummary summary = HandleDeadLeds(meters, true);
  EXPECT_TRUE(summary.repaired);
  EXPECT_EQ(summary.found, (std::array<int64_t, 3>{1, 9, 0}));
  // The median of the corner's neighbours restores it. In the cluster only
  // its four corners see more live than dead LEDs; its centre and the middle
  // of each side stay dead.
  EXPECT_EQ(summary.remaining, (std::array<int64_t, 3>{0, 5, 0}));
  EXPECT_EQ(meters[0][1].chroma.at<float>(0, 6), 2.0f);
  for (const LedMeter& meter : meters[0]) {
    ASSERT_EQ(meter.state.size(), meter.chroma.size());
    EXPECT_EQ(meter.state.at<uchar>(0, 6) & 1, 1);
    EXPECT_EQ(cv::countNonZero(meter.state), 1);
  }
  EXPECT_EQ(cv::countNonZero(meters[1][0].state), 9);
}

TEST(HandleDeadLeds, WithoutRepairOnlyCounts) {
  Meters meters = UniformMeters(3, 3);
  KillLed(meters, 2, 1, 1);
  const DeadLedSummary summary = HandleDeadLeds(meters, false);
  EXPECT_FALSE(summary.repaired);
  EXPECT_EQ(summary.found, summary.remaining);
  EXPECT_EQ(meters[2][0].chroma.at<float>(1, 1), 0.0f);
  EXPECT_TRUE(meters[2][0].state.empty());
}

}  // namespace
}  // namespace tool
}  // namespace aimhue
