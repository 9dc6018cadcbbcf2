#include <aimhue/led_meter.h>
#include <aimhue/status.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "meter/chroma_lxy.h"
#include "support/log_capture.h"
#include "support/test_meters.h"

namespace aimhue {
namespace {

using ::aimhue::testing::LogCapture;
using ::aimhue::testing::MakeMeter;
using Lines = std::vector<std::string>;

// The literal chromaticity: S = (X + Y) + Z, x = X / S, y = Y / S, each step
// a whole-plane 32-bit operation.
void PlainChromaticity(const cv::Mat& X, const cv::Mat& Y, const cv::Mat& Z, cv::Mat& x,
                       cv::Mat& y) {
  cv::Mat sum;
  cv::add(X, Y, sum);
  cv::add(sum, Z, sum);
  cv::divide(X, sum, x);
  cv::divide(Y, sum, y);
}

bool SameBits(const cv::Mat& a, const cv::Mat& b) {
  if (a.size != b.size || a.type() != b.type()) return false;
  for (int row = 0; row < a.rows; ++row) {
    if (std::memcmp(a.ptr(row), b.ptr(row), a.cols * a.elemSize()) != 0) return false;
  }
  return true;
}

bool AllEqual(const cv::Mat& plane, float value) { return cv::countNonZero(plane != value) == 0; }

TEST(ChromaLxyCombine, ThreeMetersGiveLuminanceAndChromaticity) {
  const LedMeter X = MakeMeter(CIE_X, 2, 2, 3, 1.0f);
  const LedMeter Y = MakeMeter(CIE_Y, 2, 2, 3, 2.0f);
  const LedMeter Z = MakeMeter(CIE_Z, 2, 2, 3, 1.0f);
  LogCapture log;
  ChromaLxy out;
  EXPECT_TRUE(IsEmpty(out));
  ASSERT_EQ(ChromaLxy::Combine(out, &X, &Y, &Z), kOk);
  EXPECT_EQ(log.Infos(), Lines{"ChromaLxy::Combine"});
  EXPECT_TRUE(log.Errors().empty());
  EXPECT_FALSE(IsEmpty(out));
  for (const cv::Mat* plane : {&out.L, &out.x, &out.y}) {
    EXPECT_EQ(plane->type(), CV_32FC1);
    EXPECT_EQ(plane->size(), cv::Size(3, 2));
  }
  EXPECT_TRUE(AllEqual(out.x, 0.25f));
  EXPECT_TRUE(AllEqual(out.y, 0.5f));
  EXPECT_TRUE(AllEqual(out.L, 2.0f));
  // L is the Y plane itself; x and y are new planes.
  EXPECT_EQ(out.L.data, Y.chroma.data);
  for (const LedMeter* meter : {&X, &Y, &Z}) {
    EXPECT_NE(out.x.data, meter->chroma.data);
    EXPECT_NE(out.y.data, meter->chroma.data);
  }
  out.y = cv::Mat(0, 3, CV_32FC1);
  EXPECT_TRUE(IsEmpty(out));
}

TEST(ChromaLxyCombine, ZeroSumGivesNaN) {
  const LedMeter X = MakeMeter(CIE_X, 1, 1, 1, 0.0f);
  const LedMeter Y = MakeMeter(CIE_Y, 1, 1, 1, 0.0f);
  const LedMeter Z = MakeMeter(CIE_Z, 1, 1, 1, 0.0f);
  ChromaLxy out;
  ASSERT_EQ(ChromaLxy::Combine(out, &X, &Y, &Z), kOk);
  EXPECT_TRUE(std::isnan(out.x.at<float>(0)));
  EXPECT_TRUE(std::isnan(out.y.at<float>(0)));
  EXPECT_EQ(out.L.at<float>(0), 0.0f);
}

// A colour-4 primary has no Z meter: Z is zero and only (X, Y) are checked.
TEST(ChromaCombine, ColourFourWithoutZ) {
  const LedMeter X = MakeMeter(CIE_X, 4, 2, 3, 1.0f);
  LedMeter Y = MakeMeter(CIE_Y, 4, 2, 3, 3.0f);
  ChromaLxy lxy;
  ASSERT_EQ(ChromaLxy::Combine(lxy, &X, &Y, nullptr), kOk);
  EXPECT_TRUE(AllEqual(lxy.x, 0.25f));
  EXPECT_TRUE(AllEqual(lxy.y, 0.75f));
  ChromaXYZ xyz;
  ASSERT_EQ(ChromaXYZ::Combine(xyz, &X, &Y, nullptr), kOk);
  EXPECT_EQ(xyz.X.data, X.chroma.data);
  EXPECT_EQ(xyz.Y.data, Y.chroma.data);
  EXPECT_TRUE(SameBits(xyz.Z, cv::Mat::zeros(2, 3, CV_32FC1)));

  // Without a Z meter the pair is still checked.
  Y.color = 2;
  LogCapture log;
  EXPECT_EQ(ChromaLxy::Combine(lxy, &X, &Y, nullptr), kOutOfRange);
  EXPECT_EQ(log.Errors(), Lines{"LedMeter::Check--Error in LedMeter input color different"});
}

// With a Z meter, a colour-4 primary is checked as three meters and its Z
// plane is used.
TEST(ChromaCombine, ColourFourWithZ) {
  const LedMeter X = MakeMeter(CIE_X, 4, 2, 3, 1.0f);
  const LedMeter Y = MakeMeter(CIE_Y, 4, 2, 3, 1.0f);
  const LedMeter Z = MakeMeter(CIE_Z, 4, 2, 3, 2.0f);
  ChromaLxy lxy;
  ASSERT_EQ(ChromaLxy::Combine(lxy, &X, &Y, &Z), kOk);
  EXPECT_TRUE(AllEqual(lxy.x, 0.25f));
  ChromaXYZ xyz;
  ASSERT_EQ(ChromaXYZ::Combine(xyz, &X, &Y, &Z), kOk);
  EXPECT_EQ(xyz.Z.data, Z.chroma.data);

  const LedMeter small_z = MakeMeter(CIE_Z, 4, 1, 3, 2.0f);
  LogCapture log;
  EXPECT_EQ(ChromaLxy::Combine(lxy, &X, &Y, &small_z), kOutOfRange);
  EXPECT_EQ(log.Errors(), Lines{"LedMeter::Check--Error in LedMeter input chroma size different"});
}

// Failures: the status and line of the first failing check, `out` untouched.
TEST(ChromaCombine, FailuresLeaveTheOutputAlone) {
  const LedMeter X = MakeMeter(CIE_X, 1);
  const LedMeter Y = MakeMeter(CIE_Y, 1);
  const LedMeter Z = MakeMeter(CIE_Z, 1);
  const LedMeter other_y = MakeMeter(CIE_Y, 1);
  LedMeter double_z = MakeMeter(CIE_Z, 1);
  double_z.chroma = cv::Mat::ones(2, 3, CV_64FC1);
  LedMeter two_channel_y = MakeMeter(CIE_Y, 4);
  two_channel_y.chroma = cv::Mat::ones(2, 3, CV_32FC2);
  LedMeter four_x = MakeMeter(CIE_X, 4);
  const std::string kNull = "LedMeter::Check--Error in LedMeter input is nullptr";
  const std::string kFloat = "--Error :: chroma is not a plane of 32-bit floats";
  struct Case {
    const LedMeter* x;
    const LedMeter* y;
    const LedMeter* z;
    int status;
    std::string lxy_line;  // "ChromaXYZ" in place of "ChromaLxy" for the other form
  };
  const Case cases[] = {
      {nullptr, nullptr, nullptr, kNullInput,
       "ChromaLxy::Combine-- meter_x meter_y  meter_z all Nullptr"},
      {&X, &Y, nullptr, kNullInput, kNull},  // colour 1 needs its Z meter
      {nullptr, &Y, &Z, kNullInput, kNull},  // no X meter: no colour to read
      {nullptr, &two_channel_y, nullptr, kNullInput, kNull},
      {&X, &Y, &other_y, kOutOfRange, "LedMeter::Check--Error in LedMeter input type same"},
      {&X, &Y, &double_z, kUnsupportedElementType, "ChromaLxy::Combine" + kFloat},
      {&four_x, &two_channel_y, nullptr, kUnsupportedElementType, "ChromaLxy::Combine" + kFloat},
  };
  for (const Case& test : cases) {
    ChromaLxy lxy{cv::Mat::ones(1, 1, CV_32FC1), cv::Mat::ones(1, 1, CV_32FC1),
                  cv::Mat::ones(1, 1, CV_32FC1)};
    const ChromaLxy lxy_before = lxy;
    ChromaXYZ xyz = {lxy.L, lxy.x, lxy.y};
    LogCapture log;
    EXPECT_EQ(ChromaLxy::Combine(lxy, test.x, test.y, test.z), test.status) << test.lxy_line;
    EXPECT_EQ(ChromaXYZ::Combine(xyz, test.x, test.y, test.z), test.status) << test.lxy_line;
    std::string xyz_line = test.lxy_line;
    if (xyz_line.rfind("ChromaLxy", 0) == 0) xyz_line.replace(0, 9, "ChromaXYZ");
    EXPECT_EQ(log.Errors(), (Lines{test.lxy_line, xyz_line}));
    EXPECT_EQ(lxy.L.data, lxy_before.L.data);
    EXPECT_EQ(lxy.x.data, lxy_before.x.data);
    EXPECT_EQ(lxy.y.data, lxy_before.y.data);
    EXPECT_EQ(xyz.X.data, lxy_before.L.data);
    EXPECT_EQ(xyz.Z.data, lxy_before.y.data);
  }
}

// Random values with zeros, signed zeros, infinities and LEDs whose sum is
// zero, so that NaN and both infinities appear in the quotients.
void FillAwkward(cv::Mat& plane, cv::RNG& rng) {
  const float specials[] = {0.0f,
                            -0.0f,
                            1.0f,
                            -1.0f,
                            std::numeric_limits<float>::infinity(),
                            std::numeric_limits<float>::denorm_min()};
  for (int row = 0; row < plane.rows; ++row) {
    float* values = plane.ptr<float>(row);
    for (int col = 0; col < plane.cols; ++col) {
      const int pick = rng.uniform(0, 16);
      values[col] = pick < 6 ? specials[pick] : rng.uniform(-1.0f, 1000.0f);
    }
  }
}

// The fused kernel against the plain twin, bit for bit, on continuous planes
// and on views with gaps between rows and unaligned starts.
TEST(ChromaLxyCombine, MatchesThePlainFormBitForBit) {
  cv::RNG rng(20260521);
  for (int trial = 0; trial < 200; ++trial) {
    const int rows = rng.uniform(1, 40);
    const int cols = rng.uniform(1, 40);
    const bool view = trial % 2 == 1;
    const bool colour_four = trial % 3 == 0;
    LedMeter meters[3] = {MakeMeter(CIE_X, 4), MakeMeter(CIE_Y, 4), MakeMeter(CIE_Z, 4)};
    for (LedMeter& meter : meters) {
      if (view) {
        const cv::Mat parent(rows + 2, cols + 5, CV_32FC1);
        const int left = rng.uniform(0, 5);
        meter.chroma = parent(cv::Rect(left, 1, cols, rows));
      } else {
        meter.chroma.create(rows, cols, CV_32FC1);
      }
      FillAwkward(meter.chroma, rng);
    }
    // Sums of exactly zero, in either sign.
    meters[1].chroma.at<float>(0, 0) = -meters[0].chroma.at<float>(0, 0);
    meters[2].chroma.at<float>(0, 0) = 0.0f;
    ChromaLxy out;
    ASSERT_EQ(ChromaLxy::Combine(out, &meters[0], &meters[1], colour_four ? nullptr : &meters[2]),
              kOk);
    const cv::Mat Z = colour_four ? cv::Mat::zeros(rows, cols, CV_32FC1) : meters[2].chroma;
    cv::Mat x, y;
    PlainChromaticity(meters[0].chroma, meters[1].chroma, Z, x, y);
    ASSERT_TRUE(SameBits(out.x, x)) << rows << " x " << cols << " trial " << trial;
    ASSERT_TRUE(SameBits(out.y, y)) << rows << " x " << cols << " trial " << trial;
    ASSERT_EQ(out.L.data, meters[1].chroma.data);
  }
}

}  // namespace
}  // namespace aimhue
