#include "support/chroma_sets.h"

#include <cmath>
#include <cstring>
#include <limits>

namespace aimhue::testing {

ChromaLxy SetFromPlanes(const cv::Mat& x, const cv::Mat& y) {
  ChromaLxy set;
  set.L = cv::Mat::ones(x.rows, x.cols, CV_32F);
  set.x = x;
  set.y = y;
  return set;
}

ChromaLxy UniformSet(int rows, int cols, float x, float y) {
  return SetFromPlanes(cv::Mat(rows, cols, CV_32F, cv::Scalar(x)),
                       cv::Mat(rows, cols, CV_32F, cv::Scalar(y)));
}

std::array<float, 12> TargetBlockOf(Chromaticity red, Chromaticity green, Chromaticity blue) {
  return {1.0f, red.x, red.y, 1.0f, green.x, green.y, 1.0f, blue.x, blue.y, 1.0f, 0.3127f, 0.329f};
}

bool LiteralInGamut(Chromaticity p0, Chromaticity p1, Chromaticity p2, Chromaticity q) {
  const float e0x = p2.x - p0.x;
  const float e0y = p2.y - p0.y;
  const float e1x = p1.x - p0.x;
  const float e1y = p1.y - p0.y;
  const float e2x = q.x - p0.x;
  const float e2y = q.y - p0.y;
  const double d00 = static_cast<double>(e0x * e0x + e0y * e0y);
  const double d01 = static_cast<double>(e0x * e1x + e0y * e1y);
  const double d02 = static_cast<double>(e0x * e2x + e0y * e2y);
  const double d11 = static_cast<double>(e1x * e1x + e1y * e1y);
  const double d12 = static_cast<double>(e1x * e2x + e1y * e2y);
  const double inv = 1.0 / (d11 * d00 - d01 * d01);
  const double u = (d11 * d02 - d12 * d01) * inv;
  const double v = (d12 * d00 - d02 * d01) * inv;
  if (u < 0.0 || u > 1.0 || v < 0.0 || v > 1.0) return false;
  return u + v <= 1.0;
}

Coverage LiteralCoverage(const ChromaLxy& red, const ChromaLxy& green, const ChromaLxy& blue,
                         const float* targets, const cv::Mat& mask) {
  const int rows = red.L.rows;
  const int cols = red.L.cols;
  const cv::Mat counted = mask.empty() ? cv::Mat(rows, cols, CV_8U, cv::Scalar(255)) : mask;
  const Chromaticity redTarget{targets[1], targets[2]};
  const Chromaticity greenTarget{targets[4], targets[5]};
  const Chromaticity blueTarget{targets[7], targets[8]};
  int64_t total = static_cast<int64_t>(rows) * cols;
  int32_t inRed = 0;
  int32_t inGreen = 0;
  int32_t inBlue = 0;
  int32_t inAll = 0;
  for (int row = 0; row < rows; ++row) {
    for (int col = 0; col < cols; ++col) {
      if (counted.at<uint8_t>(row, col) == 0) {
        --total;
        continue;
      }
      const Chromaticity r{red.x.at<float>(row, col), red.y.at<float>(row, col)};
      const Chromaticity g{green.x.at<float>(row, col), green.y.at<float>(row, col)};
      const Chromaticity b{blue.x.at<float>(row, col), blue.y.at<float>(row, col)};
      const bool reachR = LiteralInGamut(r, g, b, redTarget);
      const bool reachG = LiteralInGamut(r, g, b, greenTarget);
      const bool reachB = LiteralInGamut(r, g, b, blueTarget);
      inRed += reachR;
      inGreen += reachG;
      inBlue += reachB;
      inAll += reachR && reachG && reachB;
    }
  }
  const double n = static_cast<double>(total);
  return {static_cast<float>(static_cast<double>(inRed) / n),
          static_cast<float>(static_cast<double>(inGreen) / n),
          static_cast<float>(static_cast<double>(inBlue) / n),
          static_cast<float>(static_cast<double>(inAll) / n)};
}

std::array<uint32_t, 4> Bits(const Coverage& coverage) {
  std::array<uint32_t, 4> bits;
  static_assert(sizeof bits == sizeof coverage, "four floats");
  std::memcpy(bits.data(), &coverage, sizeof bits);
  return bits;
}

namespace {

float Uniform(std::mt19937& random, float low, float high) {
  return std::uniform_real_distribution<float>(low, high)(random);
}

// A multiple of 1/64 in [0, 1]: sums, differences and midpoints of such
// points are exact in 32-bit floats, so edges and corners are hit exactly.
float Dyadic(std::mt19937& random) {
  return static_cast<float>(std::uniform_int_distribution<int>(0, 64)(random)) / 64.0f;
}

Chromaticity DyadicPoint(std::mt19937& random) { return {Dyadic(random), Dyadic(random)}; }

Chromaticity Near(std::mt19937& random, Chromaticity centre, float spread) {
  return {centre.x + Uniform(random, -spread, spread), centre.y + Uniform(random, -spread, spread)};
}

// One LED's red, green and blue chromaticities.
std::array<Chromaticity, 3> RandomLed(std::mt19937& random, const std::array<Chromaticity, 3>& target) {
  const float nan = std::numeric_limits<float>::quiet_NaN();
  std::array<Chromaticity, 3> led;
  const int kind = std::uniform_int_distribution<int>(0, 10)(random);
  switch (kind) {
    case 0:  // anywhere
      for (Chromaticity& p : led) p = {Uniform(random, 0.0f, 0.9f), Uniform(random, 0.0f, 0.9f)};
      break;
    case 1:  // on the dyadic grid: exact edges, corners and collinear triangles
      for (Chromaticity& p : led) p = DyadicPoint(random);
      break;
    case 2: {  // a corner on a target
      for (Chromaticity& p : led) p = DyadicPoint(random);
      const int corner = std::uniform_int_distribution<int>(0, 2)(random);
      led[corner] = target[std::uniform_int_distribution<int>(0, 2)(random)];
      break;
    }
    case 3: {  // an edge whose midpoint is a target
      for (Chromaticity& p : led) p = DyadicPoint(random);
      const Chromaticity t = target[std::uniform_int_distribution<int>(0, 2)(random)];
      led[1] = {2.0f * t.x - led[0].x, 2.0f * t.y - led[0].y};
      break;
    }
    case 4: {  // a zero-sum LED: NaN in one plane
      for (Chromaticity& p : led) p = Near(random, {0.3f, 0.3f}, 0.3f);
      Chromaticity& p = led[std::uniform_int_distribution<int>(0, 2)(random)];
      (std::uniform_int_distribution<int>(0, 1)(random) == 0 ? p.x : p.y) = nan;
      break;
    }
    case 5: {  // two corners equal: zero area
      for (Chromaticity& p : led) p = Near(random, {0.3f, 0.3f}, 0.3f);
      led[2] = led[std::uniform_int_distribution<int>(0, 1)(random)];
      break;
    }
    case 6: {  // a target just off an edge, on either side, by 10^-8 to 10^-3
      const Chromaticity t = target[std::uniform_int_distribution<int>(0, 2)(random)];
      for (Chromaticity& p : led) p = Near(random, t, 0.4f);
      const float along = Uniform(random, 0.5f, 3.0f);
      const float offset = std::pow(10.0f, Uniform(random, -8.0f, -3.0f)) *
                           (std::uniform_int_distribution<int>(0, 1)(random) == 0 ? 1.0f : -1.0f);
      const float dx = t.x - led[0].x;
      const float dy = t.y - led[0].y;
      led[1] = {led[0].x + along * dx - offset * dy, led[0].y + along * dy + offset * dx};
      break;
    }
    default:  // a realistic LED around the targets
      for (int i = 0; i < 3; ++i) led[i] = Near(random, target[i], 0.02f);
      break;
  }
  return led;
}

}  // namespace

RandomPanel MakeRandomPanel(std::mt19937& random, bool withMask) {
  const int rows = std::uniform_int_distribution<int>(1, 24)(random);
  const int cols = std::uniform_int_distribution<int>(1, 24)(random);
  std::array<Chromaticity, 3> target;
  if (std::uniform_int_distribution<int>(0, 1)(random) == 0) {
    for (Chromaticity& t : target) t = DyadicPoint(random);
  } else {
    target = {Near(random, {0.66f, 0.31f}, 0.03f), Near(random, {0.2f, 0.68f}, 0.03f),
              Near(random, {0.15f, 0.07f}, 0.03f)};
  }
  std::array<cv::Mat, 6> planes;
  for (cv::Mat& plane : planes) plane.create(rows, cols, CV_32F);
  for (int row = 0; row < rows; ++row) {
    for (int col = 0; col < cols; ++col) {
      const std::array<Chromaticity, 3> led = RandomLed(random, target);
      for (int i = 0; i < 3; ++i) {
        planes[2 * i].at<float>(row, col) = led[i].x;
        planes[2 * i + 1].at<float>(row, col) = led[i].y;
      }
    }
  }
  RandomPanel panel;
  panel.red = SetFromPlanes(planes[0], planes[1]);
  panel.green = SetFromPlanes(planes[2], planes[3]);
  panel.blue = SetFromPlanes(planes[4], planes[5]);
  panel.targets = TargetBlockOf(target[0], target[1], target[2]);
  if (withMask) {
    panel.mask.create(rows, cols, CV_8U);
    std::uniform_int_distribution<int> value(0, 255);
    std::bernoulli_distribution excluded(0.3);
    for (int row = 0; row < rows; ++row) {
      for (int col = 0; col < cols; ++col) {
        panel.mask.at<uint8_t>(row, col) = excluded(random) ? 0 : static_cast<uint8_t>(value(random));
      }
    }
  }
  return panel;
}

}  // namespace aimhue::testing
