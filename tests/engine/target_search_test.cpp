#include <aimhue/status.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "engine/aimhue.h"
#include "engine/percent_of_target.h"
#include "engine/primary_means.h"
#include "engine/subsample.h"
#include "meter/chroma_lxy.h"
#include "support/log_capture.h"
#include "synthetic/synthetic_chroma.h"

namespace aimhue {
namespace {

bool SameBits(const TargetBlock& a, const TargetBlock& b) {
  return std::memcmp(a.data(), b.data(), sizeof(TargetBlock)) == 0;
}

synthetic::ScreenOptions SmallScreen(int rows, int cols) {
  synthetic::ScreenOptions options;
  options.rows = rows;
  options.cols = cols;
  options.moduleRows = 10;
  options.moduleCols = 16;
  options.deadCount = 0;
  options.seed = 42;
  return options;
}

class TargetSearch : public ::testing::Test {
 protected:
  void SetUp() override {
    const synthetic::ScreenOptions options = SmallScreen(60, 80);
    ASSERT_EQ(synthetic::CombineMeters(synthetic::GenerateMeters(options), sets), kOk);
    const TargetLxy sentinel{-3.0f, -3.0f, -3.0f};
    handle.target.fill(sentinel);
    handle.searchEnd.fill(sentinel);
    handle.searchStart.fill(sentinel);
  }
  bool Unchanged() const {
    for (const TargetBlock* block : {&handle.target, &handle.searchEnd, &handle.searchStart}) {
      for (const TargetLxy& point : *block) {
        if (point.L != -3.0f || point.x != -3.0f || point.y != -3.0f) return false;
      }
    }
    return true;
  }
  // The coverage of the search's targets over the LEDs that took part.
  Coverage CoverageOf(const TargetBlock& block) const {
    const TargetBlock means = {MeanLxy(sets[0]), MeanLxy(sets[1]), MeanLxy(sets[2]), TargetLxy{}};
    const cv::Mat mask = OutlierMask(handle, sets[0], sets[1], sets[2], means);
    Coverage coverage{};
    EXPECT_EQ(PercentOfTarget(&sets[0], &sets[1], &sets[2], &block[0].L, coverage, mask), kOk);
    return coverage;
  }
  synthetic::ScreenChroma sets;
  Aimhue handle;
};

TEST_F(TargetSearch, RefusesMissingEmptyAndMismatchedSetsLeavingTheRecord) {
  testing::LogCapture log;
  EXPECT_EQ(handle.Search(&sets[0], nullptr, &sets[2]), kNullInput);
  EXPECT_EQ(log.Infos(), std::vector<std::string>{"Aimhue::Search"});
  EXPECT_TRUE(log.Errors().empty());

  ChromaLxy empty;
  EXPECT_EQ(handle.Search(&sets[0], &empty, &empty), kEmptyPlane);
  EXPECT_EQ(handle.Search(&empty, &sets[1], &sets[2]), kEmptyPlane);

  ChromaLxy wide = sets[2];
  wide.L = cv::Mat(60, 81, CV_32FC1, cv::Scalar(1.0f));
  EXPECT_EQ(handle.Search(&sets[0], &sets[1], &wide), kOutOfRange);
  // Only an x or y plane of another size: refused too, so that nothing is
  // read outside it.
  ChromaLxy shortX = sets[1];
  shortX.x = sets[1].x.rowRange(0, 59);
  EXPECT_EQ(handle.Search(&sets[0], &shortX, &sets[2]), kOutOfRange);
  ChromaLxy doubles = sets[1];
  sets[1].y.convertTo(doubles.y, CV_64F);
  EXPECT_EQ(handle.Search(&sets[0], &doubles, &sets[2]), kOutOfRange);
  EXPECT_TRUE(Unchanged());
  EXPECT_TRUE(log.Errors().empty());
}

TEST_F(TargetSearch, StoresMeansAndTargetsAndZeroesTheRest) {
  // With percentEnd 1 the results are the corners themselves.
  ASSERT_EQ(handle.Search(&sets[0], &sets[1], &sets[2]), kOk);
  const TargetBlock corners = handle.searchEnd;
  handle.percentEnd = {0.9f, 0.9f, 0.9f, 0.9f};
  ASSERT_EQ(handle.Search(&sets[0], &sets[1], &sets[2]), kOk);
  EXPECT_TRUE(SameBits(handle.target, handle.searchEnd));
  for (int p = 0; p < 3; ++p) {
    const TargetLxy mean = MeanLxy(sets[p]);
    EXPECT_EQ(std::memcmp(&handle.searchStart[p], &mean, sizeof mean), 0) << p;
    EXPECT_EQ(handle.searchEnd[p].L, 0.0f);
  }
  for (const TargetBlock* block : {&handle.target, &handle.searchEnd, &handle.searchStart}) {
    EXPECT_EQ((*block)[3].L, 0.0f);
    EXPECT_EQ((*block)[3].x, 0.0f);
    EXPECT_EQ((*block)[3].y, 0.0f);
  }

  // Each target reaches the required share of the kept LEDs; asking for
  // fewer LEDs than the corners hold moves each target outwards, to a more
  // saturated point than its corner.
  const Coverage coverage = CoverageOf(handle.searchEnd);
  EXPECT_NEAR(coverage.red, 0.9f, handle.percentTol);
  EXPECT_NEAR(coverage.green, 0.9f, handle.percentTol);
  EXPECT_NEAR(coverage.blue, 0.9f, handle.percentTol);
  EXPECT_GT(handle.searchEnd[0].x, corners[0].x);
  EXPECT_LT(handle.searchEnd[1].x, corners[1].x);
  EXPECT_LT(handle.searchEnd[2].x, corners[2].x);

  // Run again: identical results.
  const TargetBlock first = handle.searchEnd;
  const TargetBlock start = handle.searchStart;
  ASSERT_EQ(handle.Search(&sets[0], &sets[1], &sets[2]), kOk);
  EXPECT_TRUE(SameBits(first, handle.searchEnd));
  EXPECT_TRUE(SameBits(start, handle.searchStart));
}

TEST_F(TargetSearch, CornersAreSharedByNearlyEveryKeptLed) {
  // percentEnd 1 keeps the corners: the region that all but a few LEDs'
  // gamuts hold.
  ASSERT_EQ(handle.Search(&sets[0], &sets[1], &sets[2]), kOk);
  const Coverage coverage = CoverageOf(handle.searchEnd);
  EXPECT_GT(coverage.red, 0.98f);
  EXPECT_GT(coverage.green, 0.98f);
  EXPECT_GT(coverage.blue, 0.98f);
  EXPECT_GT(coverage.all, 0.95f);
}

TEST(TargetSearchLarge, SubsampledScreenWorksOnEveryKthLed) {
  synthetic::ScreenOptions options = SmallScreen(250, 401);  // 100250 LEDs: step 2
  const synthetic::ScreenPlanes planes = synthetic::GeneratePlanes(options);
  const synthetic::ScreenChroma sets = synthetic::ChromaFromPlanes(planes);
  Aimhue handle;
  handle.percentEnd = {0.95f, 0.95f, 0.95f, 1.0f};
  ASSERT_EQ(handle.Search(&sets[0], &sets[1], &sets[2]), kOk);
  ChromaLxy red, green, blue;
  Subsample(sets[0], sets[1], sets[2], red, green, blue);
  ASSERT_EQ(red.L.rows, 50125);
  const TargetLxy mean = MeanLxy(green);
  EXPECT_EQ(std::memcmp(&handle.searchStart[1], &mean, sizeof mean), 0);
  const TargetBlock means = {MeanLxy(red), mean, MeanLxy(blue), TargetLxy{}};
  const cv::Mat mask = OutlierMask(handle, red, green, blue, means);
  Coverage coverage{};
  ASSERT_EQ(PercentOfTarget(&red, &green, &blue, &handle.searchEnd[0].L, coverage, mask), kOk);
  EXPECT_NEAR(coverage.red, 0.95f, handle.percentTol);
  EXPECT_NEAR(coverage.green, 0.95f, handle.percentTol);
  EXPECT_NEAR(coverage.blue, 0.95f, handle.percentTol);
}

TEST(TargetSearchDead, ADeadLedMakesTheMeansNanWithoutHarm) {
  synthetic::ScreenOptions options = SmallScreen(20, 30);
  options.deadCount = 1;
  const synthetic::ScreenPlanes planes = synthetic::GeneratePlanes(options);
  const synthetic::ScreenChroma sets = synthetic::ChromaFromPlanes(planes);
  Aimhue handle;
  ASSERT_EQ(handle.Search(&sets[0], &sets[1], &sets[2]), kOk);
  for (int p = 0; p < 3; ++p) {
    EXPECT_TRUE(std::isnan(handle.searchStart[p].x)) << p;
    EXPECT_TRUE(std::isnan(handle.searchStart[p].y)) << p;
  }
  // With a required share below the corners' coverage the line through the
  // NaN mean has no slope: the targets come out NaN.
  handle.percentEnd = {0.9f, 0.9f, 0.9f, 0.9f};
  ASSERT_EQ(handle.Search(&sets[0], &sets[1], &sets[2]), kOk);
  for (int p = 0; p < 3; ++p) EXPECT_TRUE(std::isnan(handle.target[p].y)) << p;
}

}  // namespace
}  // namespace aimhue
