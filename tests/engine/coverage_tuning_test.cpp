#include <aimhue/status.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <utility>

#include "engine/aimhue.h"
#include "engine/percent_of_target.h"
#include "support/chroma_sets.h"

namespace aimhue {
namespace {

using ::aimhue::testing::Bits;
using ::aimhue::testing::SetFromPlanes;

// A 1 x 200 panel whose LEDs share their green and blue chromaticities and
// whose red corners spread along x, so that the red target's coverage
// falls LED by LED as the target moves out towards larger x; the green and
// blue targets stay inside every LED.
class CoverageTuning : public ::testing::Test {
 protected:
  static constexpr int kLeds = 200;

  CoverageTuning() {
    cv::Mat redX(1, kLeds, CV_32F);
    for (int i = 0; i < kLeds; ++i) redX.at<float>(i) = 0.64f + 0.0005f * static_cast<float>(i);
    red_ = SetFromPlanes(redX, cv::Mat(1, kLeds, CV_32F, cv::Scalar(0.33f)));
    green_ = SetFromPlanes(cv::Mat(1, kLeds, CV_32F, cv::Scalar(0.17f)),
                           cv::Mat(1, kLeds, CV_32F, cv::Scalar(0.72f)));
    blue_ = SetFromPlanes(cv::Mat(1, kLeds, CV_32F, cv::Scalar(0.135f)),
                          cv::Mat(1, kLeds, CV_32F, cv::Scalar(0.05f)));
    engine_.target = {{{10, 0.66f, 0.32f}, {10, 0.2f, 0.66f}, {10, 0.16f, 0.08f}, {}}};
    engine_.BuildTuneLines(engine_.target, lines_);
  }

  Coverage Measure(const cv::Mat& mask) const {
    Coverage coverage;
    EXPECT_EQ(PercentOfTarget(&red_, &green_, &blue_, TargetFloats(engine_.target), coverage, mask),
              kOk);
    return coverage;
  }

