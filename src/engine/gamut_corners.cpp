#include "engine/gamut_corners.h"

#include <algorithm>
#include <array>
#include <limits>
#include <utility>
#include <vector>

#include <opencv2/imgproc.hpp>

#include "meter/chroma_lxy.h"

namespace aimhue {
namespace {

// The count at which a cell is a wall; counters stop there.
constexpr uint8_t kWallCount = static_cast<uint8_t>(kMaxOpenCrossings + 1);
// Side of the square tiles whose saturation is tracked.
constexpr int kTileShift = 3;
constexpr int kTileSize = 1 << kTileShift;
constexpr int kTiles = (kRasterSize + kTileSize - 1) / kTileSize;

// Crossing counts that stop at kWallCount, with a record of the tiles all
// of whose cells have stopped there. The stretch of an edge that runs
// through such tiles cannot change any wall and is not walked at all: on a
// real screen the LEDs' edges crowd into bands whose middles are walls
// after the first few thousand LEDs, so most of every later edge is
// skipped and only the stretches through the bands' fringes are counted. A
// tile is only marked once every cell in it is a wall, so the walls are
// exactly those of counting every crossing. Tiles that the seed's region
// can no longer reach are settled too (SeedReach): their counts then stop
// being exact, which nothing reads.
class WallCounter {
 public:
  WallCounter()
      : counts_(static_cast<size_t>(kRasterSize) * kRasterSize, 0),
        settled_((static_cast<size_t>(kTiles) * kTiles + 63) / 64, 0),
        touched_(settled_.size(), 0) {
    touchedList_.reserve(static_cast<size_t>(kTiles) * kTiles);
  }

  const uint8_t* counts() const { return counts_.data(); }

  void MakeWall(int row, int col) { counts_[Index(row, col)] = kWallCount; }

  // Adds one crossing to every cell of the segment, skipping its stretches
  // through saturated tiles. The walk goes a tile width at a time along the
  // major axis; over steps first ... next - 1 the cells' minor offsets lie in
  // [floor(first a / n), floor(next a / n) + 1] (see Segment; the floor is
  // kept with integers as the walk goes), and the stretch is skipped when
  // every tile in that band is saturated.
  void Add(const Segment& segment) { AddSteps(segment, 0, segment.majorLength()); }

  // The same for the cells of steps from ... to (0 <= from <= to <=
  // majorLength) of the segment's walk.
  void AddSteps(const Segment& segment, int from, int to) {
    uint8_t* counts = counts_.data();
    const auto count = [counts](int row, int col) {
      uint8_t& cell = counts[Index(row, col)];
      cell = static_cast<uint8_t>(cell + (cell < kWallCount));
    };
    const int n = segment.majorLength();
    const int a = segment.minorLength();
    const int step = segment.minorStep();
    const bool byColumn = segment.byColumn();
    const int majorStart = byColumn ? segment.startCol() : segment.startRow();
    const int minorStart = byColumn ? segment.startRow() : segment.startCol();
    const int minorTileStride = byColumn ? kTiles : 1;
    const int majorTileStride = byColumn ? 1 : kTiles;
    // floor(u a / n) and u a mod n at the stretch's first step u; a whole
    // tile width adds tileQuotient and tileRemainder.
    const int divisor = std::max(n, 1);
    int quotient = from * a / divisor;
    int remainder = from * a % divisor;
    const int tileQuotient = kTileSize * a / divisor;
    const int tileRemainder = kTileSize * a % divisor;
    const auto advance = [&](int steps) {
      if (steps == kTileSize) {
        quotient += tileQuotient;
        remainder += tileRemainder;
      } else {
        quotient += steps * a / divisor;
        remainder += steps * a % divisor;
      }
      if (remainder >= divisor) {
        remainder -= divisor;
        ++quotient;
      }
    };
    for (int first = from; first <= to;) {
      const int major = majorStart + first;
      const int next = std::min(to + 1, first + kTileSize - (major & (kTileSize - 1)));
      const int low = quotient;
      advance(next - first);
      const int high = quotient + 1;
      int lowMinor = step > 0 ? minorStart + low : minorStart - high;
      int highMinor = step > 0 ? minorStart + high : minorStart - low;
      lowMinor = std::max(lowMinor, 0);
      highMinor = std::min(highMinor, kRasterSize - 1);
      const int majorTile = major >> kTileShift;
      const int firstTile = (lowMinor >> kTileShift) * minorTileStride + majorTile * majorTileStride;
      const int lastTile = (highMinor >> kTileShift) * minorTileStride + majorTile * majorTileStride;
      // The band is at most kTileSize + 2 cells wide, so at most three tiles:
      // all three are tested without branching (the middle one may repeat
      // an end).
      const int middleTile = std::min(firstTile + minorTileStride, lastTile);
      const bool skip = static_cast<bool>(static_cast<int>(Settled(firstTile)) &
                                          static_cast<int>(Settled(middleTile)) &
                                          static_cast<int>(Settled(lastTile)));
      if (!skip) {
        segment.ForEachCellOfSteps(first, next - 1, count);
        for (int tile = firstTile; tile <= lastTile; tile += minorTileStride) MarkTouched(tile);
      }
      first = next;
    }
  }

