// CIEDE2000, CIELAB and the daylight locus against published values.
#include <aimhue/colorimetry.h>
#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "engine/colorimetry_literal.h"

namespace aimhue {
namespace {

// Sharma, Wu and Dalal (2005), Table 1: L1, a1, b1, L2, a2, b2 and the
// difference to four decimals. Pairs 7-16 test the hue branches (neutral
// colours, the 0/360 wrap and, in pairs 10 and 14, a gap of exactly 180
// degrees); the rest are real colour pairs.
struct SharmaPair {
  double lab1[3];
  double lab2[3];
  double deltaE;
};

constexpr SharmaPair kSharmaPairs[] = {
    {{50.0000, 2.6772, -79.7751}, {50.0000, 0.0000, -82.7485}, 2.0425},
    {{50.0000, 3.1571, -77.2803}, {50.0000, 0.0000, -82.7485}, 2.8615},
    {{50.0000, 2.8361, -74.0200}, {50.0000, 0.0000, -82.7485}, 3.4412},
    {{50.0000, -1.3802, -84.2814}, {50.0000, 0.0000, -82.7485}, 1.0000},
    {{50.0000, -1.1848, -84.8006}, {50.0000, 0.0000, -82.7485}, 1.0000},
    {{50.0000, -0.9009, -85.5211}, {50.0000, 0.0000, -82.7485}, 1.0000},
    {{50.0000, 0.0000, 0.0000}, {50.0000, -1.0000, 2.0000}, 2.3669},
    {{50.0000, -1.0000, 2.0000}, {50.0000, 0.0000, 0.0000}, 2.3669},
    {{50.0000, 2.4900, -0.0010}, {50.0000, -2.4900, 0.0009}, 7.1792},
    {{50.0000, 2.4900, -0.0010}, {50.0000, -2.4900, 0.0010}, 7.1792},
    {{50.0000, 2.4900, -0.0010}, {50.0000, -2.4900, 0.0011}, 7.2195},
    {{50.0000, 2.4900, -0.0010}, {50.0000, -2.4900, 0.0012}, 7.2195},
    {{50.0000, -0.0010, 2.4900}, {50.0000, 0.0009, -2.4900}, 4.8045},
    {{50.0000, -0.0010, 2.4900}, {50.0000, 0.0010, -2.4900}, 4.8045},
    {{50.0000, -0.0010, 2.4900}, {50.0000, 0.0011, -2.4900}, 4.7461},
    {{50.0000, 2.5000, 0.0000}, {50.0000, 0.0000, -2.5000}, 4.3065},
    {{50.0000, 2.5000, 0.0000}, {73.0000, 25.0000, -18.0000}, 27.1492},
    {{50.0000, 2.5000, 0.0000}, {61.0000, -5.0000, 29.0000}, 22.8977},
    {{50.0000, 2.5000, 0.0000}, {56.0000, -27.0000, -3.0000}, 31.9030},
    {{50.0000, 2.5000, 0.0000}, {58.0000, 24.0000, 15.0000}, 19.4535},
    {{50.0000, 2.5000, 0.0000}, {50.0000, 3.1736, 0.5854}, 1.0000},
    {{50.0000, 2.5000, 0.0000}, {50.0000, 3.2972, 0.0000}, 1.0000},
    {{50.0000, 2.5000, 0.0000}, {50.0000, 1.8634, 0.5757}, 1.0000},
    {{50.0000, 2.5000, 0.0000}, {50.0000, 3.2592, 0.3350}, 1.0000},
    {{60.2574, -34.0099, 36.2677}, {60.4626, -34.1751, 39.4387}, 1.2644},
    {{63.0109, -31.0961, -5.8663}, {62.8187, -29.7946, -4.0864}, 1.2630},
    {{61.2901, 3.7196, -5.3901}, {61.4292, 2.2480, -4.9620}, 1.8731},
    {{35.0831, -44.1164, 3.7933}, {35.0232, -40.0716, 1.5901}, 1.8645},
    {{22.7233, 20.0904, -46.6940}, {23.0331, 14.9730, -42.5619}, 2.0373},
    {{36.4612, 47.8580, 18.3852}, {36.2715, 50.5065, 21.2231}, 1.4146},
    {{90.8027, -2.0831, 1.4410}, {91.1528, -1.6435, 0.0447}, 1.4441},
    {{90.9257, -0.5406, -0.9208}, {88.6381, -0.8985, -0.7239}, 1.5381},
    {{6.7747, -0.2908, -2.4247}, {5.8714, -0.0985, -2.2286}, 0.6377},
    {{2.0776, 0.0795, -1.1350}, {0.9033, -0.0636, -0.5514}, 0.9082},
};

TEST(CieDe2000Test, MatchesThePublishedPairsInBothOrders) {
  static_assert(sizeof kSharmaPairs / sizeof kSharmaPairs[0] == 34, "all 34 published pairs");
  for (const auto deltaE : {CieDe2000, CieDe2000Literal}) {
    for (const SharmaPair& pair : kSharmaPairs) {
      const cv::Vec3d lab1(pair.lab1[0], pair.lab1[1], pair.lab1[2]);
      const cv::Vec3d lab2(pair.lab2[0], pair.lab2[1], pair.lab2[2]);
      EXPECT_NEAR(deltaE(lab1, lab2), pair.deltaE, 1e-4) << lab1 << " " << lab2;
      EXPECT_NEAR(deltaE(lab2, lab1), pair.deltaE, 1e-4) << lab2 << " " << lab1;
    }
  }
  EXPECT_EQ(CieDe2000({40, 10, -20}, {40, 10, -20}), 0.0);
  EXPECT_TRUE(std::isnan(CieDe2000({NAN, 0, 0}, {50, 0, 0})));
}

// The fast form against the paper's equations: random colours, colours a
// small step apart (where dH' would cancel), neutral colours, and hues
// nearly or exactly opposite (where the mean hue's branch decides).
TEST(CieDe2000Test, AgreesWithTheLiteralEquations) {
  std::mt19937_64 random(7);
  std::uniform_real_distribution<double> lightness(0.0, 100.0);
  std::uniform_real_distribution<double> axis(-120.0, 120.0);
  std::uniform_real_distribution<double> step(-1e-3, 1e-3);
  std::uniform_real_distribution<double> angle(0.0, 6.283185307179586);
  auto check = [](const cv::Vec3d& lab1, const cv::Vec3d& lab2) {
    const double literal = CieDe2000Literal(lab1, lab2);
    ASSERT_NEAR(CieDe2000(lab1, lab2), literal, 1e-9 * (1.0 + literal)) << lab1 << " " << lab2;
    ASSERT_EQ(CieDe2000(lab1, lab2), CieDe2000(lab2, lab1)) << lab1 << " " << lab2;
  };
  for (int i = 0; i < 100000; ++i) {
    const cv::Vec3d lab1(lightness(random), axis(random), axis(random));
    check(lab1, {lightness(random), axis(random), axis(random)});
    check(lab1, lab1 + cv::Vec3d(step(random), step(random), step(random)));
    check({lightness(random), 0.0, 0.0}, lab1);
    const double hue = angle(random);
    const double opposite = hue + 3.141592653589793 + step(random);
    check({50.0, 30.0 * std::cos(hue), 30.0 * std::sin(hue)},
          {60.0, 20.0 * std::cos(opposite), 20.0 * std::sin(opposite)});
  }
  check({50.0, 0.0, 0.0}, {50.0, 3.0, -4.0});
  check({50.0, 0.0, 10.0}, {50.0, 0.0, -10.0});
  check({50.0, 10.0, 0.0}, {50.0, -10.0, 0.0});
}

TEST(XyzToLabTest, WhiteRedAndTheJoinOfTheTwoSegments) {
  const cv::Vec3d white(95.047, 100.0, 108.883);
  EXPECT_LE(cv::norm(XyzToLab(white, white), cv::Vec3d(100, 0, 0)), 1e-12);
  // The red primary of sRGB under D65.
  EXPECT_LE(cv::norm(XyzToLab({41.24564, 21.26729, 1.93339}, white),
                     cv::Vec3d(53.2408, 80.0925, 67.2032), cv::NORM_INF),
            1e-4);
  // At Y / Yn = 216/24389 both segments give L* = 8 (kappa x epsilon = 8).
  const double epsilon = 216.0 / 24389.0;
  EXPECT_NEAR(XyzToLab(white * epsilon, white)[0], 8.0, 1e-12);
  EXPECT_NEAR(XyzToLab(white * (epsilon * (1 - 1e-9)), white)[0], 8.0, 1e-7);
}

TEST(DaylightXyTest, LocusPointsAndRefusedTemperatures) {
  EXPECT_LE(cv::norm(DaylightXy(6504.38938305), cv::Vec2d(0.3127077, 0.3291128), cv::NORM_INF),
            5e-7);
  EXPECT_NEAR(DaylightXy(7503.69)[0], 0.2990, 1e-4);  // D75, on the upper branch
  EXPECT_TRUE(std::isfinite(DaylightXy(4000)[0]) && std::isfinite(DaylightXy(25000)[1]));
  for (double kelvin : {3999.0, 25001.0, double(NAN), -6500.0}) {
    const cv::Vec2d xy = DaylightXy(kelvin);
    EXPECT_TRUE(std::isnan(xy[0]) && std::isnan(xy[1])) << kelvin;
  }
}

}  // namespace
}  // namespace aimhue
