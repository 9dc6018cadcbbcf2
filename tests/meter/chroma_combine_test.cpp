#include <aimhue/led_meter.h>

#include <limits>

#include "meter/chroma_lxy.h"
#include "support/test_meters.h"

namespace aimhue::testing {
namespace {

TEST(ChromaCombine, XyzSharesThePlanesAndColourFourNeedsNoZ) {
  const LedMeter X4 = MakeMeter(CIE_X, 4), Y4 = MakeMeter(CIE_Y, 4), Z4 = MakeMeter(CIE_Z, 4);
  ChromaXYZ xyz;
  ASSERT_EQ(ChromaXYZ::Combine(xyz, &X4, &Y4, nullptr), kOk);
  EXPECT_TRUE(xyz.X.data == X4.chroma.data && xyz.Y.data == Y4.chroma.data);
  EXPECT_TRUE(SamePlaneBits(xyz.Z, cv::Mat(2, 3, CV_32FC1, cv::Scalar(0))));
  ASSERT_EQ(ChromaXYZ::Combine(xyz, &X4, &Y4, &Z4), kOk);
  EXPECT_EQ(xyz.Z.data, Z4.chroma.data);
  ChromaLxy lxy;
  EXPECT_TRUE(IsEmpty(lxy));
  ASSERT_EQ(ChromaLxy::Combine(lxy, &X4, &Y4, &Z4), kOk);
  EXPECT_FALSE(IsEmpty(lxy));
  lxy.y = cv::Mat(0, 3, CV_32FC1);  // a shape without elements
  EXPECT_TRUE(IsEmpty(lxy));
}

// Both forms give the status and line of the first failing check, and leave `out` alone.
TEST(ChromaCombine, FailuresLeaveTheOutputAlone) {
  const LedMeter X = MakeMeter(CIE_X, 1), Y = MakeMeter(CIE_Y, 1), Z = MakeMeter(CIE_Z, 1);
  const LedMeter other_y = MakeMeter(CIE_Y, 1), X4 = MakeMeter(CIE_X, 4), Y4 = MakeMeter(CIE_Y, 4);
  const LedMeter small_z4 = MakeMeter(CIE_Z, 4, 1, 3);
  LedMeter double_z = MakeMeter(CIE_Z, 1);
  double_z.chroma = cv::Mat::ones(2, 3, CV_64FC1);
  LedMeter two_channel_y = MakeMeter(CIE_Y, 4);
  two_channel_y.chroma = cv::Mat::ones(2, 3, CV_32FC2);
  const std::string kNull = "LedMeter::Check--Error in LedMeter input is nullptr";
  const std::string kFloat = "ChromaLxy::Combine--Error :: chroma is not a plane of 32-bit floats";
  const struct {
    const LedMeter *x, *y, *z;
    int status;
    std::string lxy_line;  // "ChromaXYZ" in place of "ChromaLxy" for the other form
  } cases[] = {
      {nullptr, nullptr, nullptr, kNullInput,
       "ChromaLxy::Combine-- meter_x meter_y  meter_z all Nullptr"},
      {&X, &Y, nullptr, kNullInput, kNull},  // colour 1 needs its Z meter
      {nullptr, &Y, &Z, kNullInput, kNull},  // no X meter: no colour to read
      {nullptr, &two_channel_y, nullptr, kNullInput, kNull},
      {&X, &Y, &other_y, kOutOfRange, "LedMeter::Check--Error in LedMeter input type same"},
      {&X4, &Y, nullptr, kOutOfRange, "LedMeter::Check--Error in LedMeter input color different"},
      {&X4, &Y4, &small_z4, kOutOfRange,
       "LedMeter::Check--Error in LedMeter input chroma size different"},
      {&X, &Y, &double_z, kUnsupportedElementType, kFloat},
      {&X4, &two_channel_y, nullptr, kUnsupportedElementType, kFloat},
  };
  for (const auto& test : cases) {
    const cv::Mat one = cv::Mat::ones(1, 1, CV_32FC1), two = one.clone(), three = one.clone();
    ChromaLxy lxy{one, two, three};
    ChromaXYZ xyz{one, two, three};
    LogCapture log;
    EXPECT_EQ(ChromaLxy::Combine(lxy, test.x, test.y, test.z), test.status) << test.lxy_line;
    EXPECT_EQ(ChromaXYZ::Combine(xyz, test.x, test.y, test.z), test.status) << test.lxy_line;
    std::string xyz_line = test.lxy_line;
    if (xyz_line.rfind("ChromaLxy", 0) == 0) xyz_line.replace(0, 9, "ChromaXYZ");
    EXPECT_EQ(log.Errors(), (Lines{test.lxy_line, xyz_line}));
    EXPECT_TRUE(lxy.L.data == one.data && lxy.x.data == two.data && lxy.y.data == three.data);
    EXPECT_TRUE(xyz.X.data == one.data && xyz.Y.data == two.data && xyz.Z.data == three.data);
  }
}

// The fused kernel against the plain twin (S = (X + Y) + Z, x = X / S, y = Y / S,
// whole-plane 32-bit steps), bit for bit, with zeros of both signs, infinities,
// denormals and zero sums, on continuous planes and on views with row gaps.
TEST(ChromaCombine, MatchesThePlainFormBitForBit) {
  using Limits = std::numeric_limits<float>;
  const float specials[] = {0.0f, -0.0f, 1.0f, -1.0f, Limits::infinity(), Limits::denorm_min()};
  cv::RNG rng(20260521);
  for (int trial = 0; trial < 200; ++trial) {
    const int rows = rng.uniform(1, 40), cols = rng.uniform(1, 40);
    const bool colour_four = trial % 3 == 0;
    const uint32_t colour = colour_four ? 4 : 2;  // colour 2 needs all three meters
    LedMeter meters[3] = {MakeMeter(CIE_X, colour), MakeMeter(CIE_Y, colour),
                          MakeMeter(CIE_Z, colour)};
    for (LedMeter& meter : meters) {
      meter.chroma = trial % 2 ? cv::Mat(rows + 2, cols + 5,
                                         CV_32FC1)(cv::Rect(rng.uniform(0, 5), 1, cols, rows))
                               : cv::Mat(rows, cols, CV_32FC1);
      for (int i = 0; i < rows * cols; ++i) {
        const int pick = rng.uniform(0, 16);
        meter.chroma.at<float>(i / cols, i % cols) =
            pick < 6 ? specials[pick] : rng.uniform(-1.0f, 1000.0f);
      }
    }
    meters[1].chroma.at<float>(0, 0) = -meters[0].chroma.at<float>(0, 0);
    meters[2].chroma.at<float>(0, 0) = 0.0f;
    ChromaLxy out;
    ASSERT_EQ(ChromaLxy::Combine(out, &meters[0], &meters[1], colour_four ? nullptr : &meters[2]),
              kOk);
    cv::Mat sum, x, y;
    cv::add(meters[0].chroma, meters[1].chroma, sum);
    cv::add(sum, colour_four ? cv::Mat(rows, cols, CV_32FC1, cv::Scalar(0)) : meters[2].chroma,
            sum);
    cv::divide(meters[0].chroma, sum, x);
    cv::divide(meters[1].chroma, sum, y);
    ASSERT_TRUE(SamePlaneBits(out.x, x) && SamePlaneBits(out.y, y)) << rows << " x " << cols << " " << trial;
    ASSERT_EQ(out.L.data, meters[1].chroma.data);  // L is the Y plane; x and y are new planes
    for (const LedMeter& meter : meters) {
      ASSERT_TRUE(out.x.data != meter.chroma.data && out.y.data != meter.chroma.data);
    }
    // Taking the planes over: written in place (continuous copies held by
    // the meters alone) or copied (views), the same bits.
    LedMeter taken[3];
    for (int i = 0; i < 3; ++i) {
      ASSERT_EQ(meters[i].CopyTo(taken[i]), kOk);
      if (trial % 2) taken[i].chroma = meters[i].chroma;  // shared with `meters`: copied
    }
    ChromaLxy took;
    ASSERT_EQ(ChromaLxy::CombineTaking(took, &taken[0], &taken[1], colour_four ? nullptr : &taken[2]),
              kOk);
    ASSERT_TRUE(SamePlaneBits(took.x, x) && SamePlaneBits(took.y, y) &&
                SamePlaneBits(took.L, meters[1].chroma)) << trial;
  }
}

}  // namespace
}  // namespace aimhue::testing
