#include "engine/gamut_corners.h"

#include "engine/primary_means.h"
#include "support/chroma_sets.h"
#include "support/literal_search_stages.h"

namespace aimhue {
namespace {

using namespace ::aimhue::testing;  // NOLINT: the engine's test helpers
using literal::Cells;

Cells SegmentCells(RasterPoint p0, RasterPoint p1) {
  Cells cells;
  Segment::Between(p0, p1).ForEachCell([&cells](int row, int col) { cells.emplace_back(row, col); });
  return cells;
}
ChromaLxy Leds(int count, float x, float y) { return UniformSet(1, count, x, y); }
cv::Mat KeepAll(int count) { return cv::Mat(1, count, CV_8UC1, cv::Scalar(255)); }
// Means of a tiny triangle near the top right, clear of everything drawn.
const TargetBlock kFarMeans = {
    TargetLxy{1, 0.95f, 0.95f}, TargetLxy{1, 0.94f, 0.96f}, TargetLxy{1, 0.94f, 0.95f}, {}};

TEST(DrawLine, CellsOfHandMadeSegmentsAndOfTheDoubleFormula) {
  const Cells shallow = {{0, 0}, {0, 1}, {1, 2}, {1, 3}};
  EXPECT_EQ(SegmentCells({0, 0}, {3, 1}), shallow);
  EXPECT_EQ(SegmentCells({3, 1}, {0, 0}), shallow);
  EXPECT_EQ(SegmentCells({5, 5}, {5, 5}), (Cells{{5, 5}}));
  EXPECT_EQ(SegmentCells({0, 3}, {3, 0}), (Cells{{3, 0}, {2, 1}, {1, 2}, {0, 3}}));  // |k| = 1
  // Ties go to the even row or column: 0.5 -> 0, 1.5 -> 2.
  EXPECT_EQ(SegmentCells({0, 0}, {2, 1}), (Cells{{0, 0}, {0, 1}, {1, 2}}));
  EXPECT_EQ(SegmentCells({0, 1}, {2, 2}), (Cells{{1, 0}, {2, 1}, {2, 2}}));
  EXPECT_EQ(SegmentCells({0, 0}, {1, 2}), (Cells{{0, 0}, {1, 0}, {2, 1}}));
  cv::Mat raster(kRasterSize, kRasterSize, CV_32SC1, cv::Scalar(0));
  EXPECT_TRUE(DrawLine({0, 0}, {3, 1}, raster) && DrawLine({3, 1}, {3, 1}, raster));
  EXPECT_FALSE(DrawLine({0, 0}, {2000, 5}, raster) || DrawLine({-1, 0}, {20, 5}, raster));
  EXPECT_EQ(cv::sum(raster)[0], 5.0);
  EXPECT_EQ(raster.at<int32_t>(1, 3), 2);
  EXPECT_EQ(raster.at<int32_t>(1, 2), 1);
  ForRandomInputs(11, 10000, [](std::mt19937& random, int trial) {
    const int reach = trial % 2 ? kRasterSize - 1 : 23;  // short segments hit exact ties often
    const int x0 = Pick(random, 0, reach), y0 = Pick(random, 0, reach);
    const int x1 = Pick(random, 0, reach), y1 = Pick(random, 0, reach);
    ASSERT_EQ(SegmentCells({x0, y0}, {x1, y1}), literal::LineCells(x0, y0, x1, y1));
  });
}

TEST(RasterPoint, RoundsTheFloatProductToEvenAndRefusesWhatIsNotACell) {
  RasterPoint p{-7, -7};
  for (int n = 0; n < 1999; ++n) {  // exact ties of 2000 x
    const float x = static_cast<float>((n + 0.5) / 2000.0);
    if (2000.0f * x != static_cast<float>(n) + 0.5f) continue;
    ASSERT_TRUE(ToRasterPoint(x, x, p));
    EXPECT_EQ(p.col, n % 2 == 0 ? n : n + 1) << n;
  }
  EXPECT_TRUE(ToRasterPoint(0.99974f, -0.0002f, p));
  EXPECT_EQ(p, (RasterPoint{1999, 0}));
  EXPECT_TRUE(ToRasterPoint(0.5f, 0.3f, p));
  EXPECT_EQ(p, (RasterPoint{1000, 600}));
  const float inf = std::numeric_limits<float>::infinity();
  for (const float bad : {0.99975f, 0.9999f, 1.0f, 7.0f, -0.001f, kNaN, inf, -inf, 3e38f}) {
    EXPECT_FALSE(ToRasterPoint(bad, 0.5f, p) || ToRasterPoint(0.5f, bad, p)) << bad;
  }
  EXPECT_EQ(p, (RasterPoint{1000, 600}));
  ForRandomInputs(3, 20000, [](std::mt19937& random, int trial) {
    const double v = std::uniform_real_distribution<double>(-1e6, 1e6)(random);
    const double w = trial % 4 == 0 ? std::floor(v) + 0.5 : v;
    ASSERT_EQ(static_cast<int64_t>(NearestEvenSmall(w)), static_cast<int64_t>(NearestEven(w))) << w;
  });
}

// Identical LEDs of red (0.6, 0.3), green (0.3, 0.6), blue (0.3, 0.3): cells
// (col, row) (1200, 600), (600, 1200), (600, 600). An edge cell gets one
// crossing per LED, a vertex two.
cv::Mat RegionOfIdenticalLeds(int count) {
  return RegionImage(KeepAll(count), Leds(count, 0.6f, 0.3f), Leds(count, 0.3f, 0.6f),
                     Leds(count, 0.3f, 0.3f), kFarMeans);
}

TEST(RegionImage, TenCrossingsStayOpenElevenMakeAWall) {
  // (LEDs, row, column, cell): on the red-blue edge, at the blue vertex, on
  // the mean outline (a wall without any LED), beside the edge; 3000 LEDs
  // saturate their whole outline at once.
  const int open = kRegionOpen, wall = kRegionWall;
  const std::array<int, 4> cases[] = {{10, 600, 800, open},  {11, 600, 800, wall},   {5, 600, 600, open},
                                      {6, 600, 600, wall},   {10, 1900, 1880, wall}, {10, 601, 800, open},
                                      {11, 601, 800, open},  {3000, 600, 800, wall}, {3000, 601, 800, open},
                                      {3000, 599, 800, open}};
  for (const auto& [leds, row, col, cell] : cases) {
    EXPECT_EQ(RegionOfIdenticalLeds(leds).at<uint8_t>(row, col), cell) << leds << " " << row << " " << col;
  }
}

TEST(RegionImage, SkipsLedsAndMeanEdgesThatAreNotRasterPoints) {
  ChromaLxy red = Leds(12, 0.6f, 0.3f);
  red.x.at<float>(0, 0) = kNaN;
  red.y.at<float>(0, 1) = 0.99975f;  // rounds to row 2000
  red.x.at<float>(0, 2) = std::numeric_limits<float>::infinity();
  const cv::Mat region = RegionImage(KeepAll(12), red, Leds(12, 0.3f, 0.6f), Leds(12, 0.3f, 0.3f), kFarMeans);
  EXPECT_EQ(cv::countNonZero(region != RegionOfIdenticalLeds(9)), 0);
  TargetBlock means = kFarMeans;  // a NaN mean (a dead LED) drops its two mean edges
  means[0].x = kNaN;
  const ChromaLxy one = Leds(1, 0.5f, 0.5f);
  const cv::Mat partial = RegionImage(KeepAll(1), one, one, one, means);
  EXPECT_EQ(partial.at<uint8_t>(1900, 1880), kRegionWall);  // green-blue mean edge
  EXPECT_EQ(partial.at<uint8_t>(1900, 1890), kRegionOpen);  // red-blue would be here
  for (auto& mean : means) mean.y = kNaN;
  EXPECT_EQ(cv::countNonZero(RegionImage(KeepAll(1), one, one, one, means)), kRasterSize * kRasterSize);
}

TEST(GamutCorners, HandDerivedCornersOfMeanOutlines) {
  const std::pair<std::array<float, 6>, std::array<int, 6>> cases[] = {
      // means (x, y), corners (col, row)
      // Cells (1000, 600), (600, 1200), (600, 600): red at column 998 (the
      // hypotenuse is at 999 in rows 601 and 602); row 1197 holds only 601.
      {{0.5f, 0.3f, 0.3f, 0.6f, 0.3f, 0.3f}, {998, 601, 601, 1197, 601, 601}},
      // A diagonal wall, crossed only corner to corner, holds under 4-connectivity.
      {{0.5f, 0.3f, 0.3f, 0.5f, 0.3f, 0.3f}, {998, 601, 601, 998, 601, 601}},
      // The seed on a horizontal wall (row 660): the scan takes every wall
      // cell; green has no wall row below 660 and stays at the seed.
      {{0.5f, 0.33f, 0.2f, 0.33f, 0.3f, 0.1f}, {1000, 660, 660, 660, 600, 200}},
      {{kNaN, kNaN, kNaN, kNaN, kNaN, kNaN}, {1999, 0, 0, 1999, 0, 0}}};  // no walls: the raster's corners
  const ChromaLxy dead = Leds(1, kNaN, kNaN);                             // kept, but draws nothing
  for (const auto& [m, cells] : cases) {
    const TargetBlock means = {
        TargetLxy{1, m[0], m[1]}, TargetLxy{1, m[2], m[3]}, TargetLxy{1, m[4], m[5]}, {5, 5, 5}};
    TargetBlock corners = {TargetLxy{7, 0, 0}, TargetLxy{8, 0, 0}, TargetLxy{9, 0, 0}, TargetLxy{10, 11, 12}};
    GamutCorners(Aimhue(), corners, KeepAll(1), dead, dead, dead, means);
    for (int p = 0; p < 3; ++p) {  // L slots and white untouched
      EXPECT_TRUE(
          SameBits(corners[p], TargetLxy{7.0f + p, cells[2 * p] / 2000.0f, cells[2 * p + 1] / 2000.0f}))
          << cells[0] << " primary " << p << ": " << corners[p].x << ", " << corners[p].y;
    }
    EXPECT_TRUE(SameBits(corners[3], TargetLxy{10, 11, 12}));
  }
}

TEST(GamutCorners, MatchesTheLiteralStageBitForBit) {
  // Screens from tight to very wide spreads (pockets, leaks, many walls),
  // random or 0/1 masks, some LEDs anywhere; the last two are whole screens
  // whose edges mostly run through walls, where skipping saturated stretches
  // must not change a cell.
  ForRandomInputs(5, 12, [](std::mt19937& random, int trial) {
    const bool whole = trial >= 10;
    synthetic::ScreenOptions options =
        SmallScreen(whole ? 100 : 10 + 3 * trial, whole ? 200 : 20 + 5 * trial, 100 + trial);
    options.outlierCount = whole ? 0 : trial % 3;
    options.ledSpread = whole ? 0.0005f + 0.0025f * (trial - 10) : 0.0005f * (1 + trial * trial);
    options.moduleSpread = whole ? options.ledSpread : 0.001f * (trial % 4);
    synthetic::ScreenChroma sets = SyntheticSets(options);
    for (auto& set : sets) {
      for (cv::Mat* plane : {&set.x, &set.y}) {
        cv::min(cv::max(*plane, 0.0), 0.999, *plane);  // the literal stage needs raster points
        for (int i = 0; trial >= 7 && !whole && i < static_cast<int>(plane->total()); ++i) {
          if (Pick(random, 0, 3) == 0) plane->at<float>(i) = Uniform(random, 0, 0.999f);
        }
      }
    }
    const TargetBlock means = {MeanLxy(sets[0]), MeanLxy(sets[1]), MeanLxy(sets[2]), TargetLxy{}};
    cv::Mat mask(options.rows, options.cols, CV_8UC1, cv::Scalar(255)), literalRegion;
    if (!whole) cv::randu(mask, 0, trial % 2 ? 2 : 256);
    TargetBlock expected = {}, corners = {};
    literal::GamutCorners(expected, mask, sets[0], sets[1], sets[2], means, &literalRegion);
    ASSERT_EQ(cv::countNonZero(RegionImage(mask, sets[0], sets[1], sets[2], means) != literalRegion), 0);
    GamutCorners(Aimhue(), corners, mask, sets[0], sets[1], sets[2], means);
    EXPECT_TRUE(SameBits(corners, expected));
  });
}

// Random and contrived screens on which counting only inside the seed's
// reach must find the very region (and corners) of counting the whole
// raster: LED triangles scattered from a fraction of a cell to wide around a
// random triangle, some LEDs off the raster or NaN, up to 20000 LEDs (so
// the reach narrows up to four times); means that are the LEDs' own, hold the
// seed or not, are collinear, coincident, NaN or put the seed on the mean
// outline; and screens whose edges make the seed a wall before or after the
// reach first narrows after LEDs (the whole-raster fallback).
TEST(SeedRegionImage, FindsTheWholeRastersSeedRegionOnAdversarialScreens) {
  int seedWalls = 0;
  ForRandomInputs(23, 64, [&](std::mt19937& random, int trial) {
    const int sizes[][2] = {{1, 1}, {1, 2}, {2, 3}, {20, 30}, {40, 60}, {60, 90}, {100, 200}};
    const auto [rows, cols] = sizes[trial % 32 == 31 ? 6 : Pick(random, 0, 5)];
    const int shape = Pick(random, 0, 3);
    // The triangle the LEDs scatter around: typical primaries, anywhere,
    // small and away from the seed, or with an edge through the seed.
    Chromaticity centre[3] = {{0.68f, 0.31f}, {0.2f, 0.7f}, {0.14f, 0.05f}};
    for (Chromaticity& p : centre) {
      if (shape == 0) p = {p.x + Uniform(random, -0.05f, 0.05f), p.y + Uniform(random, -0.05f, 0.05f)};
      if (shape == 1) p = {Uniform(random, 0, 1), Uniform(random, 0, 1)};
      if (shape == 2) p = {Uniform(random, 0.5f, 0.6f), Uniform(random, 0.05f, 0.15f)};
    }
    if (shape == 3) centre[0] = {0.33f, 0.05f}, centre[1] = {0.33f, 0.6f};
    const float spread = shape == 3 ? 0.0001f : 0.0003f * std::pow(200.0f, Uniform(random, 0, 1));
    const float wild = Pick(random, 0, 2) == 0 ? 0.02f : 0.0f;
    std::normal_distribution<float> noise(0.0f, spread);
    ChromaLxy sets[3];
    for (int p = 0; p < 3; ++p) {
      sets[p] = UniformSet(rows, cols, centre[p].x, centre[p].y);
      for (cv::Mat* plane : {&sets[p].x, &sets[p].y}) {
        for (float& value : cv::Mat_<float>(*plane)) {
          value += noise(random);
          if (Uniform(random, 0, 1) < wild) {
            const float odd[] = {Uniform(random, -0.3f, 1.3f), kNaN, std::numeric_limits<float>::infinity()};
            value = odd[Pick(random, 0, 2)];
          }
        }
      }
    }
    cv::Mat mask(rows, cols, CV_8UC1, cv::Scalar(255));
    if (Pick(random, 0, 3) == 0) cv::randu(mask, 0, 2);
    TargetBlock means = {MeanLxy(sets[0]), MeanLxy(sets[1]), MeanLxy(sets[2]), TargetLxy{}};
    const Chromaticity point{Uniform(random, 0, 1), Uniform(random, 0, 1)};
    switch (Pick(random, 0, 7)) {
      case 0:  // the centre triangle
        for (int p = 0; p < 3; ++p) means[p] = {1, centre[p].x, centre[p].y};
        break;
      case 1:  // anywhere (mostly without the seed)
        for (int p = 0; p < 3; ++p) means[p] = {1, Uniform(random, 0, 1), Uniform(random, 0, 1)};
        break;
      case 2:  // collinear, through the seed or not
        for (int p = 0; p < 3; ++p) {
          const float t = Uniform(random, -1, 1);
          means[p] = {1, point.x + t * (0.33f - point.x), point.y + t * (0.33f - point.y)};
          if (trial % 2) means[p].y += 0.1f;
        }
        break;
      case 3:  // all three, or two, at one point
        means[0] = means[1] = {1, point.x, point.y};
        if (trial % 2) means[2] = means[0];
        break;
      case 4:  // the seed on the mean outline
        means[0] = {1, 0.33f, 0.33f};
        break;
      case 5:  // off the raster
        means[Pick(random, 0, 2)].x = trial % 2 ? kNaN : 1.5f;
        break;
      default:  // the LEDs' own means
        break;
    }
    cv::Mat whole = RegionImage(mask, sets[0], sets[1], sets[2], means);
    cv::Mat reached = SeedRegionImage(mask, sets[0], sets[1], sets[2], means);
    TargetBlock expected = {}, corners = {};
    CornersFromRegion(whole, expected);
    CornersFromRegion(reached, corners);
    ASSERT_TRUE(SameBits(corners, expected)) << corners[0].x << " " << expected[0].x;
    ASSERT_EQ(cv::countNonZero((whole == kRegionSeed) != (reached == kRegionSeed)), 0);
    const int seed = 660;
    seedWalls += whole.at<uint8_t>(seed, seed) == kRegionWall;
  });
  EXPECT_GT(seedWalls, 10);
}

}  // namespace
}  // namespace aimhue
