#include "engine/gamut_corners.h"

#include <array>
#include <vector>

#include <opencv2/imgproc.hpp>

#include "meter/chroma_lxy.h"

namespace aimhue {
namespace {

// The mark that the seed component gets in the region image.
constexpr uint8_t kSeedMark = 1;

// Difference planes of the four run directions over a box of the raster
// with a margin of one cell on every side (a run's end marker may lie just
// past the box).
class RunCounts {
 public:
  RunCounts(int firstRow, int lastRow, int firstCol, int lastCol)
      : top_(firstRow - 1),
        left_(firstCol - 1),
        rows_(lastRow - firstRow + 3),
        cols_(lastCol - firstCol + 3),
        planes_(4 * static_cast<size_t>(rows_) * cols_, 0) {}

  void Add(RunDirection direction, int row, int col, int length) {
    int32_t* plane = Plane(direction);
    const int endRow = direction == RunDirection::kRight ? row : row + length;
    const int endCol = direction == RunDirection::kDown    ? col
                       : direction == RunDirection::kDownLeft ? col - length
                                                             : col + length;
    ++plane[Index(row, col)];
    --plane[Index(endRow, endCol)];
  }

  // Sums the planes back into crossing counts and marks every cell with more
  // than kMaxOpenCrossings as a wall in `region`.
  void MarkWalls(cv::Mat& region) const {
    std::vector<int32_t> down(cols_, 0);
    std::vector<int32_t> downRight(cols_ + 1, 0);  // shifted by one: [c] is column c - 1
    std::vector<int32_t> downLeft(cols_ + 1, 0);   // [c] is column c
    std::vector<int32_t> nextRight(cols_ + 1, 0);
    std::vector<int32_t> nextLeft(cols_ + 1, 0);
    for (int r = 0; r < rows_; ++r) {
      const size_t rowStart = static_cast<size_t>(r) * cols_;
      const int32_t* right = Plane(RunDirection::kRight) + rowStart;
      const int32_t* downPlane = Plane(RunDirection::kDown) + rowStart;
      const int32_t* downRightPlane = Plane(RunDirection::kDownRight) + rowStart;
      const int32_t* downLeftPlane = Plane(RunDirection::kDownLeft) + rowStart;
      const int row = top_ + r;
      uint8_t* cells = row >= 0 && row < kRasterSize ? region.ptr<uint8_t>(row) : nullptr;
      int32_t along = 0;
      for (int c = 0; c < cols_; ++c) {
        along += right[c];
        down[c] += downPlane[c];
        // From the cell up-left (c - 1) and up-right (c + 1) in the row above.
        nextRight[c + 1] = downRightPlane[c] + downRight[c];
        nextLeft[c] = downLeftPlane[c] + downLeft[c + 1];
        const int32_t crossings = along + down[c] + nextRight[c + 1] + nextLeft[c];
        const int col = left_ + c;
        if (cells != nullptr && crossings > kMaxOpenCrossings && col >= 0 && col < kRasterSize) {
          cells[col] = kRegionWall;
        }
      }
      downRight.swap(nextRight);
      downLeft.swap(nextLeft);
    }
  }

 private:
  int32_t* Plane(RunDirection direction) {
    return planes_.data() + static_cast<size_t>(direction) * rows_ * cols_;
  }
  const int32_t* Plane(RunDirection direction) const {
    return planes_.data() + static_cast<size_t>(direction) * rows_ * cols_;
  }
  size_t Index(int row, int col) const {
    return static_cast<size_t>(row - top_) * cols_ + static_cast<size_t>(col - left_);
  }

  int top_;
  int left_;
  int rows_;
  int cols_;
  std::vector<int32_t> planes_;
};

// Makes every cell of a segment a wall.
void WallSegment(RasterPoint p0, RasterPoint p1, cv::Mat& region) {
  Segment::Between(p0, p1).ForEachCell(
      [&region](int row, int col) { region.at<uint8_t>(row, col) = kRegionWall; });
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
  // The raster points of every drawable kept LED, and their bounding box.
  std::vector<std::array<RasterPoint, 3>> triangles;
  triangles.reserve(static_cast<size_t>(cv::countNonZero(mask)));
  int firstRow = kRasterSize;
  int lastRow = -1;
  int firstCol = kRasterSize;
  int lastCol = -1;
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
      std::array<RasterPoint, 3> triangle;
      if (!ToRasterPoint(rx[col], ry[col], triangle[0]) ||
          !ToRasterPoint(gx[col], gy[col], triangle[1]) ||
          !ToRasterPoint(bx[col], by[col], triangle[2])) {
        continue;
      }
      for (const RasterPoint& p : triangle) {
        firstRow = std::min(firstRow, p.row);
        lastRow = std::max(lastRow, p.row);
        firstCol = std::min(firstCol, p.col);
        lastCol = std::max(lastCol, p.col);
      }
      triangles.push_back(triangle);
    }
  }

  cv::Mat region(kRasterSize, kRasterSize, CV_8UC1, cv::Scalar(kRegionOpen));
  if (!triangles.empty()) {
    RunCounts counts(firstRow, lastRow, firstCol, lastCol);
    const auto add = [&counts](RunDirection direction, int row, int col, int length) {
      counts.Add(direction, row, col, length);
    };
    for (const auto& triangle : triangles) {
      // Edges red-green, red-blue, green-blue.
      Segment::Between(triangle[0], triangle[1]).ForEachRun(add);
      Segment::Between(triangle[0], triangle[2]).ForEachRun(add);
      Segment::Between(triangle[1], triangle[2]).ForEachRun(add);
    }
    counts.MarkWalls(region);
  }

  // The mean outline, red-green, red-blue, green-blue; an edge with an end
  // that is not a raster point is left out.
  RasterPoint meanPoints[3];
  bool meanDrawable[3];
  for (int primary = 0; primary < 3; ++primary) {
    meanPoints[primary] = RasterPoint{-1, -1};
    meanDrawable[primary] =
        ToRasterPoint(means[primary].x, means[primary].y, meanPoints[primary]);
  }
  constexpr int kEdges[3][2] = {{0, 1}, {0, 2}, {1, 2}};
  for (const auto& edge : kEdges) {
    if (meanDrawable[edge[0]] && meanDrawable[edge[1]]) {
      WallSegment(meanPoints[edge[0]], meanPoints[edge[1]], region);
    }
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
  for (int primary = 0; primary < 3; ++primary) {
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
