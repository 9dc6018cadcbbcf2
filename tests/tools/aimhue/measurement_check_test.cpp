#include "measurement_check.h"

#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>
#include <sstream>
#include <vector>

namespace aimhue {
namespace tool {
namespace {

// The planes of one row of LEDs, as a screen combines them from X, Y, Z.
struct Planes {
  std::vector<float> L, x, y;
  explicit Planes(const std::vector<std::array<float, 3>>& xyz) {
    for (const auto& led : xyz) {
      const float sum = led[0] + led[1] + led[2];
      L.push_back(led[1]);
      x.push_back(led[0] / sum);
      y.push_back(led[1] / sum);
    }
  }
  AimhueScreenPlanes View() const {
    return {L.data(), x.data(), y.data(), 1, static_cast<int32_t>(L.size())};
  }
};

TEST(CountImplausibleLeds, CountsBadLuminanceAndChromaticityButNotDeadLeds) {
  const Planes plausible({{1, 2, 1}, {1, 2, 1}});
  EXPECT_EQ(CountImplausibleLeds(plausible.View()).badLuminance, 0);
  EXPECT_EQ(CountImplausibleLeds(plausible.View()).outsideLocus, 0);
  const Planes planes({{0, 0, 0},     // dead
                       {1, -2, 1},    // negative Y, and x, y outside
                       {20, 2, 1},    // x = 20 / 23: red beyond any LED
                       {1, 2, 1}});
  const ImplausibleLeds counts = CountImplausibleLeds(planes.View());
  EXPECT_EQ(counts.badLuminance, 1);
  EXPECT_EQ(counts.outsideLocus, 2);
}

TEST(CountImplausibleLeds, FlagsAMeterOfHugeValues) {
  const Planes planes(std::vector<std::array<float, 3>>(6, {FLT_MAX, FLT_MAX, FLT_MAX}));
  EXPECT_EQ(CountImplausibleLeds(planes.View()).outsideLocus, 6);  // X + Y + Z overflows
  std::ostringstream out;
  WarnImplausibleLeds(out, "aimhue", "green", CountImplausibleLeds(planes.View()), 6);
  EXPECT_EQ(out.str(), "aimhue: warning: green: implausible measured values in 6 of 6 LEDs"
                       " (chromaticity outside the spectral locus); check the meter files\n");
}

}  // namespace
}  // namespace tool
}  // namespace aimhue
