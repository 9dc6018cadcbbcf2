#include "measurement_check.h"

#include <gtest/gtest.h>

#include <cfloat>
#include <sstream>

namespace aimhue {
namespace tool {
namespace {

// One primary of 2 x 3 LEDs with X, Y, Z = 1, 2, 1 (chromaticity 0.25, 0.5).
std::array<LedMeter, 3> Triple() {
  std::array<LedMeter, 3> triple;
  const float values[3] = {1.0f, 2.0f, 1.0f};
  for (int c = 0; c < 3; ++c) triple[c].chroma = cv::Mat(2, 3, CV_32FC1, cv::Scalar(values[c]));
  return triple;
}

TEST(CountImplausibleLeds, CountsBadLuminanceAndChromaticityButNotDeadLeds) {
  std::array<LedMeter, 3> triple = Triple();
  EXPECT_EQ(CountImplausibleLeds(triple).badLuminance, 0);
  EXPECT_EQ(CountImplausibleLeds(triple).outsideLocus, 0);
  for (LedMeter& meter : triple) meter.chroma.at<float>(0, 0) = 0.0f;  // dead
  triple[1].chroma.at<float>(0, 1) = -2.0f;                           // negative Y
  triple[0].chroma.at<float>(1, 2) = 20.0f;  // x = 20 / 23: red beyond any LED
  const ImplausibleLeds counts = CountImplausibleLeds(triple);
  EXPECT_EQ(counts.badLuminance, 1);
  EXPECT_EQ(counts.outsideLocus, 2);  // the negative Y also gives x, y outside
}

TEST(CountImplausibleLeds, FlagsAMeterOfHugeValues) {
  std::array<LedMeter, 3> triple = Triple();
  for (LedMeter& meter : triple) meter.chroma.setTo(FLT_MAX);  // X + Y + Z overflows
  EXPECT_EQ(CountImplausibleLeds(triple).outsideLocus, 6);
  std::ostringstream out;
  WarnImplausibleLeds(out, "aimhue", "green", CountImplausibleLeds(triple), 6);
  EXPECT_EQ(out.str(), "aimhue: warning: green: implausible measured values in 6 of 6 LEDs"
                       " (chromaticity outside the spectral locus); check the meter files\n");
  triple[2].chroma = cv::Mat(1, 3, CV_32FC1, cv::Scalar(1.0f));  // the library refuses these
  EXPECT_EQ(CountImplausibleLeds(triple).outsideLocus, 0);
}

}  // namespace
}  // namespace tool
}  // namespace aimhue
