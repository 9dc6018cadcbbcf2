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

TEST(SampleChromaticities, SkipsDeadLedsAndHonoursTheLimit) {
  const float L[6] = {2, 0, 2, 2, 2, 2};
  const float nan = std::nanf("");
  const float x[6] = {0.25f, nan, 0.25f, 0.25f, 0.25f, 0.25f};  // LED 1 is dead
  const float y[6] = {0.5f, nan, 0.5f, 0.5f, 0.5f, 0.5f};
  const AimhueScreenPlanes planes{L, x, y, 2, 3};
  const auto all = SampleChromaticities(planes, 100);
  ASSERT_EQ(all.size(), 5u);
  EXPECT_EQ(all[0], cv::Point2f(0.25f, 0.5f));
  EXPECT_EQ(SampleChromaticities(planes, 3).size(), 3u);  // LEDs 0, 2, 4
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
