#include "engine/gamut_corners.h"

#include <array>
#include <vector>

#include <opencv2/imgproc.hpp>

#include "meter/chroma_lxy.h"

namespace aimhue {
namespace {

// The mark that the seed component gets in the region image.
constexpr uint8_t kSeedMark = 1;

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
// exactly those of counting every crossing.
class WallCounter {
 public:
  WallCounter()
      : counts_(static_cast<size_t>(kRasterSize) * kRasterSize, 0),
        saturated_((static_cast<size_t>(kTiles) * kTiles + 63) / 64, 0),
        touched_(saturated_.size(), 0) {
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
  void Add(const Segment& segment) {
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
    int quotient = 0;
    int remainder = 0;
    const int divisor = std::max(n, 1);
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
    for (int first = 0; first <= n;) {
      const int major = majorStart + first;
      const int next = std::min(n + 1, first + kTileSize - (major & (kTileSize - 1)));
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
      const bool skip = static_cast<bool>(static_cast<int>(Saturated(firstTile)) &
                                          static_cast<int>(Saturated(middleTile)) &
                                          static_cast<int>(Saturated(lastTile)));
      if (!skip) {
        segment.ForEachCellOfSteps(first, next - 1, count);
        for (int tile = firstTile; tile <= lastTile; tile += minorTileStride) MarkTouched(tile);
      }
      first = next;
    }
  }

  // Marks the tiles counted in since the last refresh whose cells are all
  // walls (a tile that is never counted in cannot become saturated).
  void Refresh() {
    for (const int tile : touchedList_) {
      touched_[tile >> 6] &= ~(uint64_t{1} << (tile & 63));
      if (Saturated(tile)) continue;
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
      if (least == kWallCount) saturated_[tile >> 6] |= uint64_t{1} << (tile & 63);
    }
    touchedList_.clear();
  }

 private:
  static size_t Index(int row, int col) {
    return static_cast<size_t>(row) * kRasterSize + static_cast<size_t>(col);
  }

  bool Saturated(int tile) const { return (saturated_[tile >> 6] >> (tile & 63)) & 1u; }

  void MarkTouched(int tile) {
    uint64_t& word = touched_[tile >> 6];
    const uint64_t bit = uint64_t{1} << (tile & 63);
    if ((word & bit) != 0) return;
    word |= bit;
    touchedList_.push_back(tile);
  }

  std::vector<uint8_t> counts_;
  std::vector<uint64_t> saturated_;  // one bit per tile, row-major
  std::vector<uint64_t> touched_;    // tiles counted in since the last refresh
  std::vector<int> touchedList_;
};

// Makes every cell of a segment a wall.
void WallSegment(RasterPoint p0, RasterPoint p1, WallCounter& counter) {
  Segment::Between(p0, p1).ForEachCell(
      [&counter](int row, int col) { counter.MakeWall(row, col); });
}

int SeedCell() { return static_cast<int>(NearestEven(static_cast<double>(kRasterSize) * 0.33)); }

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
  // The mean outline first, red-green, red-blue, green-blue; an edge with an
  // end that is not a raster point is left out.
  RasterPoint meanPoints[kPrimaryCount];
  bool meanDrawable[kPrimaryCount];
  for (int primary = 0; primary < kPrimaryCount; ++primary) {
    meanPoints[primary] = RasterPoint{-1, -1};
    meanDrawable[primary] =
        ToRasterPoint(means[primary].x, means[primary].y, meanPoints[primary]);
  }
  constexpr int kEdges[3][2] = {{0, 1}, {0, 2}, {1, 2}};
  for (const auto& edge : kEdges) {
    if (meanDrawable[edge[0]] && meanDrawable[edge[1]]) {
      WallSegment(meanPoints[edge[0]], meanPoints[edge[1]], counter);
    }
  }

  // The LEDs' edges. The saturated tiles are looked for after kFirstRefresh
  // edges, then after twice as many, and so on, at least every
  // kMaxRefreshInterval edges.
  constexpr size_t kFirstRefresh = 1024;
  constexpr size_t kMaxRefreshInterval = 4096;
  size_t nextRefresh = kFirstRefresh;
  size_t edges = 0;
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
      counter.Add(Segment::Between(r, g));
      counter.Add(Segment::Between(r, b));
      counter.Add(Segment::Between(g, b));
      edges += 3;
      if (edges >= nextRefresh) {
        counter.Refresh();
        nextRefresh = edges + std::min(edges, kMaxRefreshInterval);
      }
    }
  }

  cv::Mat region(kRasterSize, kRasterSize, CV_8UC1);
  const uint8_t* counts = counter.counts();
  uint8_t* cells = region.ptr<uint8_t>();
  const size_t total = static_cast<size_t>(kRasterSize) * kRasterSize;
  for (size_t cell = 0; cell < total; ++cell) {
    cells[cell] = counts[cell] > kMaxOpenCrossings ? kRegionWall : kRegionOpen;
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
    cv::floodFill(region, cv::Point(seed, seed), cv::Scalar(kSeedMark), &box, cv::Scalar(),
                  cv::Scalar(), 4);
    ScanCorners(region, kSeedMark, box, found);
  }
  for (int primary = 0; primary < kPrimaryCount; ++primary) {
    corners[primary].x = found[2 * primary] / kRasterScale;
    corners[primary].y = found[2 * primary + 1] / kRasterScale;
  }
}

void GamutCorners(const Aimhue& /*handle*/, TargetBlock& corners, const cv::Mat& mask,
                  const ChromaLxy& red, const ChromaLxy& green, const ChromaLxy& blue,
                  const TargetBlock& means) {
  cv::Mat region = RegionImage(mask, red, green, blue, means);
  CornersFromRegion(region, corners);
}

}  // namespace aimhue
