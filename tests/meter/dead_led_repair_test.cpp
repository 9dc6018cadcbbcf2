#include "meter/dead_led_repair.h"

#include <cmath>
#include <limits>

#include <gtest/gtest.h>
#include <opencv2/imgproc.hpp>

#include "support/test_meters.h"

namespace aimhue::testing {
namespace {

// The plain twin: filter the whole plane, then copy the filtered value to
// every dead LED.
void PlainRepair(const cv::Mat& state, cv::Mat& values) {
  cv::Mat median;
  cv::medianBlur(values, median, 3);
  for (int r = 0; r < values.rows; ++r) {
    for (int c = 0; c < values.cols; ++c) {
      if (state.at<uint8_t>(r, c) & kDeadLedBit) values.at<float>(r, c) = median.at<float>(r, c);
    }
  }
}

// Random planes (thin ones, and wide ones that the filter handles in vector
// blocks), values with ties, NaNs, signed zeros and infinities in some
// trials; dead LEDs scattered, on the borders and in clusters (some reading
// zero, as dead LEDs do).
TEST(DeadLedRepair, BitIdenticalToTheWholePlaneFilter) {
  cv::RNG random(20261123);
  const float kSpecial[] = {0.0f, -0.0f, std::numeric_limits<float>::quiet_NaN(),
                            std::numeric_limits<float>::infinity(), -1.0f};
  for (int trial = 0; trial < 400; ++trial) {
    const int rows = 1 + random.uniform(0, trial % 4 == 0 ? 3 : 70);
    const int cols = 1 + random.uniform(0, trial % 5 == 0 ? 3 : 90);
    cv::Mat values(rows, cols, CV_32FC1);
    random.fill(values, cv::RNG::UNIFORM, -50.0f, 50.0f);
    if (trial % 3 == 0) values.forEach<float>([](float& v, const int*) { v = std::round(v / 10); });
    cv::Mat state = cv::Mat::zeros(rows, cols, CV_8UC1);
    const int scattered = random.uniform(0, rows * cols / 4 + 2);
    for (int k = 0; k < scattered; ++k) {
      const int r = random.uniform(0, rows), c = random.uniform(0, cols);
      state.at<uint8_t>(r, c) = static_cast<uint8_t>(random.uniform(0, 256) | kDeadLedBit);
      if (trial % 2 == 0 && k % 7 == 0) values.at<float>(r, c) = kSpecial[k % 5];
    }
    state.row(0).setTo(trial % 6 == 1 ? 3 : 0);
    state.col(cols - 1).setTo(trial % 6 == 2 ? 1 : 0);
    const cv::Rect cluster(random.uniform(0, cols), random.uniform(0, rows), 4, 3);
    state(cluster & cv::Rect(0, 0, cols, rows)).setTo(5);
    if (trial % 4 == 3) {  // dead LEDs reading +0 and -0 side by side
      const cv::Rect zeros = cluster & cv::Rect(0, 0, cols, rows);
      values(zeros).setTo(0.0f);
      if (zeros.area() > 1) values.at<float>(zeros.y, zeros.x) = -0.0f;
    }
    state.at<uint8_t>(0, 0) |= 2;  // other bits never mark a dead LED
    cv::Mat fast = values.clone();
    cv::Mat plain = values.clone();
    RepairDeadLeds(state, fast);
    PlainRepair(state, plain);
    ASSERT_TRUE(SamePlaneBits(fast, plain)) << "trial " << trial << ", " << rows << " x " << cols;
  }
}

// A view into a larger plane is repaired in place, rows by their own stride,
// and the count says how many LEDs were replaced.
TEST(DeadLedRepair, RepairsAViewAndCountsTheDead) {
  cv::Mat whole(6, 20, CV_32FC1);
  cv::randu(whole, 1.0f, 2.0f);
  cv::Mat state = cv::Mat::zeros(4, 12, CV_8UC1);
  state.at<uint8_t>(1, 9) = 1;
  state.at<uint8_t>(3, 0) = 1;
  cv::Mat view = whole(cv::Rect(3, 1, 12, 4));
  cv::Mat plain = view.clone();
  EXPECT_EQ(RepairDeadLeds(state, view), 2);
  PlainRepair(state, plain);
  EXPECT_TRUE(SamePlaneBits(view, plain));
  EXPECT_EQ(RepairDeadLeds(cv::Mat::zeros(4, 12, CV_8UC1), view), 0);
}

}  // namespace
}  // namespace aimhue::testing
