// Third stage of the target search: the corners of the chromaticity region
// that practically every kept LED's gamut holds. Every LED's gamut outline
// is drawn on a raster of the CIE 1931 (x, y) plane; cells crossed by more
// than ten outlines (and the outline of the mean triangle) are walls, and the
// open region around the neutral point (0.33, 0.33) is the shared region.
#ifndef AIMHUE_SRC_ENGINE_GAMUT_CORNERS_H_
#define AIMHUE_SRC_ENGINE_GAMUT_CORNERS_H_

#include <algorithm>
#include <cmath>
#include <cstdint>

#include <opencv2/core.hpp>

#include "common/numeric.h"
#include "engine/aimhue.h"

namespace aimhue {

struct ChromaLxy;

// The raster is kRasterSize x kRasterSize cells; row = scaled y, column =
// scaled x, with the scale kRasterScale (as float on the way in and back).
constexpr int kRasterSize = 2000;
constexpr float kRasterScale = 2000.0f;
// A cell crossed by more than this many LED edges is a wall.
constexpr int kMaxOpenCrossings = 10;
// Values of the region image.
constexpr uint8_t kRegionOpen = 255;
constexpr uint8_t kRegionWall = 0;

// An integer raster point: column (scaled x) and row (scaled y).
struct RasterPoint {
  int col;
  int row;
};

inline bool operator==(RasterPoint a, RasterPoint b) { return a.col == b.col && a.row == b.row; }

// The raster point of chromaticity (x, y): column nearest(2000.0f x x) and
// row nearest(2000.0f x y), each product in 32-bit float, ties to even.
// Returns false, leaving `point` unchanged, when that point is not a raster
// cell: a NaN or infinite coordinate, one below -0.00025 or one at or above
// 0.99975 (which rounds to 2000, one past the last cell, although it is below
// 1). Coordinates in [-0.00025, 0) round to cell 0 and are accepted.
inline bool ToRasterPoint(float x, float y, RasterPoint& point) {
  const float scaledX = kRasterScale * x;
  const float scaledY = kRasterScale * y;
  // The range test comes first (it also rejects NaN), so that the rounding
  // below only sees small values.
  constexpr float kLow = -1.0f;
  constexpr float kHigh = static_cast<float>(kRasterSize);
  if (!(scaledX > kLow && scaledX < kHigh && scaledY > kLow && scaledY < kHigh)) return false;
  const double col = NearestEvenSmall(static_cast<double>(scaledX));
  const double row = NearestEvenSmall(static_cast<double>(scaledY));
  if (col < 0.0 || col >= kRasterSize || row < 0.0 || row >= kRasterSize) return false;
  point = RasterPoint{static_cast<int>(col), static_cast<int>(row)};
  return true;
}

inline bool InRaster(RasterPoint p) {
  return p.col >= 0 && p.col < kRasterSize && p.row >= 0 && p.row < kRasterSize;
}

// The cells of the segment p0-p1, both ends included:
// - a point: that cell; a horizontal or vertical segment: every cell of it;
// - otherwise with k = (y1 - y0) / (x1 - x0) and b = y0 - x0 k in double:
//   for |k| <= 1 (shallow) the cells (nearest(x k + b), x) for every x from
//   the smaller to the larger end; for |k| > 1 (steep) the cells
//   (y, nearest((y - b) / k)) for every y; ties to even.
// Every cell lies in the bounding box of p0 and p1 (the rounding errors are
// far below half a cell at raster sizes), so two raster points give raster
// cells only. Both computed coordinates are monotonic along the segment.
struct Segment {
  enum Kind { kPoint, kHorizontal, kVertical, kShallow, kSteep };

  Kind kind;
  int minCol;
  int maxCol;
  int minRow;
  int maxRow;
  double k;
  double b;
  static Segment Between(RasterPoint p0, RasterPoint p1) {
    Segment s;
    s.minCol = std::min(p0.col, p1.col);
    s.maxCol = std::max(p0.col, p1.col);
    s.minRow = std::min(p0.row, p1.row);
    s.maxRow = std::max(p0.row, p1.row);
    s.k = 0.0;
    s.b = 0.0;
    if (p0 == p1) {
      s.kind = kPoint;
    } else if (p0.row == p1.row) {
      s.kind = kHorizontal;
    } else if (p0.col == p1.col) {
      s.kind = kVertical;
    } else {
      s.k = static_cast<double>(p1.row - p0.row) / static_cast<double>(p1.col - p0.col);
      s.b = static_cast<double>(p0.row) - static_cast<double>(p0.col) * s.k;
      s.kind = std::fabs(s.k) <= 1.0 ? kShallow : kSteep;
    }
    return s;
  }

