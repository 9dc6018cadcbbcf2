#include "engine/aimhue.h"
#include "support/chroma_sets.h"

namespace aimhue {
namespace {

using ::aimhue::testing::SameBits;

// 200 LEDs sharing green and blue, their red x spread along 0.64 + 0.0005 i:
// the red target's coverage falls LED by LED as it moves to larger x; the
// green and blue targets stay inside every LED.
class CoverageTuning : public ::testing::Test {
 protected:
  static constexpr int kLeds = 200;
  CoverageTuning() {
    cv::Mat redX(1, kLeds, CV_32F);
    for (int i = 0; i < kLeds; ++i) redX.at<float>(i) = 0.64f + 0.0005f * static_cast<float>(i);
    red_ = testing::SetFromPlanes(redX, cv::Mat(1, kLeds, CV_32F, cv::Scalar(0.33f)));
    engine_.target = {{{10, 0.66f, 0.32f}, {10, 0.2f, 0.66f}, {10, 0.16f, 0.08f}, {}}};
    engine_.BuildTuneLines(engine_.target, lines_);
  }
  Coverage Measure(const cv::Mat& mask) const {
    Coverage coverage;
    EXPECT_EQ(PercentOfTarget(&red_, &green_, &blue_, TargetFloats(engine_.target), coverage, mask), kOk);
    return coverage;
  }
  int Tune(const cv::Mat& mask) { return engine_.TuneCoverage(mask, &red_, &green_, &blue_, lines_); }
  // Whether the target of `primary` lies on its line y = a*k*x + b, as evaluated by the tuning.
  bool OnLine(int primary) const {
    const TargetLxy& p = engine_.target[primary];
    return p.y ==
           lines_.at<float>(primary, 0) * engine_.lineSlopeK[primary] * p.x + lines_.at<float>(primary, 1);
  }
  ChromaLxy red_, green_ = testing::UniformSet(1, kLeds, 0.17f, 0.72f),
                  blue_ = testing::UniformSet(1, kLeds, 0.135f, 0.05f);
  Aimhue engine_;
  cv::Mat lines_;
};

TEST_F(CoverageTuning, ModeAllMovesEveryTargetOutUntilTheCoverageOfAllIsReached) {
  cv::Mat mask(1, kLeds, CV_8U, cv::Scalar(255));
  mask.colRange(190, kLeds).setTo(0);
  const TargetBlock start = engine_.target;
  engine_.percentCalcChroma = {1.0f, 1.0f, 1.0f, 0.5f};
  ASSERT_EQ(Tune(mask), kOk);
  const Coverage reached = Measure(mask);
  EXPECT_TRUE(SameBits(engine_.percentCalcChroma, reached));
  EXPECT_LE(std::fabs(reached.all - 0.5f), engine_.percentTol);
  // Green and blue moved out one fine step a round together; red went out too.
  EXPECT_GT(engine_.target[0].x, start[0].x + 0.004f);
  EXPECT_GT(engine_.target[1].y, start[1].y + 0.004f);
  EXPECT_NEAR(start[2].x - engine_.target[2].x, engine_.target[1].y - start[1].y, 1e-5f);
  for (int primary = 0; primary < 3; ++primary) EXPECT_TRUE(OnLine(primary)) << primary;
}

TEST_F(CoverageTuning, ModeEachStepsBackAPrimaryThatReachesTooFewAndLeavesTheOthers) {
  const TargetBlock start = engine_.target;
  engine_.tuneMode = 1;
  engine_.percentCalcChroma = {0.9f, 1.0f, 1.0f, 0.25f};  // the fourth is no goal here
  ASSERT_EQ(Measure(cv::Mat()).red, 0.605f);
  ASSERT_EQ(Tune(cv::Mat()), kOk);
  const Coverage reached = Measure(cv::Mat());
  EXPECT_LE(std::fabs(reached.red - 0.9f), engine_.percentTol);
  EXPECT_TRUE(SameBits(engine_.percentCalcChroma, reached));
  EXPECT_LT(engine_.target[0].x, start[0].x - 0.009f);  // at least one coarse step back
  EXPECT_TRUE(OnLine(0));
  for (int p = 1; p < 4; ++p) EXPECT_TRUE(SameBits(engine_.target[p], start[p])) << p;
}

TEST_F(CoverageTuning, WithoutRoundsOrConvergenceStoresTheUnmaskedCoverageAnd550) {
  const TargetBlock start = engine_.target;
  const Coverage everyLed = Measure(cv::Mat());
  for (const auto& [mode, rounds] : {std::pair<uint32_t, int32_t>{2, 100}, {7, 100}, {0, 0}, {1, -1}}) {
    engine_.tuneMode = mode;
    engine_.maxIter = rounds;
    engine_.percentCalcChroma = {0.5f, 0.5f, 0.5f, 0.5f};
    EXPECT_EQ(Tune(cv::Mat::zeros(1, kLeds, CV_8U)), kTuneNotConverged);  // the mask counts nothing
    EXPECT_TRUE(SameBits(engine_.percentCalcChroma, everyLed));
    EXPECT_EQ(engine_.target[0].x, start[0].x);
  }
  // Three rounds short of the goal: three fine steps out, then the coverage of every LED.
  cv::Mat mask(1, kLeds, CV_8U, cv::Scalar(1));
  mask.colRange(0, 100).setTo(0);
  engine_.tuneMode = 0;
  engine_.maxIter = 3;
  engine_.percentCalcChroma = {0.5f, 0.5f, 0.5f, 0.1f};
  EXPECT_EQ(Tune(mask), kTuneNotConverged);
  EXPECT_NEAR(engine_.target[0].x, start[0].x + 0.0015f, 1e-6f);
  EXPECT_EQ(engine_.percentCalcChroma[3], Measure(cv::Mat()).all);
}

TEST_F(CoverageTuning, BadInputsOrLineMatrixChangeNothing) {
  const Aimhue before = engine_;  // (the sets and mask: the shared coverage-input check)
  cv::Mat doubles;
  lines_.convertTo(doubles, CV_64F);
  EXPECT_EQ(engine_.TuneCoverage(cv::Mat(), nullptr, &green_, &blue_, lines_), kNullInput);
  for (const cv::Mat& lines : {cv::Mat(lines_.t()), doubles, cv::Mat()}) {
    EXPECT_EQ(engine_.TuneCoverage(cv::Mat(), &red_, &green_, &blue_, lines), kOutOfRange);
  }
  EXPECT_TRUE(SameBits(before, engine_));
}

TEST(BuildTuneLines, RunThroughTheIncentreOrAreNonFiniteForCollinearTargets) {
  // Right angle at blue (0.25, 0.25), legs 0.5: the incentre is at 0.25 + r
  // on both axes, r = 0.5 - sqrt(2) / 4.
  Aimhue engine;
  const TargetBlock targets = {{{1, 0.75f, 0.25f}, {1, 0.25f, 0.75f}, {1, 0.25f, 0.25f}, {}}};
  cv::Mat lines;
  engine.BuildTuneLines(targets, lines);
  ASSERT_EQ(lines.type(), CV_32FC1);
  ASSERT_EQ(lines.size(), cv::Size(2, 3));
  const double slopes[3] = {1.0 - std::sqrt(2.0), -(1.0 + std::sqrt(2.0)), 1.0};
  for (int p = 0; p < 3; ++p) {
    EXPECT_NEAR(lines.at<float>(p, 0), slopes[p], 1e-6) << p;
    EXPECT_NEAR(lines.at<float>(p, 1), targets[p].y - slopes[p] * engine.lineSlopeK[p] * targets[p].x, 1e-6)
        << p;
  }
  EXPECT_NEAR(lines.at<float>(2, 1), 0.125, 1e-7);  // 0.25 - 1 * 0.5 * 0.25
  engine.BuildTuneLines({{{1, 0.5f, 0.5f}, {1, 0.25f, 0.25f}, {1, 0.125f, 0.125f}, {}}}, lines);
  ASSERT_EQ(lines.size(), cv::Size(2, 3));
  for (int i = 0; i < 6; ++i) EXPECT_FALSE(std::isfinite(lines.at<float>(i))) << i;
}

}  // namespace
}  // namespace aimhue
