#include "engine/gamut_corners.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <random>
#include <utility>
#include <vector>

#include "common/numeric.h"
#include "engine/primary_means.h"
#include "meter/chroma_lxy.h"
#include "support/chroma_sets.h"
#include "support/literal_search_stages.h"
#include "synthetic/synthetic_chroma.h"

namespace aimhue {
namespace {

using literal::Cells;

Cells SegmentCells(RasterPoint p0, RasterPoint p1) {
  Cells cells;
  Segment::Between(p0, p1).ForEachCell([&cells](int row, int col) { cells.emplace_back(row, col); });
  return cells;
}

ChromaLxy Uniform(int count, float x, float y) { return testing::UniformSet(1, count, x, y); }

cv::Mat KeepAll(int count) { return cv::Mat(1, count, CV_8UC1, cv::Scalar(255)); }

// Means of a tiny triangle near the top right, clear of everything drawn.
TargetBlock FarMeans() {
  return {TargetLxy{1, 0.95f, 0.95f}, TargetLxy{1, 0.94f, 0.96f}, TargetLxy{1, 0.94f, 0.95f},
          TargetLxy{}};
}

// Corners at raster cells (column, row) of red, green and blue.
void ExpectCornerCells(const TargetBlock& corners, const std::array<int, 6>& cells) {
  for (int p = 0; p < 3; ++p) {
    EXPECT_EQ(corners[p].x, static_cast<float>(cells[2 * p]) / 2000.0f) << p;
    EXPECT_EQ(corners[p].y, static_cast<float>(cells[2 * p + 1]) / 2000.0f) << p;
  }
}

TEST(DrawLine, CellsOfHandMadeSegments) {
  const Cells shallow = {{0, 0}, {0, 1}, {1, 2}, {1, 3}};
  EXPECT_EQ(SegmentCells({0, 0}, {3, 1}), shallow);
  EXPECT_EQ(SegmentCells({3, 1}, {0, 0}), shallow);
  EXPECT_EQ(SegmentCells({5, 5}, {5, 5}), (Cells{{5, 5}}));
  // |k| = 1 steps along x.
  EXPECT_EQ(SegmentCells({0, 3}, {3, 0}), (Cells{{3, 0}, {2, 1}, {1, 2}, {0, 3}}));
  // Ties go to the even row or column: 0.5 -> 0, 1.5 -> 2.
  EXPECT_EQ(SegmentCells({0, 0}, {2, 1}), (Cells{{0, 0}, {0, 1}, {1, 2}}));
  EXPECT_EQ(SegmentCells({0, 1}, {2, 2}), (Cells{{1, 0}, {2, 1}, {2, 2}}));
  EXPECT_EQ(SegmentCells({0, 0}, {1, 2}), (Cells{{0, 0}, {1, 0}, {2, 1}}));

  cv::Mat raster(kRasterSize, kRasterSize, CV_32SC1, cv::Scalar(0));
  EXPECT_TRUE(DrawLine({0, 0}, {3, 1}, raster));
  EXPECT_TRUE(DrawLine({3, 1}, {3, 1}, raster));
  EXPECT_EQ(cv::sum(raster)[0], 5.0);
  EXPECT_EQ(raster.at<int32_t>(1, 3), 2);
  EXPECT_EQ(raster.at<int32_t>(1, 2), 1);
  EXPECT_FALSE(DrawLine({0, 0}, {2000, 5}, raster));
  EXPECT_FALSE(DrawLine({-1, 0}, {20, 5}, raster));
  EXPECT_EQ(cv::sum(raster)[0], 5.0);
}

TEST(DrawLine, MatchesTheDoubleFormulaOnRandomSegments) {
  std::mt19937 random(11);
  for (int trial = 0; trial < 20000; ++trial) {
    // Short segments hit exact ties often; long ones span the raster.
    const int reach = trial % 2 ? kRasterSize : 24;
    std::uniform_int_distribution<int> coordinate(0, reach - 1);
    const int x0 = coordinate(random), y0 = coordinate(random);
    const int x1 = coordinate(random), y1 = coordinate(random);
    ASSERT_EQ(SegmentCells({x0, y0}, {x1, y1}), literal::LineCells(x0, y0, x1, y1))
        << x0 << "," << y0 << " " << x1 << "," << y1;
  }
}

// What the skipping of saturated stretches relies on: the cell of step u
// lies at minor offset floor(u a / n) or one more.
TEST(DrawLine, EveryCellIsAtTheFloorOfTheIdealOffsetOrOneAbove) {
  std::mt19937 random(17);
  std::uniform_int_distribution<int> coordinate(0, kRasterSize - 1);
  for (int trial = 0; trial < 3000; ++trial) {
    const Segment segment = Segment::Between({coordinate(random), coordinate(random)},
                                             {coordinate(random), coordinate(random)});
    const int n = segment.majorLength();
    const int a = segment.minorLength();
    int u = 0;
    segment.ForEachCell([&](int row, int col) {
      const int minor = segment.byColumn() ? row : col;
      const int major = segment.byColumn() ? col : row;
      const int start = segment.byColumn() ? segment.startCol() : segment.startRow();
      ASSERT_EQ(major, start + u);
      const int offset =
          (minor - (segment.byColumn() ? segment.startRow() : segment.startCol())) *
          segment.minorStep();
      const int floorOffset = n == 0 ? 0 : u * a / n;
      ASSERT_GE(offset, floorOffset);
      ASSERT_LE(offset, floorOffset + 1);
      ++u;
    });
    ASSERT_EQ(u, n + 1);
  }
}

TEST(RasterPoint, RoundsTheFloatProductToEvenAndRefusesWhatIsNotACell) {
  RasterPoint p{-7, -7};
  EXPECT_TRUE(ToRasterPoint(0.5f, 0.3f, p));
  EXPECT_EQ(p, (RasterPoint{1000, 600}));
  int ties = 0;
  for (int n = 0; n < 1999; ++n) {
    const float x = static_cast<float>((n + 0.5) / 2000.0);
    if (2000.0f * x != static_cast<float>(n) + 0.5f) continue;
    ++ties;
    ASSERT_TRUE(ToRasterPoint(x, x, p));
    EXPECT_EQ(p.col, n % 2 == 0 ? n : n + 1) << n;
  }
  EXPECT_GT(ties, 0);
  EXPECT_TRUE(ToRasterPoint(0.99974f, -0.0002f, p));
  EXPECT_EQ(p, (RasterPoint{1999, 0}));
  p = RasterPoint{-7, -7};
  const float nan = std::numeric_limits<float>::quiet_NaN();
  const float inf = std::numeric_limits<float>::infinity();
  for (const float bad : {0.99975f, 0.9999f, 1.0f, 7.0f, -0.001f, nan, inf, -inf, 3e38f}) {
    EXPECT_FALSE(ToRasterPoint(bad, 0.5f, p)) << bad;
    EXPECT_FALSE(ToRasterPoint(0.5f, bad, p)) << bad;
  }
  EXPECT_EQ(p, (RasterPoint{-7, -7}));
}

TEST(RasterPoint, FastRoundingAgreesWithNearestEven) {
  std::mt19937 random(3);
  std::uniform_real_distribution<double> value(-1e6, 1e6);
  for (int i = 0; i < 100000; ++i) {
    const double v = i % 4 == 0 ? std::floor(value(random)) + 0.5 : value(random);
    ASSERT_EQ(static_cast<int64_t>(NearestEvenSmall(v)), static_cast<int64_t>(NearestEven(v))) << v;
  }
}

// Identical LEDs with the triangle red (0.6, 0.3), green (0.3, 0.6), blue
// (0.3, 0.3), i.e. cells (col, row) (1200, 600), (600, 1200), (600, 600):
// a cell inside an edge gets one crossing per LED, a vertex two.
cv::Mat RegionOfIdenticalLeds(int count) {
  return RegionImage(KeepAll(count), Uniform(count, 0.6f, 0.3f), Uniform(count, 0.3f, 0.6f),
                     Uniform(count, 0.3f, 0.3f), FarMeans());
}

TEST(RegionImage, TenCrossingsStayOpenElevenMakeAWall) {
  const cv::Mat ten = RegionOfIdenticalLeds(10);
  const cv::Mat eleven = RegionOfIdenticalLeds(11);
  const cv::Mat five = RegionOfIdenticalLeds(5);
  const cv::Mat six = RegionOfIdenticalLeds(6);
  // On the red-blue edge (row 600) between the vertices.
  EXPECT_EQ(ten.at<uint8_t>(600, 800), kRegionOpen);
  EXPECT_EQ(eleven.at<uint8_t>(600, 800), kRegionWall);
  // The blue vertex: two edges per LED.
  EXPECT_EQ(five.at<uint8_t>(600, 600), kRegionOpen);
  EXPECT_EQ(six.at<uint8_t>(600, 600), kRegionWall);
  // The mean outline is a wall without any LED; its cells are the only walls.
  EXPECT_EQ(ten.at<uint8_t>(1900, 1880), kRegionWall);
  EXPECT_EQ(ten.at<uint8_t>(601, 800), kRegionOpen);
  EXPECT_EQ(eleven.at<uint8_t>(601, 800), kRegionOpen);
}

TEST(RegionImage, SkipsLedsAndMeanEdgesThatAreNotRasterPoints) {
  const float nan = std::numeric_limits<float>::quiet_NaN();
  ChromaLxy red = Uniform(12, 0.6f, 0.3f);
  const ChromaLxy green = Uniform(12, 0.3f, 0.6f);
  const ChromaLxy blue = Uniform(12, 0.3f, 0.3f);
  red.x.at<float>(0, 0) = nan;
  red.y.at<float>(0, 1) = 0.99975f;  // rounds to row 2000
  red.x.at<float>(0, 2) = std::numeric_limits<float>::infinity();
  const cv::Mat region = RegionImage(KeepAll(12), red, green, blue, FarMeans());
  EXPECT_EQ(cv::countNonZero(region != RegionOfIdenticalLeds(9)), 0);

  // A dead LED in the working set makes the means NaN: nothing of the mean
  // outline can be drawn, only the LEDs' walls remain.
  TargetBlock nanMeans = FarMeans();
  nanMeans[0].x = nan;
  const cv::Mat partial = RegionImage(KeepAll(1), Uniform(1, 0.5f, 0.5f), Uniform(1, 0.5f, 0.5f),
                                      Uniform(1, 0.5f, 0.5f), nanMeans);
  EXPECT_EQ(partial.at<uint8_t>(1900, 1880), kRegionWall);  // green-blue mean edge
  EXPECT_EQ(partial.at<uint8_t>(1900, 1890), kRegionOpen);  // red-blue would be here
  for (auto& mean : nanMeans) mean.y = nan;
  EXPECT_EQ(cv::countNonZero(RegionImage(KeepAll(1), Uniform(1, 0.5f, 0.5f),
                                         Uniform(1, 0.5f, 0.5f), Uniform(1, 0.5f, 0.5f),
                                         nanMeans)),
            kRasterSize * kRasterSize);
}

TEST(GamutCorners, OnlyTheMeanTriangleGivesTheCellsJustInside) {
  // Means at cells (1000, 600), (600, 1200), (600, 600); no LED is kept.
  const TargetBlock means = {TargetLxy{1, 0.5f, 0.3f}, TargetLxy{1, 0.3f, 0.6f},
                             TargetLxy{1, 0.3f, 0.3f}, TargetLxy{5, 5, 5}};
  const ChromaLxy set = Uniform(4, 0.3f, 0.3f);
  const cv::Mat none(1, 4, CV_8UC1, cv::Scalar(0));
  TargetBlock corners = {TargetLxy{7, 0, 0}, TargetLxy{8, 0, 0}, TargetLxy{9, 0, 0},
                         TargetLxy{10, 11, 12}};
  GamutCorners(Aimhue(), corners, none, set, set, set, means);
  // Red: column 998 (the hypotenuse is at 999 in rows 601 and 602), topmost
  // row 601; green: row 1197 holds only column 601; blue: row 601, column 601.
  ExpectCornerCells(corners, {998, 601, 601, 1197, 601, 601});
  // L slots and white untouched.
  EXPECT_EQ(corners[0].L, 7.0f);
  EXPECT_EQ(corners[3].L, 10.0f);
  EXPECT_EQ(corners[3].y, 12.0f);
}

TEST(GamutCorners, ADiagonalWallHoldsUnderFourConnectivity) {
  // Means at cells (1000, 600), (600, 1000), (600, 600): the red-green edge
  // is a diagonal line of cells, which open cells cross only corner to corner.
  const TargetBlock means = {TargetLxy{1, 0.5f, 0.3f}, TargetLxy{1, 0.3f, 0.5f},
                             TargetLxy{1, 0.3f, 0.3f}, TargetLxy{}};
  const ChromaLxy set = Uniform(1, 0.3f, 0.3f);
  TargetBlock corners = {};
  GamutCorners(Aimhue(), corners, cv::Mat(1, 1, CV_8UC1, cv::Scalar(0)), set, set, set, means);
  ExpectCornerCells(corners, {998, 601, 601, 998, 601, 601});
}

TEST(GamutCorners, SeedOnAWallScansEveryWallCell) {
  // A horizontal mean edge through (0.33, 0.33): red (1000, 660), green
  // (400, 660), blue (600, 200).
  const TargetBlock means = {TargetLxy{1, 0.5f, 0.33f}, TargetLxy{1, 0.2f, 0.33f},
                             TargetLxy{1, 0.3f, 0.1f}, TargetLxy{}};
  const ChromaLxy set = Uniform(1, 0.3f, 0.3f);
  TargetBlock corners = {};
  GamutCorners(Aimhue(), corners, cv::Mat(1, 1, CV_8UC1, cv::Scalar(0)), set, set, set, means);
  // Red: rightmost wall column 1000, only row 660. Green: no wall row below
  // 660, so it stays at the seed. Blue: top wall row 200, the blue mean.
  ExpectCornerCells(corners, {1000, 660, 660, 660, 600, 200});
}

TEST(GamutCorners, NoWallsAtAllGiveTheRasterCorners) {
  const float nan = std::numeric_limits<float>::quiet_NaN();
  const TargetBlock means = {TargetLxy{0, nan, nan}, TargetLxy{0, nan, nan},
                             TargetLxy{0, nan, nan}, TargetLxy{}};
  const ChromaLxy set = Uniform(3, nan, nan);
  TargetBlock corners = {};
  GamutCorners(Aimhue(), corners, KeepAll(3), set, set, set, means);
  ExpectCornerCells(corners, {1999, 0, 0, 1999, 0, 0});
}

// Random working sets: synthetic screens from tight to very wide spreads
// (pockets, leaks and many walls), random masks, and triangles thrown
// anywhere in the plane.
TEST(GamutCorners, MatchesTheLiteralStageBitForBit) {
  std::mt19937 random(5);
  for (int trial = 0; trial < 12; ++trial) {
    synthetic::ScreenOptions options;
    options.rows = 10 + trial * 3;
    options.cols = 20 + trial * 5;
    options.moduleRows = 8;
    options.moduleCols = 10;
    options.seed = 100 + trial;
    options.deadCount = 0;
    options.outlierCount = trial % 3;
    options.ledSpread = 0.0005f * static_cast<float>(1 + trial * trial);
    options.moduleSpread = 0.001f * static_cast<float>(trial % 4);
    const synthetic::ScreenPlanes planes = synthetic::GeneratePlanes(options);
    synthetic::ScreenChroma sets = synthetic::ChromaFromPlanes(planes);
    // The literal stage needs raster points everywhere.
    for (auto& set : sets) {
      for (cv::Mat* plane : {&set.x, &set.y}) {
        cv::max(*plane, 0.0, *plane);
        cv::min(*plane, 0.999, *plane);
      }
    }
    if (trial >= 9) {
      std::uniform_real_distribution<float> anywhere(0.0f, 0.999f);
      for (auto& set : sets) {
        for (cv::Mat* plane : {&set.x, &set.y}) {
          for (int i = 0; i < static_cast<int>(plane->total()); ++i) {
            if (random() % 4 == 0) plane->at<float>(i) = anywhere(random);
          }
        }
      }
    }
    TargetBlock means = {MeanLxy(sets[0]), MeanLxy(sets[1]), MeanLxy(sets[2]), TargetLxy{}};
    cv::Mat mask(options.rows, options.cols, CV_8UC1);
    cv::randu(mask, 0, trial % 2 ? 2 : 256);

    cv::Mat literalRegion;
    TargetBlock expected = {};
    literal::GamutCorners(expected, mask, sets[0], sets[1], sets[2], means, &literalRegion);
    const cv::Mat region = RegionImage(mask, sets[0], sets[1], sets[2], means);
    ASSERT_EQ(cv::countNonZero(region != literalRegion), 0) << trial;
    TargetBlock corners = {};
    GamutCorners(Aimhue(), corners, mask, sets[0], sets[1], sets[2], means);
    for (int p = 0; p < 3; ++p) {
      EXPECT_EQ(corners[p].x, expected[p].x) << trial << " primary " << p;
      EXPECT_EQ(corners[p].y, expected[p].y) << trial << " primary " << p;
    }
  }
}

// A full working set where most edges run through walls already: the
// skipped stretches must not change a single cell.
TEST(RegionImage, SkippingSaturatedStretchesChangesNoWall) {
  for (const float spread : {0.0005f, 0.003f}) {
    synthetic::ScreenOptions options;
    options.rows = 100;
    options.cols = 200;
    options.deadCount = 0;
    options.outlierCount = 0;
    options.ledSpread = spread;
    options.moduleSpread = spread;
    const synthetic::ScreenPlanes planes = synthetic::GeneratePlanes(options);
    const synthetic::ScreenChroma sets = synthetic::ChromaFromPlanes(planes);
    const TargetBlock means = {MeanLxy(sets[0]), MeanLxy(sets[1]), MeanLxy(sets[2]), TargetLxy{}};
    const cv::Mat mask(options.rows, options.cols, CV_8UC1, cv::Scalar(255));
    cv::Mat literalRegion;
    TargetBlock expected = {};
    literal::GamutCorners(expected, mask, sets[0], sets[1], sets[2], means, &literalRegion);
    const cv::Mat region = RegionImage(mask, sets[0], sets[1], sets[2], means);
    EXPECT_EQ(cv::countNonZero(region != literalRegion), 0) << spread;
  }
  // Identical LEDs: every cell of their outline saturates at once.
  const cv::Mat same = RegionOfIdenticalLeds(3000);
  EXPECT_EQ(same.at<uint8_t>(600, 800), kRegionWall);
  EXPECT_EQ(same.at<uint8_t>(601, 800), kRegionOpen);
  EXPECT_EQ(same.at<uint8_t>(599, 800), kRegionOpen);
}

}  // namespace
}  // namespace aimhue