  // Settles every tile whose bit in `kept` (one bit per tile, row-major)
  // is clear: counts in it no longer matter.
  void SettleAllBut(const std::vector<uint64_t>& kept) {
    for (size_t word = 0; word < settled_.size(); ++word) settled_[word] |= ~kept[word];
  }

  // Marks the tiles counted in since the last refresh whose cells are all
  // walls (a tile that is never counted in cannot become saturated).
  void Refresh() {
    for (const int tile : touchedList_) {
      touched_[tile >> 6] &= ~(uint64_t{1} << (tile & 63));
      if (Settled(tile)) continue;
      const int tileRow = tile / kTiles;
      const int tileCol = tile % kTiles;
      const int rowEnd = std::min((tileRow + 1) << kTileShift, kRasterSize);
      const int colEnd = std::min((tileCol + 1) << kTileShift, kRasterSize);
      uint8_t least = kWallCount;
      for (int row = tileRow << kTileShift; row < rowEnd; ++row) {
        const uint8_t* cells = counts_.data() + Index(row, 0);
        for (int col = tileCol << kTileShift; col < colEnd; ++col) {
          least = std::min(least, cells[col]);
        }
      }
      if (least == kWallCount) settled_[tile >> 6] |= uint64_t{1} << (tile & 63);
    }
    touchedList_.clear();
  }

 private:
  static size_t Index(int row, int col) {
    return static_cast<size_t>(row) * kRasterSize + static_cast<size_t>(col);
  }

  bool Settled(int tile) const { return (settled_[tile >> 6] >> (tile & 63)) & 1u; }

  void MarkTouched(int tile) {
    uint64_t& word = touched_[tile >> 6];
    const uint64_t bit = uint64_t{1} << (tile & 63);
    if ((word & bit) != 0) return;
    word |= bit;
    touchedList_.push_back(tile);
  }

