#include "synthetic/synthetic_chroma.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

namespace aimhue::synthetic {
namespace {

ScreenOptions Options() {
  ScreenOptions options;
  options.rows = 90;
  options.cols = 160;
  options.moduleRows = 15;
  options.moduleCols = 20;
  options.seed = 9;
  return options;
}

bool Identical(const cv::Mat& a, const cv::Mat& b) {
  return a.size() == b.size() && a.type() == b.type() &&
         std::memcmp(a.data, b.data, a.total() * a.elemSize()) == 0;
}

TEST(SyntheticScreen, TheSeedDecidesEveryValue) {
  const ScreenPlanes first = GeneratePlanes(Options());
  const ScreenPlanes again = GeneratePlanes(Options());
  ScreenOptions other = Options();
  other.seed = 10;
  const ScreenPlanes different = GeneratePlanes(other);
  for (int p = 0; p < 3; ++p) {
    EXPECT_TRUE(Identical(first[p].x, again[p].x));
    EXPECT_TRUE(Identical(first[p].luminance, again[p].luminance));
    EXPECT_FALSE(Identical(first[p].y, different[p].y));
  }
}

TEST(SyntheticScreen, SpreadAroundThePrimariesWithDeadLedsAndOutliers) {
  ScreenOptions options = Options();
  options.deadCount = 4;
  options.outlierCount = 6;
  const ScreenPlanes planes = GeneratePlanes(options);
  int dead = 0;
  int far = 0;
  for (int p = 0; p < 3; ++p) {
    ASSERT_EQ(planes[p].x.size(), cv::Size(160, 90));
    ASSERT_EQ(planes[p].x.type(), CV_32FC1);
    const PrimaryOptions& typical = options.primaries[p];
    double sum = 0.0;
    int counted = 0;
    for (int i = 0; i < 90 * 160; ++i) {
      const float x = planes[p].x.at<float>(i);
      const float y = planes[p].y.at<float>(i);
      if (std::isnan(x)) {
        EXPECT_TRUE(std::isnan(y));
        EXPECT_EQ(planes[p].luminance.at<float>(i), 0.0f);
        dead += p == 0;
        continue;
      }
      EXPECT_GT(planes[p].luminance.at<float>(i), 0.0f);
      far += std::hypot(x - typical.x, y - typical.y) > 0.02f;
      sum += x;
      ++counted;
    }
    EXPECT_NEAR(sum / counted, typical.x, 0.002) << p;
  }
  EXPECT_EQ(dead, 4);
  EXPECT_GE(far, 5);  // two outliers may share an LED
  EXPECT_LE(far, 6);
}

TEST(SyntheticScreen, MetersCarryTheTristimulusValuesAndRecords) {
  ScreenOptions options = Options();
  options.deadCount = 1;
  const ScreenPlanes planes = GeneratePlanes(options);
  const ScreenMeters meters = MetersFromPlanes(options, planes);
  const uint32_t colors[3] = {kRedColor, kGreenColor, kBlueColor};
  for (int p = 0; p < 3; ++p) {
    for (int axis = 0; axis < 3; ++axis) {
      const LedMeter& meter = meters[p][axis];
      EXPECT_EQ(meter.color, colors[p]);
      EXPECT_EQ(meter.type, axis == 0 ? CIE_X : axis == 1 ? CIE_Y : CIE_Z);
      ASSERT_EQ(meter.chroma.size(), cv::Size(160, 90));
      EXPECT_EQ(meter.state.type(), CV_8UC1);
      EXPECT_EQ(cv::countNonZero(meter.state), 0);
      ASSERT_NE(meter.partition, nullptr);
      EXPECT_EQ(meter.partition->w, 160);
      EXPECT_EQ(meter.partition->screen_h, 90);
      ASSERT_NE(meter.led_panel, nullptr);
      EXPECT_EQ(meter.led_panel->w, 20);
      EXPECT_EQ(meter.led_panel->h, 15);
    }
    EXPECT_EQ(meters[p][1].chroma.data, planes[p].luminance.data);
    for (int i = 0; i < 90 * 160; i += 97) {
      const float bigX = meters[p][0].chroma.at<float>(i);
      const float bigY = meters[p][1].chroma.at<float>(i);
      const float bigZ = meters[p][2].chroma.at<float>(i);
      const float sum = bigX + bigY + bigZ;
      EXPECT_NEAR(bigX / sum, planes[p].x.at<float>(i), 1e-5f);
      EXPECT_NEAR(bigY / sum, planes[p].y.at<float>(i), 1e-5f);
    }
    int zeros = 0;
    for (int i = 0; i < 90 * 160; ++i) {
      zeros += meters[p][0].chroma.at<float>(i) == 0.0f && meters[p][1].chroma.at<float>(i) == 0.0f &&
               meters[p][2].chroma.at<float>(i) == 0.0f;
    }
    EXPECT_EQ(zeros, 1);
  }
}

TEST(SyntheticScreen, CombinedMetersGiveThePlanesChromaticities) {
  ScreenOptions options = Options();
  options.deadCount = 2;
  const ScreenPlanes planes = GeneratePlanes(options);
  ScreenChroma sets;
  ASSERT_EQ(CombineMeters(MetersFromPlanes(options, planes), sets), 0);
  for (int p = 0; p < 3; ++p) {
    int nan = 0;
    for (int i = 0; i < 90 * 160; ++i) {
      const float x = sets[p].x.at<float>(i);
      if (std::isnan(x)) {
        ++nan;
        EXPECT_TRUE(std::isnan(planes[p].x.at<float>(i)));
        continue;
      }
      EXPECT_NEAR(x, planes[p].x.at<float>(i), 1e-5f);
      EXPECT_NEAR(sets[p].y.at<float>(i), planes[p].y.at<float>(i), 1e-5f);
    }
    EXPECT_EQ(nan, 2);
    EXPECT_EQ(sets[p].L.data, planes[p].luminance.data);
  }
}

TEST(SyntheticScreen, NoLedsGiveEmptyPlanes) {
  ScreenOptions options = Options();
  options.moduleCols = 0;
  const ScreenPlanes planes = GeneratePlanes(options);
  EXPECT_TRUE(planes[0].x.empty());
  EXPECT_TRUE(GenerateMeters(options)[2][2].chroma.empty());
}

}  // namespace
}  // namespace aimhue::synthetic
