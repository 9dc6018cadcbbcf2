// Test helpers for the engine: chromaticity sets, random inputs, and the
// plain, literal gamut test and coverage count that the fast kernels must
// match bit for bit.
#ifndef AIMHUE_TESTS_SUPPORT_CHROMA_SETS_H_
#define AIMHUE_TESTS_SUPPORT_CHROMA_SETS_H_

#include <aimhue/status.h>
#include <aimhue/target.h>
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <tuple>
#include <vector>

#include "engine/percent_of_target.h"
#include "meter/chroma_lxy.h"
#include "synthetic/synthetic_chroma.h"

namespace aimhue::testing {

inline const float kNaN = std::numeric_limits<float>::quiet_NaN();

// Runs check(random, trial) `trials` times from `seed`, up to the first
// failure, whose trial it names.
template <typename Check>
void ForRandomInputs(uint32_t seed, int trials, Check check) {
  std::mt19937 random(seed);
  for (int trial = 0; trial < trials && !::testing::Test::HasFailure(); ++trial) {
    check(random, trial);
    if (::testing::Test::HasFailure()) ADD_FAILURE() << "at trial " << trial;
  }
}
inline float Uniform(std::mt19937& random, float low, float high) {
  return std::uniform_real_distribution<float>(low, high)(random);
}
inline int Pick(std::mt19937& random, int low, int high) {
  return std::uniform_int_distribution<int>(low, high)(random);
}

// Whether a and b hold the same bits (NaN equals NaN).
template <typename A, typename B>
bool SameBits(const A& a, const B& b) {
  static_assert(sizeof a == sizeof b, "same size");
  return std::memcmp(&a, &b, sizeof a) == 0;
}

// A set of the given x and y planes with an L plane of ones.
inline ChromaLxy SetFromPlanes(const cv::Mat& x, const cv::Mat& y) {
  ChromaLxy set;
  set.L = cv::Mat::ones(x.rows, x.cols, CV_32F);
  set.x = x;
  set.y = y;
  return set;
}
inline ChromaLxy UniformSet(int rows, int cols, float x, float y) {
  return SetFromPlanes(cv::Mat(rows, cols, CV_32F, cv::Scalar(x)),
                       cv::Mat(rows, cols, CV_32F, cv::Scalar(y)));
}
// Red, green and blue x, y with L 1, and a white of (1, 0.3127, 0.329).
inline std::array<float, 12> TargetBlockOf(Chromaticity r, Chromaticity g, Chromaticity b) {
  return {1.0f, r.x, r.y, 1.0f, g.x, g.y, 1.0f, b.x, b.y, 1.0f, 0.3127f, 0.329f};
}

// A synthetic screen without dead LEDs in modules of 10 x 16 LEDs, or of
// the given size.
inline synthetic::ScreenOptions SmallScreen(int rows, int cols, uint64_t seed, int moduleRows = 10,
                                            int moduleCols = 16) {
  synthetic::ScreenOptions options;
  std::tie(options.rows, options.cols, options.moduleRows, options.moduleCols) =
      std::make_tuple(rows, cols, moduleRows, moduleCols);
  options.deadCount = 0;
  options.seed = seed;
  return options;
}
inline synthetic::ScreenChroma SyntheticSets(const synthetic::ScreenOptions& options) {
  return synthetic::ChromaFromPlanes(synthetic::GeneratePlanes(options));
}

// The barycentric gamut test as worded: edges in 32-bit, dot products in
// 32-bit then widened, weights in 64-bit, range tests, then u + v <= 1.
inline bool LiteralInGamut(Chromaticity p0, Chromaticity p1, Chromaticity p2, Chromaticity q) {
  const float e0x = p2.x - p0.x, e0y = p2.y - p0.y, e1x = p1.x - p0.x, e1y = p1.y - p0.y;
  const float e2x = q.x - p0.x, e2y = q.y - p0.y;
  const auto dot = [](float ax, float ay, float bx, float by) { return double{ax * bx + ay * by}; };
  const double d00 = dot(e0x, e0y, e0x, e0y), d01 = dot(e0x, e0y, e1x, e1y), d02 = dot(e0x, e0y, e2x, e2y);
  const double d11 = dot(e1x, e1y, e1x, e1y), d12 = dot(e1x, e1y, e2x, e2y);
  const double inv = 1.0 / (d11 * d00 - d01 * d01);
  const double u = (d11 * d02 - d12 * d01) * inv, v = (d12 * d00 - d02 * d01) * inv;
  return u >= 0.0 && u <= 1.0 && v >= 0.0 && v <= 1.0 && u + v <= 1.0;
}

// Per LED in row order, the colour bits of the targets that the literal test
// finds outside its triangle; 0 where the mask leaves the LED out.
inline std::vector<uint8_t> LiteralMisses(const ChromaLxy& red, const ChromaLxy& green, const ChromaLxy& blue,
                                          const float* t, const cv::Mat& mask) {
  std::vector<uint8_t> misses;
  for (int i = 0; i < red.L.rows; ++i) {
    for (int j = 0; j < red.L.cols; ++j) {
      const auto at = [i, j](const ChromaLxy& s) {
        return Chromaticity{s.x.at<float>(i, j), s.y.at<float>(i, j)};
      };
      uint8_t missed = 0;
      for (int p = 0; p < kPrimaryCount && (mask.empty() || mask.at<uint8_t>(i, j) != 0); ++p) {
        if (!LiteralInGamut(at(red), at(green), at(blue), {t[3 * p + 1], t[3 * p + 2]})) {
          missed |= ColourOfPrimary(p);
        }
      }
      misses.push_back(missed);
    }
  }
  return misses;
}

// The coverage count as worded, on valid inputs: N less one per masked LED,
// 32-bit counters, each quotient in 64-bit stored as 32-bit.
inline Coverage LiteralCoverage(const ChromaLxy& red, const ChromaLxy& green, const ChromaLxy& blue,
                                const float* t, const cv::Mat& mask) {
  const std::vector<uint8_t> misses = LiteralMisses(red, green, blue, t, mask);
  int64_t total = static_cast<int64_t>(misses.size());
  int32_t in[4] = {0, 0, 0, 0};
  auto missed = misses.begin();
  for (int i = 0; i < red.L.rows; ++i) {
    for (int j = 0; j < red.L.cols; ++j, ++missed) {
      if (!mask.empty() && mask.at<uint8_t>(i, j) == 0) {
        --total;
        continue;
      }
      for (int p = 0; p < kPrimaryCount; ++p) in[p] += (*missed & ColourOfPrimary(p)) == 0;
      in[3] += *missed == 0;
    }
  }
  const auto share = [total](int32_t n) {
    return static_cast<float>(static_cast<double>(n) / static_cast<double>(total));
  };
  return {share(in[0]), share(in[1]), share(in[2]), share(in[3])};
}

// Moves corner `to` so that target t lies off the edge from corner `from`, on
// the side of `sign`, by 10^lowExp to 10^highExp of the edge's direction.
inline void PutNearEdge(std::mt19937& random, Chromaticity* corner, int from, int to, Chromaticity t,
                        float lowExp, float highExp, float sign) {
  const float along = Uniform(random, 0.5f, 3.0f);
  const float offset = std::pow(10.0f, Uniform(random, lowExp, highExp)) * sign;
  const float dx = t.x - corner[from].x, dy = t.y - corner[from].y;
  corner[to] = {corner[from].x + along * dx - offset * dy, corner[from].y + along * dy + offset * dx};
}

// A random panel of 1 to 24 rows and columns, with targets and LEDs drawn
// from a mixture that hits corners and edges exactly (multiples of 1/64 keep
// sums and midpoints exact), zero-area and collinear triangles, NaN
// chromaticities, targets just off an edge, realistic LEDs, and on request a
// random mask (empty otherwise).
struct RandomPanel {
  ChromaLxy red, green, blue;
  std::array<float, 12> targets;
  cv::Mat mask;
};
inline RandomPanel MakeRandomPanel(std::mt19937& random, bool withMask) {
  const auto dyadic = [&random] {
    return Chromaticity{Pick(random, 0, 64) / 64.0f, Pick(random, 0, 64) / 64.0f};
  };
  const auto near = [&random](Chromaticity c, float spread) {
    return Chromaticity{c.x + Uniform(random, -spread, spread), c.y + Uniform(random, -spread, spread)};
  };
  const int rows = Pick(random, 1, 24), cols = Pick(random, 1, 24);
  Chromaticity target[3] = {dyadic(), dyadic(), dyadic()};
  const Chromaticity typical[3] = {{0.66f, 0.31f}, {0.2f, 0.68f}, {0.15f, 0.07f}};
  if (Pick(random, 0, 1) == 1) {
    for (int p = 0; p < 3; ++p) target[p] = near(typical[p], 0.03f);
  }
  std::array<cv::Mat, 6> planes;
  for (cv::Mat& plane : planes) plane.create(rows, cols, CV_32F);
  for (int i = 0; i < rows * cols; ++i) {
    Chromaticity led[3];
    const int kind = Pick(random, 0, 10);
    for (int p = 0; p < 3; ++p) {
      led[p] = kind == 0   ? Chromaticity{Uniform(random, 0, 0.9f), Uniform(random, 0, 0.9f)}
               : kind <= 3 ? dyadic()
               : kind <= 5 ? near({0.3f, 0.3f}, 0.3f)
               : kind == 6 ? near(target[Pick(random, 0, 2)], 0.4f)
                           : near(target[p], 0.02f);
    }
    if (kind == 2) led[Pick(random, 0, 2)] = target[Pick(random, 0, 2)];  // a corner on a target
    const Chromaticity t = target[Pick(random, 0, 2)];
    if (kind == 3) led[1] = {2.0f * t.x - led[0].x, 2.0f * t.y - led[0].y};  // midpoint on it
    if (kind == 4) (Pick(random, 0, 1) == 0 ? led[Pick(random, 0, 2)].x : led[0].y) = kNaN;
    if (kind == 5) led[2] = led[Pick(random, 0, 1)];  // zero area
    if (kind == 6) PutNearEdge(random, led, 0, 1, t, -8.0f, -3.0f, Pick(random, 0, 1) ? 1.0f : -1.0f);
    for (int p = 0; p < 3; ++p) {
      planes[2 * p].at<float>(i) = led[p].x;
      planes[2 * p + 1].at<float>(i) = led[p].y;
    }
  }
  cv::Mat mask;
  if (withMask) mask.create(rows, cols, CV_8U);
  for (int i = 0; i < static_cast<int>(mask.total()); ++i) {
    mask.at<uint8_t>(i) = Pick(random, 0, 9) < 3 ? 0 : static_cast<uint8_t>(Pick(random, 0, 255));
  }
  return {SetFromPlanes(planes[0], planes[1]), SetFromPlanes(planes[2], planes[3]),
          SetFromPlanes(planes[4], planes[5]), TargetBlockOf(target[0], target[1], target[2]), mask};
}

}  // namespace aimhue::testing

#endif  // AIMHUE_TESTS_SUPPORT_CHROMA_SETS_H_