  std::vector<uint8_t> counts_;
  std::vector<uint64_t> settled_;  // one bit per tile, row-major
  std::vector<uint64_t> touched_;  // tiles counted in since the last refresh
  std::vector<int> touchedList_;
};

// Makes every cell of a segment a wall.
void WallSegment(RasterPoint p0, RasterPoint p1, WallCounter& counter) {
  Segment::Between(p0, p1).ForEachCell(
      [&counter](int row, int col) { counter.MakeWall(row, col); });
}

int SeedCell() { return static_cast<int>(NearestEven(static_cast<double>(kRasterSize) * 0.33)); }

// The raster points of the red, green and blue means, and whether each is
// one.
struct MeanOutline {
  RasterPoint points[3];
  bool drawable[3];
};

// Makes walls of the mean outline, red-green, red-blue, green-blue; an edge
// with an end that is not a raster point is left out.
MeanOutline DrawMeanOutline(const TargetBlock& means, WallCounter& counter) {
  MeanOutline outline;
  for (int primary = 0; primary < kPrimaryCount; ++primary) {
    outline.points[primary] = RasterPoint{-1, -1};
    outline.drawable[primary] =
        ToRasterPoint(means[primary].x, means[primary].y, outline.points[primary]);
  }
  constexpr int kEdges[3][2] = {{0, 1}, {0, 2}, {1, 2}};
  for (const auto& edge : kEdges) {
    if (outline.drawable[edge[0]] && outline.drawable[edge[1]]) {
      WallSegment(outline.points[edge[0]], outline.points[edge[1]], counter);
    }
  }
  return outline;
}

// Calls visit(red, green, blue) with the raster points of every LED whose
// mask element is non-zero, in row-major order, skipping an LED with any
// coordinate that is not a raster point.
template <typename Visit>
void ForEachKeptLed(const cv::Mat& mask, const ChromaLxy& red, const ChromaLxy& green,
                    const ChromaLxy& blue, Visit&& visit) {
  for (int row = 0; row < mask.rows; ++row) {
    const uint8_t* keep = mask.ptr<uint8_t>(row);
    const float* rx = red.x.ptr<float>(row);
    const float* ry = red.y.ptr<float>(row);
    const float* gx = green.x.ptr<float>(row);
    const float* gy = green.y.ptr<float>(row);
    const float* bx = blue.x.ptr<float>(row);
    const float* by = blue.y.ptr<float>(row);
    for (int col = 0; col < mask.cols; ++col) {
      if (keep[col] == 0) continue;
      RasterPoint r;
      RasterPoint g;
      RasterPoint b;
      if (!ToRasterPoint(rx[col], ry[col], r) || !ToRasterPoint(gx[col], gy[col], g) ||
          !ToRasterPoint(bx[col], by[col], b)) {
        continue;
      }
      visit(r, g, b);
    }
  }
}

// When to look for saturated tiles: after kFirstRefresh edges, then after
// twice as many, and so on, at least every kMaxRefreshInterval edges.
class RefreshSchedule {
 public:
  void AfterLed(WallCounter& counter) {
    edges_ += 3;
    if (edges_ < next_) return;
    counter.Refresh();
    next_ = edges_ + std::min(edges_, kMaxRefreshInterval);
  }

 private:
  static constexpr size_t kFirstRefresh = 1024;
  static constexpr size_t kMaxRefreshInterval = 4096;
  size_t next_ = kFirstRefresh;
  size_t edges_ = 0;
};

// Where the seed's region can still lie while the LEDs are being counted.
// Walls only grow as edges are counted, so the seed's 4-connected component
// of open cells in the counts so far holds the final one (the seed's region
// when it ends open), whatever the edges still to come. Cells outside that
// component never become part of the seed's region, so their counts do not
// matter: the component's outer cells are walls already and stay walls, and
// the final region is found inside it alone. The reach keeps that component
// (from the last Narrow), settles the counter's tiles that hold none of its
// cells, and bounds it by half-planes so that an edge's steps that cannot
// touch it are not walked at all.
class SeedReach {
 public:
  // The half-plane directions: the four axes, the four diagonals, and both
  // normals of each drawn edge of the mean outline (the LEDs' edges crowd
  // along those edges, so their normals bound the region most tightly).
  explicit SeedReach(const RasterPoint* meanPoints, const bool* meanDrawable)
      : region_(kRasterSize, kRasterSize, CV_8UC1, cv::Scalar(kRegionWall)),
        box_(0, 0, kRasterSize, kRasterSize),
        spanLow_(kRasterSize, 0),
        spanHigh_(kRasterSize, -1) {
    constexpr int kMeanEdges[3][2] = {{0, 1}, {0, 2}, {1, 2}};
    for (const auto& edge : kMeanEdges) {
      if (!meanDrawable[edge[0]] || !meanDrawable[edge[1]]) continue;
      const RasterPoint p = meanPoints[edge[0]];
      const RasterPoint q = meanPoints[edge[1]];
      if (p == q) continue;
      planes_.push_back({q.row - p.row, p.col - q.col, 0});
      planes_.push_back({p.row - q.row, q.col - p.col, 0});
    }
    constexpr int kAxesAndDiagonals[8][2] = {{1, 0},  {-1, 0}, {0, 1},  {0, -1},
                                             {1, 1},  {1, -1}, {-1, 1}, {-1, -1}};
    for (const auto& factors : kAxesAndDiagonals) planes_.push_back({factors[0], factors[1], 0});
  }