  ChromaLxy red_;
  ChromaLxy green_;
  ChromaLxy blue_;
  Aimhue engine_;
  cv::Mat lines_;
};

// True when the point lies on its tuning line y = a*k*x + b, evaluated as
// the tuning evaluates it.
::testing::AssertionResult OnLine(const TargetLxy& point, const cv::Mat& lines, int row, float k) {
  const float expected = lines.at<float>(row, 0) * k * point.x + lines.at<float>(row, 1);
  if (point.y == expected) return ::testing::AssertionSuccess();
  return ::testing::AssertionFailure() << "y " << point.y << " off its line (" << expected << ")";
}

TEST_F(CoverageTuning, ModeAllMovesEveryTargetOutwardUntilTheCoverageOfAllIsReached) {
  // 10 of the 200 LEDs masked out; the masked coverage starts above 0.6.
  cv::Mat mask(1, kLeds, CV_8U, cv::Scalar(255));
  mask.colRange(190, kLeds).setTo(0);
  const TargetBlock start = engine_.target;
  engine_.percentCalcChroma = {1.0f, 1.0f, 1.0f, 0.5f};
  ASSERT_EQ(engine_.TuneCoverage(mask, &red_, &green_, &blue_, lines_), kOk);

  const Coverage reached = Measure(mask);
  EXPECT_EQ(Bits({engine_.percentCalcChroma[0], engine_.percentCalcChroma[1],
                  engine_.percentCalcChroma[2], engine_.percentCalcChroma[3]}),
            Bits(reached));
  EXPECT_LE(std::fabs(reached.all - 0.5f), engine_.percentTol);
  // Every round moved green and blue out by one fine step together; red
  // went out too (it alone may also have stepped back).
  EXPECT_GT(engine_.target[0].x, start[0].x + 0.004f);
  EXPECT_GT(engine_.target[1].y, start[1].y + 0.004f);
  EXPECT_NEAR(start[2].x - engine_.target[2].x, engine_.target[1].y - start[1].y, 1e-5f);
  for (int primary = 0; primary < 3; ++primary) {
    EXPECT_TRUE(OnLine(engine_.target[primary], lines_, primary, engine_.lineSlopeK[primary]));
  }
}

TEST_F(CoverageTuning, ModeEachStepsBackAPrimaryThatReachesTooFewAndLeavesTheOthers) {
  const TargetBlock start = engine_.target;
  engine_.tuneMode = 1;
  engine_.percentCalcChroma = {0.9f, 1.0f, 1.0f, 0.25f};  // the fourth is not a goal here
  ASSERT_EQ(Measure(cv::Mat()).red, 0.605f);
  ASSERT_EQ(engine_.TuneCoverage(cv::Mat(), &red_, &green_, &blue_, lines_), kOk);

  const Coverage reached = Measure(cv::Mat());
  EXPECT_LE(std::fabs(reached.red - 0.9f), engine_.percentTol);
  EXPECT_EQ(engine_.percentCalcChroma[0], reached.red);
  EXPECT_EQ(engine_.percentCalcChroma[3], reached.all);
  EXPECT_LT(engine_.target[0].x, start[0].x - 0.009f);  // at least one coarse step back
  EXPECT_TRUE(OnLine(engine_.target[0], lines_, 0, engine_.lineSlopeK[0]));
  for (int primary = 1; primary < 4; ++primary) {
    EXPECT_EQ(engine_.target[primary].x, start[primary].x);
    EXPECT_EQ(engine_.target[primary].y, start[primary].y);
  }
}

TEST_F(CoverageTuning, WithoutRoundsOrConvergenceStoresTheUnmaskedCoverageAnd550) {
  // The caller's mask would count nothing (NaN); the final measurement
  // counts every LED.
  const cv::Mat nothing = cv::Mat::zeros(1, kLeds, CV_8U);
  const TargetBlock start = engine_.target;
  const Coverage everyLed = Measure(cv::Mat());
  for (auto [mode, rounds] : {std::pair<uint32_t, int32_t>{2, 100}, {7, 100}, {0, 0}, {1, -1}}) {
    engine_.tuneMode = mode;
    engine_.maxIter = rounds;
    engine_.percentCalcChroma = {0.5f, 0.5f, 0.5f, 0.5f};
    EXPECT_EQ(engine_.TuneCoverage(nothing, &red_, &green_, &blue_, lines_), kTuneNotConverged);
    EXPECT_EQ(Bits({engine_.percentCalcChroma[0], engine_.percentCalcChroma[1],
                    engine_.percentCalcChroma[2], engine_.percentCalcChroma[3]}),
              Bits(everyLed));
    EXPECT_EQ(engine_.target[0].x, start[0].x);
  }

  // Three rounds of a goal that needs more: three fine steps out, then the
  // coverage of every LED at that position.
  cv::Mat mask(1, kLeds, CV_8U, cv::Scalar(1));
  mask.colRange(0, 100).setTo(0);
  engine_.tuneMode = 0;
  engine_.maxIter = 3;
  engine_.percentCalcChroma = {0.5f, 0.5f, 0.5f, 0.1f};
  EXPECT_EQ(engine_.TuneCoverage(mask, &red_, &green_, &blue_, lines_), kTuneNotConverged);
  EXPECT_NEAR(engine_.target[0].x, start[0].x + 0.0015f, 1e-6f);
  EXPECT_EQ(engine_.percentCalcChroma[3], Measure(cv::Mat()).all);
}

TEST_F(CoverageTuning, BadInputsOrLineMatrixChangeNothing) {
  const Aimhue before = engine_;
  const ChromaLxy empty;
  const cv::Mat wrongMask(2, kLeds, CV_8U, cv::Scalar(1));
  EXPECT_EQ(engine_.TuneCoverage(cv::Mat(), nullptr, &green_, &blue_, lines_), kNullInput);
  EXPECT_EQ(engine_.TuneCoverage(cv::Mat(), &red_, &empty, &blue_, lines_), kEmptyPlane);
  EXPECT_EQ(engine_.TuneCoverage(wrongMask, &red_, &green_, &blue_, lines_), kOutOfRange);
  EXPECT_EQ(engine_.TuneCoverage(cv::Mat(), &red_, &green_, &blue_, lines_.t()), kOutOfRange);
  cv::Mat doubles;
  lines_.convertTo(doubles, CV_64F);
  EXPECT_EQ(engine_.TuneCoverage(cv::Mat(), &red_, &green_, &blue_, doubles), kOutOfRange);
  EXPECT_EQ(engine_.TuneCoverage(cv::Mat(), &red_, &green_, &blue_, cv::Mat()), kOutOfRange);
  EXPECT_EQ(std::memcmp(&before, &engine_, sizeof before), 0);
}

TEST(BuildTuneLines, RightIsoscelesTriangleGivesLinesThroughItsIncentre) {
  // Right angle at blue (0.25, 0.25), legs 0.5: the incentre is at
  // 0.25 + r on both axes with r = 0.5 - sqrt(2) / 4.
  Aimhue engine;
  const TargetBlock targets = {{{1, 0.75f, 0.25f}, {1, 0.25f, 0.75f}, {1, 0.25f, 0.25f}, {}}};
  cv::Mat lines;
  engine.BuildTuneLines(targets, lines);
  ASSERT_EQ(lines.type(), CV_32FC1);
  ASSERT_EQ(lines.size(), cv::Size(2, 3));
  const double root2 = std::sqrt(2.0);
  const double slopes[3] = {1.0 - root2, -(1.0 + root2), 1.0};
  for (int primary = 0; primary < 3; ++primary) {
    const double k = engine.lineSlopeK[primary];
    const double offset = targets[primary].y - slopes[primary] * k * targets[primary].x;
    EXPECT_NEAR(lines.at<float>(primary, 0), slopes[primary], 1e-6) << primary;
    EXPECT_NEAR(lines.at<float>(primary, 1), offset, 1e-6) << primary;
  }
  EXPECT_NEAR(lines.at<float>(2, 1), 0.125, 1e-7);  // 0.25 - 1 * 0.5 * 0.25
}

TEST(BuildTuneLines, CollinearTargetsStoreNonFiniteLines) {
  Aimhue engine;
  const TargetBlock targets = {{{1, 0.5f, 0.5f}, {1, 0.25f, 0.25f}, {1, 0.125f, 0.125f}, {}}};
  cv::Mat lines;
  engine.BuildTuneLines(targets, lines);
  ASSERT_EQ(lines.size(), cv::Size(2, 3));
  for (int primary = 0; primary < 3; ++primary) {
    EXPECT_FALSE(std::isfinite(lines.at<float>(primary, 0))) << primary;
    EXPECT_FALSE(std::isfinite(lines.at<float>(primary, 1))) << primary;
  }
}

}  // namespace
}  // namespace aimhue
