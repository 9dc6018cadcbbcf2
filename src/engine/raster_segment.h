// The chromaticity raster of the corner stage and the digital segments drawn
// on it: which cells a segment between two raster points covers.
#ifndef AIMHUE_SRC_ENGINE_RASTER_SEGMENT_H_
#define AIMHUE_SRC_ENGINE_RASTER_SEGMENT_H_

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "common/numeric.h"

namespace aimhue {

// The raster is kRasterSize x kRasterSize cells; row = scaled y, column =
// scaled x, with the scale kRasterScale (as float on the way in and back).
constexpr int kRasterSize = 2000;
constexpr float kRasterScale = 2000.0f;

// An integer raster point: column (scaled x) and row (scaled y).
struct RasterPoint {
  int col;
  int row;
};

inline bool operator==(RasterPoint a, RasterPoint b) { return a.col == b.col && a.row == b.row; }

inline bool InRaster(RasterPoint p) {
  return p.col >= 0 && p.col < kRasterSize && p.row >= 0 && p.row < kRasterSize;
}

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

// The cells of the segment p0-p1, both ends included:
// - a point: that cell; a horizontal or vertical segment: every cell of it;
// - otherwise with k = (y1 - y0) / (x1 - x0) and b = y0 - x0 k in double:
//   for |k| <= 1 (shallow) the cells (nearest(x k + b), x) for every x from
//   the smaller to the larger end; for |k| > 1 (steep) the cells
//   (y, nearest((y - b) / k)) for every y; ties to even.
// Every cell lies in the bounding box of p0 and p1, so two raster points
// give raster cells only.
//
// The walk: from the end with the smaller major coordinate (the column for
// point, horizontal and shallow segments, the row otherwise), n steps along
// the major axis while the other coordinate moves a cells in all. Exactly,
// step u lies on the ideal line at minor offset u a / n; the formula's
// rounding errors stay below 1e-8 cells, while an offset that is not a tie
// lies at least 1 / (2 n) >= 1/4000 of a cell from one, so the cell of step
// u is at minor offset nearest(u a / n), and at an exact tie at its floor or
// ceiling. Either way it lies in [floor(u a / n), floor(u a / n) + 1].
class Segment {
 public:
  enum Kind { kPoint, kHorizontal, kVertical, kShallow, kSteep };

  static Segment Between(RasterPoint p0, RasterPoint p1) {
    Segment s;
    if (p0 == p1) {
      s.kind_ = kPoint;
    } else if (p0.row == p1.row) {
      s.kind_ = kHorizontal;
    } else if (p0.col == p1.col) {
      s.kind_ = kVertical;
    } else {
      s.k_ = static_cast<double>(p1.row - p0.row) / static_cast<double>(p1.col - p0.col);
      s.b_ = static_cast<double>(p0.row) - static_cast<double>(p0.col) * s.k_;
      s.kind_ = std::fabs(s.k_) <= 1.0 ? kShallow : kSteep;
    }
    // The walk starts at the end with the smaller major coordinate: the
    // column for point, horizontal and shallow segments, the row otherwise.
    const bool byColumn = s.kind_ == kPoint || s.kind_ == kHorizontal || s.kind_ == kShallow;
    const int major0 = byColumn ? p0.col : p0.row;
    const int major1 = byColumn ? p1.col : p1.row;
    const RasterPoint start = major0 <= major1 ? p0 : p1;
    const RasterPoint end = major0 <= major1 ? p1 : p0;
    s.byColumn_ = byColumn;
    s.startCol_ = start.col;
    s.startRow_ = start.row;
    s.majorLength_ = byColumn ? end.col - start.col : end.row - start.row;
    const int minorDelta = byColumn ? end.row - start.row : end.col - start.col;
    s.minorLength_ = std::abs(minorDelta);
    s.minorStep_ = minorDelta < 0 ? -1 : 1;
    return s;
  }

  Kind kind() const { return kind_; }
  // The walk: from (startCol, startRow), majorLength steps along columns
  // (byColumn) or rows, the other coordinate moving minorLength cells in
  // total in the direction minorStep (+1 or -1).
  bool byColumn() const { return byColumn_; }
  int startCol() const { return startCol_; }
  int startRow() const { return startRow_; }
  int majorLength() const { return majorLength_; }
  int minorLength() const { return minorLength_; }
  int minorStep() const { return minorStep_; }

  // The row of a shallow segment's cell in column x.
  int RowAt(int x) const { return RowOnLine(x, k_, b_); }
  // The column of a steep segment's cell in row y.
  int ColAt(int y) const { return ColOnLine(y, k_, b_); }

  // Calls visit(row, col) once for every cell of the segment, in increasing
  // column (point, horizontal, shallow) or row (vertical, steep) order, each
  // cell computed by the formula above.
  template <typename Visit>
  void ForEachCell(Visit&& visit) const {
    ForEachCellOfSteps(0, majorLength_, visit);
  }

  // The same for the cells of steps first ... last (0 <= first, last <=
  // majorLength) of the walk from the start.
  template <typename Visit>
  void ForEachCellOfSteps(int first, int last, Visit&& visit) const {
    // Local copies: the visitor may write through a byte pointer, which the
    // compiler must otherwise assume could change this segment.
    const double k = k_;
    const double b = b_;
    const int startCol = startCol_;
    const int startRow = startRow_;
    switch (kind_) {
      case kPoint:
      case kHorizontal:
        for (int col = startCol + first; col <= startCol + last; ++col) visit(startRow, col);
        return;
      case kVertical:
        for (int row = startRow + first; row <= startRow + last; ++row) visit(row, startCol);
        return;
      case kShallow:
        for (int col = startCol + first; col <= startCol + last; ++col) {
          visit(RowOnLine(col, k, b), col);
        }
        return;
      case kSteep:
        for (int row = startRow + first; row <= startRow + last; ++row) {
          visit(row, ColOnLine(row, k, b));
        }
        return;
    }
  }

 private:
  static int RowOnLine(int x, double k, double b) {
    return static_cast<int>(NearestEvenSmall(static_cast<double>(x) * k + b));
  }
  static int ColOnLine(int y, double k, double b) {
    return static_cast<int>(NearestEvenSmall((static_cast<double>(y) - b) / k));
  }

  Kind kind_ = kPoint;
  double k_ = 0.0;
  double b_ = 0.0;
  bool byColumn_ = true;
  int startCol_ = 0;
  int startRow_ = 0;
  int majorLength_ = 0;
  int minorLength_ = 0;
  int minorStep_ = 1;
};

}  // namespace aimhue

#endif  // AIMHUE_SRC_ENGINE_RASTER_SEGMENT_H_
