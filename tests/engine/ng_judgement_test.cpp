#include "engine/aimhue.h"
#include "support/chroma_sets.h"

namespace aimhue {
namespace {

// A 1 x `total` panel whose first `reaching` LEDs hold every target and the
// others none (collinear corners): the coverage of all three is reaching / total.
struct Screen {
  Screen(int total, int reaching) {
    cv::Mat planes[6];
    const float wide[6] = {0.68f, 0.31f, 0.20f, 0.70f, 0.14f, 0.05f};
    const float line[6] = {0.125f, 0.125f, 0.25f, 0.25f, 0.5f, 0.5f};
    for (int i = 0; i < 6; ++i) {
      planes[i] = cv::Mat(1, total, CV_32F, cv::Scalar(line[i]));
      planes[i].colRange(0, reaching).setTo(wide[i]);
    }
    red = testing::SetFromPlanes(planes[0], planes[1]);
    green = testing::SetFromPlanes(planes[2], planes[3]);
    blue = testing::SetFromPlanes(planes[4], planes[5]);
  }
  ChromaLxy red, green, blue;
};

TEST(NGJudgement, LimitIsCoverageMinusThresholdAndOnlyALowerCoverageFails) {
  Aimhue engine;
  engine.target = {{{10, 0.64f, 0.32f}, {10, 0.25f, 0.62f}, {10, 0.16f, 0.08f}, {}}};
  const Screen full(4, 4), other(5, 5), below(10, 7), at(10, 8);
  const ChromaLxy empty;
  // A fresh record judges against 0.8: 8 / 10 in 64-bit, stored as 32-bit, is 0.8f.
  EXPECT_TRUE(engine.JudgeNG(&below.red, &below.green, &below.blue));
  EXPECT_FALSE(engine.JudgeNG(&at.red, &at.green, &at.blue));
  // A failed count keeps the limit; a screen that cannot be counted fails.
  EXPECT_EQ(engine.CalcPercentNG(nullptr, &full.green, &full.blue), kNullInput);
  EXPECT_EQ(engine.CalcPercentNG(&full.red, &empty, &full.blue), kEmptyPlane);
  EXPECT_EQ(engine.CalcPercentNG(&full.red, &full.green, &other.blue), kOutOfRange);
  EXPECT_EQ(engine.ngLimit, 0.8f);
  EXPECT_FALSE(engine.JudgeNG(&full.red, &full.green, &full.blue));
  EXPECT_TRUE(engine.JudgeNG(nullptr, &full.green, &full.blue));
  EXPECT_TRUE(engine.JudgeNG(&full.red, &empty, &full.blue));
  EXPECT_TRUE(engine.JudgeNG(&full.red, &full.green, &other.blue));

  ASSERT_EQ(engine.SetNGThresh(0.25f), kOk);
  const Screen reference(4, 3), worse(100, 49), equal(100, 50);
  ASSERT_EQ(engine.CalcPercentNG(&reference.red, &reference.green, &reference.blue), kOk);
  EXPECT_EQ(engine.ngLimit, 0.5f);  // 0.75 - 0.25
  EXPECT_TRUE(engine.JudgeNG(&worse.red, &worse.green, &worse.blue));
  EXPECT_FALSE(engine.JudgeNG(&equal.red, &equal.green, &equal.blue));
  EXPECT_FALSE(engine.JudgeNG(&reference.red, &reference.green, &reference.blue));
  EXPECT_EQ(engine.ngLimit, 0.5f);  // judging never moves the limit
}

}  // namespace
}  // namespace aimhue
