// The per-LED arithmetic of the correction.
#include "engine/correction_led.h"

#include <algorithm>
#include <cmath>

#include "common/numeric.h"

namespace aimhue {
namespace {

constexpr uint8_t kClippedBits[3] = {kCorrectionClippedRed, kCorrectionClippedGreen,
                                     kCorrectionClippedBlue};

double ColumnNorm(const Matrix3& m, int column) {
  return std::sqrt(m[column] * m[column] + m[3 + column] * m[3 + column] +
                   m[6 + column] * m[6 + column]);
}

// The adjugate (transposed cofactors) and the determinant.
double Adjugate(const Matrix3& m, Matrix3& adj) {
  adj[0] = m[4] * m[8] - m[5] * m[7];
  adj[1] = m[2] * m[7] - m[1] * m[8];
  adj[2] = m[1] * m[5] - m[2] * m[4];
  adj[3] = m[5] * m[6] - m[3] * m[8];
  adj[4] = m[0] * m[8] - m[2] * m[6];
  adj[5] = m[2] * m[3] - m[0] * m[5];
  adj[6] = m[3] * m[7] - m[4] * m[6];
  adj[7] = m[1] * m[6] - m[0] * m[7];
  adj[8] = m[0] * m[4] - m[1] * m[3];
  return m[0] * adj[0] + m[1] * adj[3] + m[2] * adj[6];
}

}  // namespace

Matrix3 TargetMatrix(const TargetLxy targets[4]) {
  Matrix3 t{};
  for (int j = 0; j < 3; ++j) {
    const double luminance = targets[j].L;
    const double x = targets[j].x;
    const double y = targets[j].y;
    t[j] = x * luminance / y;
    t[3 + j] = luminance;
    t[6 + j] = (1.0 - x - y) * luminance / y;
  }
  return t;
}

bool IsSingular(const Matrix3& m) {
  Matrix3 adj;
  const double det = Adjugate(m, adj);
  return !(std::fabs(det) >
           kSingularRatio * ColumnNorm(m, 0) * ColumnNorm(m, 1) * ColumnNorm(m, 2));
}

uint8_t SkipFlag(const Matrix3& m) {
  for (int column = 0; column < 3; ++column) {
    if (m[column] == 0.0 && m[3 + column] == 0.0 && m[6 + column] == 0.0) return kCorrectionDead;
  }
  for (double value : m) {
    if (!std::isfinite(value)) return kCorrectionNotFinite;
  }
  return IsSingular(m) ? kCorrectionSingular : 0;
}

uint8_t SolveLed(const Matrix3& m, const Matrix3& t, CorrectionMode mode, Matrix3& c,
                 double& rowSumMax) {
  uint8_t flags = 0;
  if (mode == CorrectionMode::Brightness) {
    c.fill(0.0);
    for (int j = 0; j < 3; ++j) {
      const double ownY = m[3 + j];
      c[4 * j] = ownY > 0.0 ? t[3 + j] / ownY : 0.0;
    }
  } else {
    Matrix3 adj;
    const double det = Adjugate(m, adj);
    for (int k = 0; k < 3; ++k) {
      for (int j = 0; j < 3; ++j) {
        const double value =
            (adj[3 * k] * t[j] + adj[3 * k + 1] * t[3 + j] + adj[3 * k + 2] * t[6 + j]) / det;
        if (value < 0.0) {
          flags |= kClippedBits[j];
          c[3 * k + j] = 0.0;
        } else {
          c[3 * k + j] = value;
        }
      }
    }
  }
  rowSumMax = LargestRowSum(c);
  return flags;
}

double LargestRowSum(const Matrix3& c) {
  return std::max({c[0] + c[1] + c[2], c[3] + c[4] + c[5], c[6] + c[7] + c[8]});
}

bool QuantiseRows(const Matrix3& c, int32_t fullScale, std::array<int32_t, 9>& levels) {
  const double full = fullScale;
  bool repaired = false;
  for (int k = 0; k < 3; ++k) {
    double exact[3];
    int64_t sum = 0;
    for (int j = 0; j < 3; ++j) {
      exact[j] = c[3 * k + j] * full;
      // Written so that a NaN becomes 0 rather than an undefined conversion.
      const double level = exact[j] > 0.0 ? std::min(NearestEven(exact[j]), full) : 0.0;
      levels[3 * k + j] = static_cast<int32_t>(level);
      sum += levels[3 * k + j];
    }
    // Each pass lowers one positive entry by one, so the loop ends.
    while (sum > fullScale) {
      int pick = -1;
      double roundedUp = 0.0;
      for (int j = 0; j < 3; ++j) {
        const double up = levels[3 * k + j] - exact[j];
        if (levels[3 * k + j] > 0 && (pick < 0 || up > roundedUp)) {
          pick = j;
          roundedUp = up;
        }
      }
      --levels[3 * k + pick];
      --sum;
      repaired = true;
    }
  }
  return repaired;
}

CorrectionCounts CountCorrectionFlags(const cv::Mat& flags) {
  CorrectionCounts counts{};
  for (int row = 0; row < flags.rows; ++row) {
    const uint8_t* flagRow = flags.ptr<uint8_t>(row);
    for (int col = 0; col < flags.cols; ++col) {
      const uint8_t flag = flagRow[col];
      counts.dead += (flag & kCorrectionDead) != 0;
      counts.notFinite += (flag & kCorrectionNotFinite) != 0;
      counts.singular += (flag & kCorrectionSingular) != 0;
      counts.corrected += (flag & kCorrectionSkipped) == 0;
      counts.clippedRed += (flag & kCorrectionClippedRed) != 0;
      counts.clippedGreen += (flag & kCorrectionClippedGreen) != 0;
      counts.clippedBlue += (flag & kCorrectionClippedBlue) != 0;
      counts.dimmed += (flag & kCorrectionDimmed) != 0;
      counts.roundingRepaired += (flag & kCorrectionRoundingRepaired) != 0;
    }
  }
  return counts;
}

}  // namespace aimhue
