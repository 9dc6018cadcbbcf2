// The per-LED arithmetic of the correction, in double precision: the
// measured matrix of one LED, the skip tests, the solve and the clip, and the
// fixed-point rounding of one coefficient matrix. CalcCorrection runs these
// on every LED; the tests call them directly to check the exact values
// before they are stored as 32-bit floats.
//
// Matrices are 3 x 3, row-major, nine doubles:
//  - a measured matrix M: row = X, Y, Z, column = red, green, blue emitter;
//  - a target matrix T: row = X, Y, Z, column = red, green, blue target;
//  - a coefficient matrix C: row = emitter k, column = input primary j, so
//    that element 3k + j is the channel of `Correction::coeff`.
#ifndef AIMHUE_SRC_ENGINE_CORRECTION_LED_H_
#define AIMHUE_SRC_ENGINE_CORRECTION_LED_H_

#include <aimhue/correction.h>
#include <aimhue/target.h>

#include <array>
#include <cstdint>

#include <opencv2/core.hpp>

namespace aimhue {

using Matrix3 = std::array<double, 9>;

// An LED is singular when |det M| <= kSingularRatio times the product of
// the Euclidean norms of M's columns (a scale-free test: the ratio is the
// volume of the column box relative to its largest possible volume).
constexpr double kSingularRatio = 1e-9;

// The tristimulus values X = x L / y, Y = L, Z = (1 - x - y) L / y of the
// three primary targets as the columns of T (the white entry is not read).
Matrix3 TargetMatrix(const TargetLxy targets[4]);

// |det| <= kSingularRatio times the product of the column norms; also true
// when a column is all zero.
bool IsSingular(const Matrix3& m);

// The skip tests of one LED on its measured values (not its state planes):
// kCorrectionDead when a column is all zero, else kCorrectionNotFinite when
// a value is NaN or infinite, else kCorrectionSingular, else 0.
uint8_t SkipFlag(const Matrix3& m);

// The unscaled correction of an LED that passed the skip tests.
// Chroma: C = M^-1 T by cofactors, negative entries clipped to 0, and the
// clipped bits of the columns that had one. Brightness: the diagonal
// t[4 * j] / M's Y of emitter j (0 when that Y is not positive), no flags.
// Returns the flags; `c` receives the matrix and `rowSumMax` its largest
// row sum.
uint8_t SolveLed(const Matrix3& m, const Matrix3& t, CorrectionMode mode, Matrix3& c,
                 double& rowSumMax);

// The largest row sum of a coefficient matrix: the load on the emitter
// driven hardest when all three inputs are at full drive.
double LargestRowSum(const Matrix3& c);

// Fixed point with full scale `fullScale` (2^b - 1): each entry becomes the
// nearest integer in [0, fullScale] (ties to even); a row whose integer sum
// exceeds fullScale has its entries rounded up the most lowered by one
// until it fits. `levels` receives the integers; true when a row was
// repaired.
bool QuantiseRows(const Matrix3& c, int32_t fullScale, std::array<int32_t, 9>& levels);

// The counts of every flag over an 8-bit flag plane (empty: all zero).
CorrectionCounts CountCorrectionFlags(const cv::Mat& flags);

}  // namespace aimhue

#endif  // AIMHUE_SRC_ENGINE_CORRECTION_LED_H_
