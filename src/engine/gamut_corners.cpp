#include "engine/gamut_corners.h"

#include <array>
#include <vector>

#include <opencv2/imgproc.hpp>

#include "meter/chroma_lxy.h"

namespace aimhue {
namespace {

// The count at which a cell is a wall; counters stop there.
constexpr uint8_t kWallCount = static_cast<uint8_t>(kMaxOpenCrossings + 1);
// The mark that the seed component gets in the region image.
constexpr uint8_t kSeedMark = 1;

// Adds one crossing to every cell of a segment, saturating at kWallCount.
void CountSegment(RasterPoint p0, RasterPoint p1, uint8_t* counts) {
  Segment::Between(p0, p1).ForEachCell([counts](int row, int col) {
    uint8_t& cell = counts[static_cast<size_t>(row) * kRasterSize + col];
    cell = static_cast<uint8_t>(cell + (cell < kWallCount));
  });
}

// Makes every cell of a segment a wall.
void WallSegment(RasterPoint p0, RasterPoint p1, uint8_t* counts) {
  Segment::Between(p0, p1).ForEachCell([counts](int row, int col) {
    counts[static_cast<size_t>(row) * kRasterSize + col] = kWallCount;
  });
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
  cv::Mat region(kRasterSize, kRasterSize, CV_8UC1, cv::Scalar(0));
  uint8_t* counts = region.ptr<uint8_t>();

  RasterPoint meanPoints[3];
  bool meanDrawable[3];
  for (int primary = 0; primary < 3; ++primary) {
    meanPoints[primary] = RasterPoint{-1, -1};
    meanDrawable[primary] =
        ToRasterPoint(means[primary].x, means[primary].y, meanPoints[primary]);
  }
  // Mean outline in the order red-green, red-blue, green-blue.
  constexpr int kEdges[3][2] = {{0, 1}, {0, 2}, {1, 2}};
  for (const auto& edge : kEdges) {
    if (meanDrawable[edge[0]] && meanDrawable[edge[1]]) {
      WallSegment(meanPoints[edge[0]], meanPoints[edge[1]], counts);
    }
  }

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
      CountSegment(r, g, counts);
      CountSegment(r, b, counts);
      CountSegment(g, b, counts);
    }
  }

  const size_t cells = static_cast<size_t>(kRasterSize) * kRasterSize;
  for (size_t cell = 0; cell < cells; ++cell) {
    counts[cell] = counts[cell] > kMaxOpenCrossings ? kRegionWall : kRegionOpen;
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