  // Finds the seed's component in the current counts and narrows the reach
  // to it. Returns false when the seed cell is a wall (then the final region
  // is the set of all walls, which needs every count: the caller counts the
  // whole raster instead).
  bool Narrow(WallCounter& counter) {
    if (!FillBox(counter.counts())) return false;
    const int seed = SeedCell();
    cv::Rect box;
    cv::floodFill(region_, cv::Point(seed, seed), cv::Scalar(kRegionSeed), &box, cv::Scalar(),
                  cv::Scalar(), 4);
    box_ = box;
    // The component's column span in each of its rows; the tiles that the
    // spans meet keep being counted, all others are settled.
    std::vector<uint64_t> reached((static_cast<size_t>(kTiles) * kTiles + 63) / 64, 0);
    for (int row = box_.y; row < box_.y + box_.height; ++row) {
      const uint8_t* cells = region_.ptr<uint8_t>(row);
      int low = box_.x;
      int high = box_.x + box_.width - 1;
      while (low <= high && cells[low] != kRegionSeed) ++low;
      while (high >= low && cells[high] != kRegionSeed) --high;
      spanLow_[row] = low;
      spanHigh_[row] = high;
      if (low > high) continue;
      for (int tileCol = low >> kTileShift; tileCol <= high >> kTileShift; ++tileCol) {
        const int tile = (row >> kTileShift) * kTiles + tileCol;
        reached[tile >> 6] |= uint64_t{1} << (tile & 63);
      }
    }
    counter.SettleAllBut(reached);
    // Each half-plane's limit: the largest value of its linear form over the
    // component, taken at an end of a row's span.
    for (HalfPlane& plane : planes_) {
      int64_t limit = std::numeric_limits<int64_t>::min();
      for (int row = box_.y; row < box_.y + box_.height; ++row) {
        if (spanLow_[row] > spanHigh_[row]) continue;
        const int64_t rowPart = plane.rowFactor * int64_t{row};
        limit = std::max({limit, plane.colFactor * int64_t{spanLow_[row]} + rowPart,
                          plane.colFactor * int64_t{spanHigh_[row]} + rowPart});
      }
      plane.limit = limit;
    }
    return true;
  }

  // The steps [from, to] of the segment's walk outside which no cell can lie
  // in the reach; false when no step can. A step's cell lies at major offset
  // u and at minor offset within two cells of u a / n (Segment: it is within
  // one; the second is a margin), so for the form f = A col + B row it has
  // f >= A' (major0 + u) + B' (minor0 + s u a / n) - 2 |B'|, A' and B' being
  // A and B in major / minor order and s the minor step. The step is
  // dropped when that bound exceeds the limit; times n, in integers:
  // u (A' n + B' s a) > n (limit - A' major0 - B' minor0 + 2 |B'|).
  bool StepsWithin(const Segment& segment, int& from, int& to) const {
    const bool byColumn = segment.byColumn();
    const int64_t n = std::max(segment.majorLength(), 1);
    const int64_t a = segment.minorLength();
    const int64_t s = segment.minorStep();
    const int64_t major0 = byColumn ? segment.startCol() : segment.startRow();
    const int64_t minor0 = byColumn ? segment.startRow() : segment.startCol();
    int64_t low = 0;
    int64_t high = segment.majorLength();
    for (const HalfPlane& plane : planes_) {
      const int64_t majorFactor = byColumn ? plane.colFactor : plane.rowFactor;
      const int64_t minorFactor = byColumn ? plane.rowFactor : plane.colFactor;
      const int64_t slope = majorFactor * n + minorFactor * s * a;
      const int64_t room = n * (plane.limit - majorFactor * major0 - minorFactor * minor0 +
                                2 * std::abs(minorFactor));
      if (slope > 0) {
        high = std::min(high, FloorDivide(room, slope));
      } else if (slope < 0) {
        low = std::max(low, CeilDivide(room, slope));
      } else if (room < 0) {
        return false;
      }
      if (low > high) return false;
    }
    from = static_cast<int>(low);
    to = static_cast<int>(high);
    return true;
  }

