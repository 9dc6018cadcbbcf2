// The frames of every counted LED of a (small) working set, built once so
// that repeated coverage counts against moving targets, as in the target
// search, test each LED without recomputing its frame.
#ifndef AIMHUE_SRC_ENGINE_GAMUT_TABLE_H_
#define AIMHUE_SRC_ENGINE_GAMUT_TABLE_H_

#include <cstdint>
#include <vector>

#include <opencv2/core.hpp>

#include "engine/led_gamut.h"

namespace aimhue {

struct ChromaLxy;

class GamutTable {
 public:
  // Builds the frames of the LEDs whose mask element is non-zero (an empty
  // mask counts every LED), in row-major order. Takes the same inputs as
  // PercentOfTarget and returns the same statuses for them (1, 12, 9); the
  // table is unchanged on failure.
  int Build(const ChromaLxy* red, const ChromaLxy* green, const ChromaLxy* blue,
            const cv::Mat& mask);

  // The number of counted LEDs (all LEDs minus the masked-out ones): the
  // denominator of a coverage fraction.
  int64_t counted() const { return counted_; }

  // How many counted LEDs have a gamut that holds q.
  int32_t CountInside(Chromaticity q) const;

  // The coverage fraction of one target, count / counted computed in 64-bit
  // floating point and stored as a 32-bit float, exactly as PercentOfTarget
  // computes each of its four fractions (NaN when nothing is counted).
  float Fraction(Chromaticity q) const;

  // All four fractions for the red, green and blue targets of a twelve-float
  // target block, identical to PercentOfTarget over the same LEDs and mask.
  Coverage Count(const float* targets) const;

 private:
  std::vector<LedFrame> frames_;
  int64_t counted_ = 0;
};

}  // namespace aimhue

#endif  // AIMHUE_SRC_ENGINE_GAMUT_TABLE_H_
