#include "meter_set.h"

#include <gtest/gtest.h>

#include <cmath>

#include "command_error.h"

namespace aimhue {
namespace tool {
namespace {

// One primary of `rows` x `cols` LEDs whose X, Y and Z are 1, 2 and 1
// (chromaticity 0.25, 0.5).
PrimaryMeters UniformMeters(int primary, int rows, int cols) {
  PrimaryMeters meters;
  const float values[3] = {1.0f, 2.0f, 1.0f};
  for (int c = 0; c < 3; ++c) {
    meters[c].color = ColourOfPrimary(primary);
    meters[c].type = 1u << c;
    meters[c].chroma = cv::Mat(rows, cols, CV_32FC1, cv::Scalar(values[c]));
  }
  return meters;
}

void KillLed(PrimaryMeters& meters, int row, int col) {
  for (LedMeter& meter : meters) meter.chroma.at<float>(row, col) = 0.0f;
}

TEST(CountDeadLeds, CountsLedsWhoseThreeValuesAreZero) {
  PrimaryMeters meters = UniformMeters(0, 4, 5);
  KillLed(meters, 0, 0);
  KillLed(meters, 3, 4);
  meters[0].chroma.at<float>(2, 2) = 0.0f;  // X alone is zero: alive
  EXPECT_EQ(CountDeadLeds(meters), 2);
  meters[2].chroma = cv::Mat(3, 5, CV_32FC1, cv::Scalar(1.0f));  // planes do not fit
  EXPECT_EQ(CountDeadLeds(meters), 0);
}

TEST(HandleDeadLeds, MarksAndRepairsLoneDeadLedsButNotAClusterCore) {
  PrimaryMeters corner = UniformMeters(0, 7, 7);
  KillLed(corner, 0, 6);  // a lone dead LED in a corner
  corner[1].state = cv::Mat::zeros(2, 2, CV_8UC1);  // a state plane of the wrong size
  const DeadLeds lone = HandleDeadLeds(corner, true);
  EXPECT_EQ(lone.found, 1);
  EXPECT_EQ(lone.remaining, 0);  // the median of the corner's neighbours restores it
  EXPECT_EQ(corner[1].chroma.at<float>(0, 6), 2.0f);
  for (const LedMeter& meter : corner) {
    ASSERT_EQ(meter.state.size(), meter.chroma.size());
    EXPECT_EQ(meter.state.at<uchar>(0, 6) & 1, 1);
    EXPECT_EQ(cv::countNonZero(meter.state), 1);
  }
  PrimaryMeters cluster = UniformMeters(1, 7, 7);
  for (int row = 3; row < 6; ++row) {
    for (int col = 2; col < 5; ++col) KillLed(cluster, row, col);  // a 3 x 3 cluster
  }
  const DeadLeds clustered = HandleDeadLeds(cluster, true);
  // Only the cluster's four corners see more live than dead LEDs; its centre
  // and the middle of each side stay dead.
  EXPECT_EQ(clustered.found, 9);
  EXPECT_EQ(clustered.remaining, 5);
  EXPECT_EQ(cv::countNonZero(cluster[0].state), 9);
}

TEST(HandleDeadLeds, WithoutRepairOnlyCounts) {
  PrimaryMeters meters = UniformMeters(2, 3, 3);
  KillLed(meters, 1, 1);
  const DeadLeds counts = HandleDeadLeds(meters, false);
  EXPECT_EQ(counts.found, 1);
  EXPECT_EQ(counts.remaining, 1);
  EXPECT_EQ(meters[0].chroma.at<float>(1, 1), 0.0f);
  EXPECT_TRUE(meters[0].state.empty());
}

TEST(CheckMeterRole, RefusesAMeterInAnotherPlace) {
  const PrimaryMeters green = UniformMeters(1, 2, 2);
  EXPECT_NO_THROW(CheckMeterRole(green[1], "g_Y.meter", 1, 1));
  EXPECT_THROW(CheckMeterRole(green[1], "g_Y.meter", 1, 0), CommandError);  // Y given as X
  EXPECT_THROW(CheckMeterRole(green[1], "g_Y.meter", 0, 1), CommandError);  // green as red
}

}  // namespace
}  // namespace tool
}  // namespace aimhue
