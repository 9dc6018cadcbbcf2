#include <aimhue/status.h>
#include <gtest/gtest.h>

#include "engine/aimhue.h"
#include "support/chroma_sets.h"

namespace aimhue {
namespace {

using ::aimhue::testing::SetFromPlanes;

// A 1 x `total` panel on which the first `reaching` LEDs have a wide gamut
// that holds every target and the others collinear corners that hold none,
// so that the coverage of all three is exactly reaching / total.
struct Screen {
  Screen(int total, int reaching) {
    cv::Mat planes[6];
    const float wide[6] = {0.68f, 0.31f, 0.20f, 0.70f, 0.14f, 0.05f};
    const float line[6] = {0.125f, 0.125f, 0.25f, 0.25f, 0.5f, 0.5f};
    for (int i = 0; i < 6; ++i) {
      planes[i] = cv::Mat(1, total, CV_32F, cv::Scalar(line[i]));
      planes[i].colRange(0, reaching).setTo(wide[i]);
    }
    red = SetFromPlanes(planes[0], planes[1]);
    green = SetFromPlanes(planes[2], planes[3]);
    blue = SetFromPlanes(planes[4], planes[5]);
  }
  ChromaLxy red;
  ChromaLxy green;
  ChromaLxy blue;
};

class NGJudgement : public ::testing::Test {
 protected:
  NGJudgement() { engine_.target = {{{10, 0.64f, 0.32f}, {10, 0.25f, 0.62f}, {10, 0.16f, 0.08f}, {}}}; }
  Aimhue engine_;
};

TEST_F(NGJudgement, LimitIsCoverageMinusThresholdAndOnlyALowerCoverageFails) {
  ASSERT_EQ(engine_.SetNGThresh(0.25f), kOk);
  const Screen reference(4, 3);  // coverage 0.75
  ASSERT_EQ(engine_.CalcPercentNG(&reference.red, &reference.green, &reference.blue), kOk);
  EXPECT_EQ(engine_.ngLimit, 0.5f);

  const Screen worse(100, 49);
  const Screen equal(100, 50);
  EXPECT_TRUE(engine_.JudgeNG(&worse.red, &worse.green, &worse.blue));
  EXPECT_FALSE(engine_.JudgeNG(&equal.red, &equal.green, &equal.blue));
  EXPECT_FALSE(engine_.JudgeNG(&reference.red, &reference.green, &reference.blue));
  EXPECT_EQ(engine_.ngLimit, 0.5f);  // judging never moves the limit
}

TEST_F(NGJudgement, FreshRecordJudgesAgainstTheDefaultLimit) {
  const Screen below(10, 7);
  const Screen at(10, 8);
  EXPECT_TRUE(engine_.JudgeNG(&below.red, &below.green, &below.blue));
  // 8 / 10 in 64-bit, stored as 32-bit, is the default limit 0.8f exactly.
  EXPECT_FALSE(engine_.JudgeNG(&at.red, &at.green, &at.blue));
}

TEST_F(NGJudgement, AFailedCountKeepsTheLimitAndJudgesNG) {
  const Screen screen(4, 4);
  const Screen other(5, 5);
  const ChromaLxy empty;
  EXPECT_EQ(engine_.CalcPercentNG(nullptr, &screen.green, &screen.blue), kNullInput);
  EXPECT_EQ(engine_.CalcPercentNG(&screen.red, &empty, &screen.blue), kEmptyPlane);
  EXPECT_EQ(engine_.CalcPercentNG(&screen.red, &screen.green, &other.blue), kOutOfRange);
  EXPECT_EQ(engine_.ngLimit, 0.8f);

  // Every LED reaches the targets, yet a screen that cannot be counted fails.
  EXPECT_FALSE(engine_.JudgeNG(&screen.red, &screen.green, &screen.blue));
  EXPECT_TRUE(engine_.JudgeNG(nullptr, &screen.green, &screen.blue));
  EXPECT_TRUE(engine_.JudgeNG(&screen.red, &empty, &screen.blue));
  EXPECT_TRUE(engine_.JudgeNG(&screen.red, &screen.green, &other.blue));
}

}  // namespace
}  // namespace aimhue