  // The region image from the final counts: exact inside the reach (so the
  // seed's region and the walls around it are those of counting the whole
  // raster), other cells left as they are (walls or open, never marked).
  // Returns false, and nothing, when the seed cell is a wall.
  bool TakeRegion(const WallCounter& counter, cv::Mat& region) {
    if (!FillBox(counter.counts())) return false;
    region = region_;
    return true;
  }

 private:
  struct HalfPlane {
    int64_t colFactor;
    int64_t rowFactor;
    int64_t limit;  // of colFactor col + rowFactor row over the reach
  };

  static int64_t FloorDivide(int64_t numerator, int64_t denominator) {
    const int64_t quotient = numerator / denominator;
    return quotient - ((numerator % denominator != 0) && ((numerator < 0) != (denominator < 0)));
  }
  static int64_t CeilDivide(int64_t numerator, int64_t denominator) {
    return -FloorDivide(-numerator, denominator);
  }

  // Rewrites the cells of the last component's bounding box from the counts
  // (which clears its marks; earlier marks all lie inside it) and tells
  // whether the seed cell is open.
  bool FillBox(const uint8_t* counts) {
    for (int row = box_.y; row < box_.y + box_.height; ++row) {
      const uint8_t* rowCounts = counts + static_cast<size_t>(row) * kRasterSize;
      uint8_t* cells = region_.ptr<uint8_t>(row);
      for (int col = box_.x; col < box_.x + box_.width; ++col) {
        cells[col] = rowCounts[col] > kMaxOpenCrossings ? kRegionWall : kRegionOpen;
      }
    }
    const int seed = SeedCell();
    return region_.at<uint8_t>(seed, seed) == kRegionOpen;
  }