  // The row of a shallow segment's cell in column x.
  int RowAt(int x) const { return static_cast<int>(NearestEvenSmall(static_cast<double>(x) * k + b)); }
  // The column of a steep segment's cell in row y.
  int ColAt(int y) const { return static_cast<int>(NearestEvenSmall((static_cast<double>(y) - b) / k)); }

  // Calls visit(row, col) once for every cell of the segment, in
  // increasing column (shallow) or row (steep, vertical) order.
  template <typename Visit>
  void ForEachCell(Visit&& visit) const {
    switch (kind) {
      case kPoint:
      case kHorizontal:
        for (int x = minCol; x <= maxCol; ++x) visit(minRow, x);
        return;
      case kVertical:
        for (int y = minRow; y <= maxRow; ++y) visit(y, minCol);
        return;
      case kShallow:
        for (int x = minCol; x <= maxCol; ++x) visit(RowAt(x), x);
        return;
      case kSteep:
        for (int y = minRow; y <= maxRow; ++y) visit(y, ColAt(y));
        return;
    }
  }
};

// Adds 1 to every cell of the segment p0-p1 (ForEachSegmentCell) of
// `raster`, a kRasterSize x kRasterSize matrix of 32-bit signed counters.
// A segment with an end outside the raster is not drawn at all: returns
// false then, true otherwise.
bool DrawLine(RasterPoint p0, RasterPoint p1, cv::Mat& raster);

// The region image (kRasterSize x kRasterSize, 8-bit): kRegionWall for the
// cells of the mean triangle's outline (red-green, red-blue, green-blue
// means) and for every cell crossed by more than kMaxOpenCrossings edges of
// the gamut triangles of the LEDs whose mask element is non-zero (an LED
// adds one crossing per edge through a cell, two where two of its edges
// meet); kRegionOpen elsewhere.
// An LED with any coordinate that is not a raster point (ToRasterPoint:
// NaN, infinite, outside [-0.00025, 0.99975)) is skipped whole; an edge of
// the mean triangle with such an end is not drawn (the other edges are), so
// NaN means (a dead LED in the working set) leave no mean outline.
// Walls are counted with a small saturating counter: a cell only needs to be
// known as more than ten crossings, and the mean outline is a wall whatever
// is added to it, which gives the same region as counting every crossing
// in 32 bits, with the mean outline weighted 1000 before the LEDs are added.
cv::Mat RegionImage(const cv::Mat& mask, const ChromaLxy& red, const ChromaLxy& green,
                    const ChromaLxy& blue, const TargetBlock& means);

// The corners of the region that holds the seed cell (row 660, column 660;
// 660 = nearest(2000 x 0.33)), found from a region image: starting at
// (660, 660) each, scanning rows from 0 and each row from column 0, a cell
// of the seed's region replaces the red corner when its column is greater,
// the green when its row is greater and the blue when its row is smaller,
// strictly. So red is the topmost cell of the rightmost column, green the
// leftmost of the bottom row, blue the leftmost of the top row; a corner
// that never moves stays at (0.33, 0.33). Writes x = column / 2000.0f and
// y = row / 2000.0f of the red, green and blue entries of `corners` and
// nothing else.
// The seed's region is its 4-connected component of open cells; when the
// seed is a wall cell, it is the set of all wall cells. (A 16-bit labelling
// with more than 65535 components would give unrelated components the
// seed's label; here only the seed's own component ever counts.) `region`
// is used as working space and is left with the seed component marked.
void CornersFromRegion(cv::Mat& region, TargetBlock& corners);

// The corner stage: RegionImage, then CornersFromRegion. Writes only the
// x and y of the red, green and blue entries of `corners`. The handle is not
// read. Precondition: the mask (8-bit) and all planes have the red L
// plane's shape.
void GamutCorners(const Aimhue& handle, TargetBlock& corners, const cv::Mat& mask,
                  const ChromaLxy& red, const ChromaLxy& green, const ChromaLxy& blue,
                  const TargetBlock& means);

}  // namespace aimhue

#endif  // AIMHUE_SRC_ENGINE_GAMUT_CORNERS_H_
