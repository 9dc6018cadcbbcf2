// The barycentric "is this chromaticity inside this LED's gamut" test, split
// into the part that depends on the LED alone (its frame) and the part that
// depends on the target. Building a frame once per LED and testing several
// targets against it gives bit-identical answers to InGamut, because every
// operation and its precision is the same; only repeated work is saved.
#ifndef AIMHUE_SRC_ENGINE_LED_GAMUT_H_
#define AIMHUE_SRC_ENGINE_LED_GAMUT_H_

#include "engine/percent_of_target.h"

namespace aimhue {

// The target-independent quantities of one LED's triangle p0 (red), p1
// (green), p2 (blue). Edges and dot products are formed in 32-bit floats,
// the dot products then widened; the weights are 64-bit.
struct LedFrame {
  float originX;
  float originY;
  float e0x;  // p2 - p0
  float e0y;
  float e1x;  // p1 - p0
  float e1y;
  double d00;
  double d01;
  double d11;
  double inv;  // 1 / (d11 * d00 - d01 * d01); infinite or NaN for a degenerate triangle
};

inline LedFrame MakeLedFrame(Chromaticity p0, Chromaticity p1, Chromaticity p2) {
  LedFrame frame;
  frame.originX = p0.x;
  frame.originY = p0.y;
  frame.e0x = p2.x - p0.x;
  frame.e0y = p2.y - p0.y;
  frame.e1x = p1.x - p0.x;
  frame.e1y = p1.y - p0.y;
  frame.d00 = static_cast<double>(frame.e0x * frame.e0x + frame.e0y * frame.e0y);
  frame.d01 = static_cast<double>(frame.e0x * frame.e1x + frame.e0y * frame.e1y);
  frame.d11 = static_cast<double>(frame.e1x * frame.e1x + frame.e1y * frame.e1y);
  frame.inv = 1.0 / (frame.d11 * frame.d00 - frame.d01 * frame.d01);
  return frame;
}

// Whether q lies in the frame's triangle, boundary included. A degenerate
// triangle gives infinite or NaN weights, and one of the range tests fails.
inline bool FrameContains(const LedFrame& frame, Chromaticity q) {
  const float e2x = q.x - frame.originX;
  const float e2y = q.y - frame.originY;
  const double d02 = static_cast<double>(frame.e0x * e2x + frame.e0y * e2y);
  const double d12 = static_cast<double>(frame.e1x * e2x + frame.e1y * e2y);
  const double u = (frame.d11 * d02 - d12 * frame.d01) * frame.inv;
  const double v = (d12 * frame.d00 - d02 * frame.d01) * frame.inv;
  if (u < 0.0 || u > 1.0 || v < 0.0 || v > 1.0) return false;
  return u + v <= 1.0;
}

// Counts, over the LEDs added to it, how many reach the red, the green and
// the blue target of a twelve-float target block, and all three at once.
// The counters are 32-bit, as the coverage count defines them.
class CoverageTally {
 public:
  explicit CoverageTally(const float* targets)
      : red_{targets[1], targets[2]}, green_{targets[4], targets[5]}, blue_{targets[7], targets[8]} {}

  void Add(const LedFrame& frame) {
    const bool r = FrameContains(frame, red_);
    const bool g = FrameContains(frame, green_);
    const bool b = FrameContains(frame, blue_);
    inRed_ += r;
    inGreen_ += g;
    inBlue_ += b;
    inAll_ += r && g && b;
  }

  // The four fractions of `counted` LEDs.
  Coverage Fractions(int64_t counted) const {
    return CoverageFromCounts(inRed_, inGreen_, inBlue_, inAll_, counted);
  }

 private:
  Chromaticity red_;
  Chromaticity green_;
  Chromaticity blue_;
  int32_t inRed_ = 0;
  int32_t inGreen_ = 0;
  int32_t inBlue_ = 0;
  int32_t inAll_ = 0;
};

}  // namespace aimhue

#endif  // AIMHUE_SRC_ENGINE_LED_GAMUT_H_
