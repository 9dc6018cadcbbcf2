// The plain, literal forms of the optimised target-search stages: each
// computes its result exactly as the rules state it, step by step, with no
// shortcut. The unit tests compare the library's stages with them bit for bit
// and the benchmarks time them as the baseline. Header-only, without a test
// framework, so that both can use it.
#ifndef AIMHUE_TESTS_SUPPORT_LITERAL_SEARCH_STAGES_H_
#define AIMHUE_TESTS_SUPPORT_LITERAL_SEARCH_STAGES_H_

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include "common/numeric.h"
#include "engine/aimhue.h"
#include "engine/percent_of_target.h"
#include "meter/chroma_lxy.h"

namespace aimhue::literal {

using Cells = std::vector<std::pair<int, int>>;  // (row, col)

// The cells of the segment (x0, y0)-(x1, y1), each computed by the double
// formula and rounded by NearestEven, in increasing x (or y when steep).
inline Cells LineCells(int x0, int y0, int x1, int y1) {
  Cells cells;
  if (x0 == x1 && y0 == y1) {
    cells.emplace_back(y0, x0);
  } else if (y0 == y1) {
    for (int x = std::min(x0, x1); x <= std::max(x0, x1); ++x) cells.emplace_back(y0, x);
  } else if (x0 == x1) {
    for (int y = std::min(y0, y1); y <= std::max(y0, y1); ++y) cells.emplace_back(y, x0);
  } else {
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
  }
  return cells;
}

// The outlier fence of one distance plane: a full ascending sort, positions
// nearest(N x 0.25) and nearest(N x 0.75) clamped to N - 1.
inline float Fence(const cv::Mat& distances) {
  cv::Mat sorted;
  cv::sort(distances.clone().reshape(1, 1), sorted, cv::SORT_EVERY_ROW | cv::SORT_ASCENDING);
  const int n = static_cast<int>(distances.total());
  const int q1 = std::min(static_cast<int>(NearestEven(n * 0.25)), n - 1);
  const int q3 = std::min(static_cast<int>(NearestEven(n * 0.75)), n - 1);
  const float s1 = sorted.at<float>(0, q1);
  const float s3 = sorted.at<float>(0, q3);
  return s3 + 3.0f * (s3 - s1);
}

// The corner stage: a 32-bit raster, the mean outline times 1000, every
// kept LED's outline cell by cell, walls above 10, 16-bit 4-connected
// labels and the full scan. Every chromaticity must be a raster point.
inline void GamutCorners(TargetBlock& corners, const cv::Mat& mask, const ChromaLxy& red,
                         const ChromaLxy& green, const ChromaLxy& blue, const TargetBlock& means,
                         cv::Mat* regionOut = nullptr) {
  cv::Mat raster(2000, 2000, CV_32SC1, cv::Scalar(0));
  const auto point = [](float x, float y) {
    return std::make_pair(static_cast<int>(NearestEven(static_cast<double>(2000.0f * x))),
                          static_cast<int>(NearestEven(static_cast<double>(2000.0f * y))));
  };
  const auto draw = [&raster](std::pair<int, int> p0, std::pair<int, int> p1) {
    for (const auto& cell : LineCells(p0.first, p0.second, p1.first, p1.second)) {
      ++raster.at<int32_t>(cell.first, cell.second);
    }
  };
  const auto r = point(means[0].x, means[0].y);
  const auto g = point(means[1].x, means[1].y);
  const auto b = point(means[2].x, means[2].y);
  draw(r, g);
  draw(r, b);
  draw(g, b);
  raster *= 1000;
  for (int row = 0; row < mask.rows; ++row) {
    for (int col = 0; col < mask.cols; ++col) {
      if (mask.at<uint8_t>(row, col) == 0) continue;
      const auto lr = point(red.x.at<float>(row, col), red.y.at<float>(row, col));
      const auto lg = point(green.x.at<float>(row, col), green.y.at<float>(row, col));
      const auto lb = point(blue.x.at<float>(row, col), blue.y.at<float>(row, col));
      draw(lr, lg);
      draw(lr, lb);
      draw(lg, lb);
    }
  }
  cv::Mat region(2000, 2000, CV_8UC1, cv::Scalar(255));
  region.setTo(0, raster > 10);
  if (regionOut != nullptr) *regionOut = region.clone();
  cv::Mat labels;
  cv::connectedComponents(region, labels, 4, CV_16U);
  const int seed = static_cast<int>(NearestEven(2000 * 0.33));
  const uint16_t seedLabel = labels.at<uint16_t>(seed, seed);
  float found[6] = {static_cast<float>(seed), static_cast<float>(seed), static_cast<float>(seed),
                    static_cast<float>(seed), static_cast<float>(seed), static_cast<float>(seed)};
  for (int i = 0; i < 2000; ++i) {
    for (int j = 0; j < 2000; ++j) {
      if (labels.at<uint16_t>(i, j) != seedLabel) continue;
      const float col = static_cast<float>(j);
      const float row = static_cast<float>(i);
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
    corners[p].x = found[2 * p] / 2000.0f;
    corners[p].y = found[2 * p + 1] / 2000.0f;
  }
}

// The line search with a full coverage count of the whole block T for every
// evaluation.
inline void SearchTargets(const Aimhue& handle, TargetBlock& final, const cv::Mat& mask,
                          const ChromaLxy& red, const ChromaLxy& green, const ChromaLxy& blue,
                          const TargetBlock& means, const TargetBlock& corners) {
  Coverage start{};
  PercentOfTarget(&red, &green, &blue, &corners[0].L, start, mask);
  const float cov0[3] = {start.red, start.green, start.blue};
  for (int p = 0; p < 3; ++p) {
    if (handle.percentEnd[p] >= cov0[p]) {
      final[p] = corners[p];
      continue;
    }
    TargetBlock t = corners;
    const float k = (corners[p].y - means[p].y) / (corners[p].x - means[p].x);
    const float b = corners[p].y - corners[p].x * k;
    float step = 0.001f;
    float prev = 1.0f;
    float x = corners[p].x;
    for (int i = 0; i < handle.maxIter; ++i) {
      Coverage coverage{};
      PercentOfTarget(&red, &green, &blue, &t[0].L, coverage, mask);
      const float fractions[3] = {coverage.red, coverage.green, coverage.blue};
      const float e = fractions[p] - handle.percentEnd[p];
      if (handle.percentTol >= std::fabs(e)) break;
      prev = prev * e;
      if (prev < 0 && i >= 1) step = step * 0.5f;
      prev = e;
      if (p == 0) {
        x = e > handle.percentTol ? x + step : x - step;
      } else {
        x = e > handle.percentTol ? x - step : x + step;
      }
      t[p].x = x;
      t[p].y = x * k + b;
    }
    final[p] = t[p];
  }
}

}  // namespace aimhue::literal

#endif  // AIMHUE_TESTS_SUPPORT_LITERAL_SEARCH_STAGES_H_
