// Numeric rules shared by every subsystem: the fraction range test and the
// rounding of real values to indices.
#ifndef AIMHUE_SRC_COMMON_NUMERIC_H_
#define AIMHUE_SRC_COMMON_NUMERIC_H_

#include <cmath>

namespace aimhue {

// The range test of fractions and thresholds: v passes when it is not
// greater than 1.0 and 0.0 is not greater than or equal to it, tested in
// that order with ordered comparisons. A NaN fails neither comparison and
// therefore passes; callers rely on that.
inline bool InFractionRange(float v) { return !(v > 1.0f) && !(0.0f >= v); }

// Rounds to the nearest integer with ties to even (2.5 -> 2, 3.5 -> 4), the
// rounding of every real value that becomes an index or a raster cell.
// Relies on the default floating-point rounding mode, which the library
// never changes.
inline double NearestEven(double v) { return std::nearbyint(v); }

// NearestEven for |v| < 2^51, without a library call: adding and
// subtracting 1.5 x 2^52 leaves v rounded to an integer in the default
// rounding mode (ties to even): the same integer as NearestEven gives (only
// the sign of a zero may differ). For hot loops whose values are known to be
// small (raster coordinates).
inline double NearestEvenSmall(double v) {
  constexpr double kRoundingShift = 6755399441055744.0;  // 1.5 x 2^52
  return (v + kRoundingShift) - kRoundingShift;
}

}  // namespace aimhue

#endif  // AIMHUE_SRC_COMMON_NUMERIC_H_
