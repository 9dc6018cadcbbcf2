// The plain, literal forms of the optimised target-search stages, computed
// step by step as the rules state them. The unit tests compare the stages with
// them bit for bit and the benchmarks time them as the baseline, so this
// header needs no test framework.
#ifndef AIMHUE_TESTS_SUPPORT_LITERAL_SEARCH_STAGES_H_
#define AIMHUE_TESTS_SUPPORT_LITERAL_SEARCH_STAGES_H_

#include <algorithm>
#include <array>
#include <cmath>
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#include <utility>
#include <vector>

#include "common/numeric.h"
#include "engine/aimhue.h"
#include "engine/percent_of_target.h"
#include "meter/chroma_lxy.h"

namespace aimhue::literal {

using Cells = std::vector<std::pair<int, int>>;  // (row, col)

// The cells of the segment (x0, y0)-(x1, y1) by the double formula rounded by
// NearestEven, in increasing x (or y when steep); a vertical one cell by cell.
inline Cells LineCells(int x0, int y0, int x1, int y1) {
  Cells cells;
  if (x0 == x1) {
    for (int y = std::min(y0, y1); y <= std::max(y0, y1); ++y) cells.emplace_back(y, x0);
    return cells;
  }
  const double k = static_cast<double>(y1 - y0) / static_cast<double>(x1 - x0);
  const double b = y0 - x0 * k;
  if (std::fabs(k) <= 1.0) {
    for (int x = std::min(x0, x1); x <= std::max(x0, x1); ++x) {
      cells.emplace_back(static_cast<int>(NearestEven(x * k + b)), x);
    }
  } else {
    for (int y = std::min(y0, y1); y <= std::max(y0, y1); ++y) {
      cells.emplace_back(y, static_cast<int>(NearestEven((y - b) / k)));
    }
  }
  return cells;
}

// The outlier fence: a full ascending sort, positions nearest(N x 0.25) and
// nearest(N x 0.75) clamped to N - 1.
inline float Fence(const cv::Mat& distances) {
  cv::Mat sorted;
  cv::sort(distances.clone().reshape(1, 1), sorted, cv::SORT_EVERY_ROW | cv::SORT_ASCENDING);
  const int n = static_cast<int>(distances.total());
  const float s1 = sorted.at<float>(0, std::min(static_cast<int>(NearestEven(n * 0.25)), n - 1));
  const float s3 = sorted.at<float>(0, std::min(static_cast<int>(NearestEven(n * 0.75)), n - 1));
  return s3 + 3.0f * (s3 - s1);
}

// The corner stage: a 32-bit raster holding the mean outline times 1000 and
// every kept LED's outline cell by cell, walls above 10, 16-bit 4-connected
// labels and the full scan. Every chromaticity must be a raster point.
inline void GamutCorners(TargetBlock& corners, const cv::Mat& mask, const ChromaLxy& red,
                         const ChromaLxy& green, const ChromaLxy& blue, const TargetBlock& means,
                         cv::Mat* regionOut = nullptr) {
  cv::Mat raster(2000, 2000, CV_32SC1, cv::Scalar(0));
  const auto outline = [&raster](const std::array<float, 6>& p) {
    int c[6];
    for (int i = 0; i < 6; ++i) c[i] = static_cast<int>(NearestEven(double{2000.0f * p[i]}));
    for (const auto& [a, b] : {std::make_pair(0, 2), std::make_pair(0, 4), std::make_pair(2, 4)}) {
      for (const auto& [i, j] : LineCells(c[a], c[a + 1], c[b], c[b + 1])) ++raster.at<int32_t>(i, j);
    }
  };
  outline({means[0].x, means[0].y, means[1].x, means[1].y, means[2].x, means[2].y});
  raster *= 1000;
  for (int i = 0; i < mask.rows; ++i) {
    for (int j = 0; j < mask.cols; ++j) {
      if (mask.at<uint8_t>(i, j) == 0) continue;
      outline({red.x.at<float>(i, j), red.y.at<float>(i, j), green.x.at<float>(i, j), green.y.at<float>(i, j),
               blue.x.at<float>(i, j), blue.y.at<float>(i, j)});
    }
  }
  cv::Mat region(2000, 2000, CV_8UC1, cv::Scalar(255)), labels;
  region.setTo(0, raster > 10);
  if (regionOut != nullptr) *regionOut = region.clone();
  cv::connectedComponents(region, labels, 4, CV_16U);
  const int seed = static_cast<int>(NearestEven(2000 * 0.33));
  const uint16_t seedLabel = labels.at<uint16_t>(seed, seed);
  float found[6];
  std::fill(found, found + 6, static_cast<float>(seed));
  for (int i = 0; i < 2000; ++i) {
    for (int j = 0; j < 2000; ++j) {
      if (labels.at<uint16_t>(i, j) != seedLabel) continue;
      const float col = static_cast<float>(j), row = static_cast<float>(i);
      if (col > found[0]) {
        found[0] = col;
        found[1] = row;
      }
      if (row > found[3]) {
        found[2] = col;
        found[3] = row;
      }
      if (row < found[5]) {
        found[4] = col;
        found[5] = row;
      }
    }
  }
  for (int p = 0; p < 3; ++p) {
    corners[p] = {corners[p].L, found[2 * p] / 2000.0f, found[2 * p + 1] / 2000.0f};
  }
}

// The line search with a full coverage count of the whole block for every
// evaluation.
inline void SearchTargets(const Aimhue& handle, TargetBlock& final, const cv::Mat& mask, const ChromaLxy& red,
                          const ChromaLxy& green, const ChromaLxy& blue, const TargetBlock& means,
                          const TargetBlock& corners) {
  const auto coverage = [&](const TargetBlock& t) {
    Coverage c{};
    PercentOfTarget(&red, &green, &blue, &t[0].L, c, mask);
    return std::array<float, 3>{c.red, c.green, c.blue};
  };
  const std::array<float, 3> start = coverage(corners);
  for (int p = 0; p < 3; ++p) {
    final[p] = corners[p];
    if (handle.percentEnd[p] >= start[p]) continue;
    TargetBlock t = corners;
    const float k = (corners[p].y - means[p].y) / (corners[p].x - means[p].x);
    const float b = corners[p].y - corners[p].x * k;
    float step = 0.001f, prev = 1.0f, x = corners[p].x;
    for (int i = 0; i < handle.maxIter; ++i) {
      const float e = coverage(t)[p] - handle.percentEnd[p];
      if (handle.percentTol >= std::fabs(e)) break;
      prev = prev * e;
      if (prev < 0 && i >= 1) step = step * 0.5f;
      prev = e;
      x = (e > handle.percentTol) == (p == 0) ? x + step : x - step;
      t[p].x = x;
      t[p].y = x * k + b;
    }
    final[p] = t[p];
  }
}

}  // namespace aimhue::literal

#endif  // AIMHUE_TESTS_SUPPORT_LITERAL_SEARCH_STAGES_H_
