#include <aimhue/dead_leds.h>
#include <aimhue/status.h>

#include <gtest/gtest.h>

#include <array>

namespace aimhue {
namespace {

using Triple = std::array<LedMeter, 3>;

// One primary of `rows` x `cols` LEDs whose X, Y and Z are 1, 2 and 1.
Triple UniformTriple(int rows, int cols) {
  Triple meters;
  const float values[3] = {1.0f, 2.0f, 1.0f};
  for (int c = 0; c < 3; ++c) meters[c].chroma = cv::Mat(rows, cols, CV_32FC1, cv::Scalar(values[c]));
  return meters;
}

void KillLed(Triple& meters, int row, int col) {
  for (LedMeter& meter : meters) meter.chroma.at<float>(row, col) = 0.0f;
}

DeadLedCounts Fix(Triple& meters, bool repair, bool withZ = true) {
  LedMeter* const triple[3] = {&meters[0], &meters[1], withZ ? &meters[2] : nullptr};
  DeadLedCounts counts{-1, -1};
  EXPECT_EQ(FixDeadLeds(triple, repair, &counts), kOk);
  return counts;
}

TEST(FixDeadLeds, CountsOnlyLedsWhoseThreeValuesAreZero) {
  Triple meters = UniformTriple(4, 5);
  KillLed(meters, 0, 0);
  KillLed(meters, 3, 4);
  meters[0].chroma.at<float>(2, 2) = 0.0f;  // X alone is zero: alive
  meters[1].chroma.at<float>(1, 1) = 0.0f;  // X and Y zero, Z not: alive,
  meters[0].chroma.at<float>(1, 1) = 0.0f;  // but dead when Z is absent
  DeadLedCounts counts = Fix(meters, false);
  EXPECT_EQ(counts.found, 2);
  EXPECT_EQ(counts.remaining, 2);
  EXPECT_TRUE(meters[0].state.empty());  // counting marks nothing
  EXPECT_EQ(Fix(meters, false, false).found, 3);
  meters[2].chroma = cv::Mat(3, 5, CV_32FC1, cv::Scalar(1.0f));  // planes that do not fit
  EXPECT_EQ(Fix(meters, true).found, 0);
  EXPECT_TRUE(meters[0].state.empty());
  Triple wide = UniformTriple(2, 150);  // whole blocks of 64 LEDs, then a tail
  for (int col : {0, 63, 64, 100, 149}) KillLed(wide, 1, col);
  wide[0].chroma.at<float>(0, 70) = 0.0f;  // a zero X in a block, alive
  EXPECT_EQ(Fix(wide, false).found, 5);
}

TEST(FixDeadLeds, MarksAndRepairsLoneDeadLedsButNotAClusterCore) {
  Triple corner = UniformTriple(7, 7);
  KillLed(corner, 0, 6);                           // a lone dead LED in a corner
  corner[1].state = cv::Mat::zeros(2, 2, CV_8UC1);  // a state plane of the wrong size
  const DeadLedCounts lone = Fix(corner, true);
  EXPECT_EQ(lone.found, 1);
  EXPECT_EQ(lone.remaining, 0);  // the median of the corner's neighbours restores it
  EXPECT_EQ(corner[1].chroma.at<float>(0, 6), 2.0f);
  for (const LedMeter& meter : corner) {
    ASSERT_EQ(meter.state.size(), meter.chroma.size());
    EXPECT_EQ(meter.state.at<uchar>(0, 6) & kDeadLedBit, kDeadLedBit);
    EXPECT_EQ(cv::countNonZero(meter.state), 1);
  }
  Triple cluster = UniformTriple(7, 7);
  for (int row = 3; row < 6; ++row) {
    for (int col = 2; col < 5; ++col) KillLed(cluster, row, col);  // a 3 x 3 cluster
  }
  const DeadLedCounts clustered = Fix(cluster, true);
  // Only the cluster's four corners see more live than dead LEDs; its centre
  // and the middle of each side stay dead.
  EXPECT_EQ(clustered.found, 9);
  EXPECT_EQ(clustered.remaining, 5);
  EXPECT_EQ(cv::countNonZero(cluster[0].state), 9);
}

}  // namespace
}  // namespace aimhue