  cv::Mat region_;
  cv::Rect box_;  // holds every marked cell of region_
  std::vector<int> spanLow_;
  std::vector<int> spanHigh_;
  std::vector<HalfPlane> planes_;
};

// Moves the corners (in raster units) over the cells of `region` that equal
// `member`, inside `box`, in scan order with strict comparisons.
void ScanCorners(const cv::Mat& region, uint8_t member, const cv::Rect& box,
                 std::array<float, 6>& corners) {
  float& redX = corners[0];
  float& redY = corners[1];
  float& greenX = corners[2];
  float& greenY = corners[3];
  float& blueX = corners[4];
  float& blueY = corners[5];
  for (int i = box.y; i < box.y + box.height; ++i) {
    const uint8_t* cells = region.ptr<uint8_t>(i);
    const float row = static_cast<float>(i);
    for (int j = box.x; j < box.x + box.width; ++j) {
      if (cells[j] != member) continue;
      const float col = static_cast<float>(j);
      if (col > redX) {
        redX = col;
        redY = row;
      }
      if (row > greenY) {
        greenX = col;
        greenY = row;
      }
      if (row < blueY) {
        blueX = col;
        blueY = row;
      }
    }
  }
}

}  // namespace

bool DrawLine(RasterPoint p0, RasterPoint p1, cv::Mat& raster) {
  if (!InRaster(p0) || !InRaster(p1)) return false;
  Segment::Between(p0, p1).ForEachCell(
      [&raster](int row, int col) { ++raster.at<int32_t>(row, col); });
  return true;
}

cv::Mat RegionImage(const cv::Mat& mask, const ChromaLxy& red, const ChromaLxy& green,
                    const ChromaLxy& blue, const TargetBlock& means) {
  WallCounter counter;
  DrawMeanOutline(means, counter);
  RefreshSchedule refresh;
  ForEachKeptLed(mask, red, green, blue, [&](RasterPoint r, RasterPoint g, RasterPoint b) {
    counter.Add(Segment::Between(r, g));
    counter.Add(Segment::Between(r, b));
    counter.Add(Segment::Between(g, b));
    refresh.AfterLed(counter);
  });
  cv::Mat region(kRasterSize, kRasterSize, CV_8UC1);
  const uint8_t* counts = counter.counts();
  uint8_t* cells = region.ptr<uint8_t>();
  const size_t total = static_cast<size_t>(kRasterSize) * kRasterSize;
  for (size_t cell = 0; cell < total; ++cell) {
    cells[cell] = counts[cell] > kMaxOpenCrossings ? kRegionWall : kRegionOpen;
  }
  return region;
}

cv::Mat SeedRegionImage(const cv::Mat& mask, const ChromaLxy& red, const ChromaLxy& green,
                        const ChromaLxy& blue, const TargetBlock& means) {
  WallCounter counter;
  const MeanOutline outline = DrawMeanOutline(means, counter);
  SeedReach reach(outline.points, outline.drawable);
  if (!reach.Narrow(counter)) return RegionImage(mask, red, green, blue, means);
  // The reach is narrowed again after kFirstNarrowing LEDs, then each time
  // the LEDs counted have grown by kNarrowingGrowth times.
  constexpr size_t kFirstNarrowing = 1024;
  constexpr size_t kNarrowingGrowth = 4;
  size_t nextNarrowing = kFirstNarrowing;
  size_t leds = 0;
  bool seedOpen = true;
  RefreshSchedule refresh;
  const auto count = [&counter, &reach](RasterPoint p0, RasterPoint p1) {
    const Segment segment = Segment::Between(p0, p1);
    int from = 0;
    int to = 0;
    if (reach.StepsWithin(segment, from, to)) counter.AddSteps(segment, from, to);
  };
  ForEachKeptLed(mask, red, green, blue, [&](RasterPoint r, RasterPoint g, RasterPoint b) {
    if (!seedOpen) return;
    count(r, g);
    count(r, b);
    count(g, b);
    refresh.AfterLed(counter);
    if (++leds == nextNarrowing) {
      nextNarrowing *= kNarrowingGrowth;
      seedOpen = reach.Narrow(counter);
    }
  });
  cv::Mat region;
  if (!seedOpen || !reach.TakeRegion(counter, region)) {
    return RegionImage(mask, red, green, blue, means);
  }
  return region;
}

void CornersFromRegion(cv::Mat& region, TargetBlock& corners) {
  const int seed = SeedCell();
  const float start = static_cast<float>(seed);
  std::array<float, 6> found = {start, start, start, start, start, start};
  if (region.at<uint8_t>(seed, seed) == kRegionWall) {
    ScanCorners(region, kRegionWall, cv::Rect(0, 0, kRasterSize, kRasterSize), found);
  } else {
    // The seed's 4-connected component, marked in place; its bounding box
    // limits the scan (no cell outside it can belong to the component).
    cv::Rect box;
    cv::floodFill(region, cv::Point(seed, seed), cv::Scalar(kRegionSeed), &box, cv::Scalar(),
                  cv::Scalar(), 4);
    ScanCorners(region, kRegionSeed, box, found);
  }
  for (int primary = 0; primary < kPrimaryCount; ++primary) {
    corners[primary].x = found[2 * primary] / kRasterScale;
    corners[primary].y = found[2 * primary + 1] / kRasterScale;
  }
}

void GamutCorners(const Aimhue& /*handle*/, TargetBlock& corners, const cv::Mat& mask,
                  const ChromaLxy& red, const ChromaLxy& green, const ChromaLxy& blue,
                  const TargetBlock& means) {
  cv::Mat region = SeedRegionImage(mask, red, green, blue, means);
  CornersFromRegion(region, corners);
}

}  // namespace aimhue
