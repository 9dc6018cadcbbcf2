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

}  // namespace aimhue

#endif  // AIMHUE_SRC_COMMON_NUMERIC_H_
