#include "meter_set.h"

#include <gtest/gtest.h>

#include <cmath>

namespace aimhue {
namespace tool {
namespace {

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

}  // namespace
}  // namespace tool
}  // namespace aimhue
