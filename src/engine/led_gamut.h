// The barycentric "is this chromaticity inside this LED's gamut" test, split
// into the part that depends on the LED alone (its frame) and the part that
// depends on the target. Building a frame once per LED and testing several
// targets against it gives bit-identical answers to InGamut, because every
// operation and its precision is the same; only repeated work is saved.
#ifndef AIMHUE_SRC_ENGINE_LED_GAMUT_H_
#define AIMHUE_SRC_ENGINE_LED_GAMUT_H_

#include "engine/percent_of_target.h"

namespace aimhue {

// The 32-bit part of one LED's triangle p0 (red), p1 (green), p2 (blue):
// its origin, its edges and their dot products, shared by the full test
// below and the quick one (quick_gamut.h).
struct LedEdges {
  float originX;
  float originY;
  float e0x;  // p2 - p0
  float e0y;
  float e1x;  // p1 - p0
  float e1y;
  float d00;  // e0 . e0
  float d01;  // e0 . e1
  float d11;  // e1 . e1
};

inline LedEdges MakeLedEdges(Chromaticity p0, Chromaticity p1, Chromaticity p2) {
  LedEdges edges;
  edges.originX = p0.x;
  edges.originY = p0.y;
  edges.e0x = p2.x - p0.x;
  edges.e0y = p2.y - p0.y;
  edges.e1x = p1.x - p0.x;
  edges.e1y = p1.y - p0.y;
  edges.d00 = edges.e0x * edges.e0x + edges.e0y * edges.e0y;
  edges.d01 = edges.e0x * edges.e1x + edges.e0y * edges.e1y;
  edges.d11 = edges.e1x * edges.e1x + edges.e1y * edges.e1y;
  return edges;
}

// The 32-bit dot products of the two edges with q - p0.
struct TargetDots {
  float d02;  // e0 . (q - p0)
  float d12;  // e1 . (q - p0)
};

inline TargetDots MakeTargetDots(const LedEdges& edges, Chromaticity q) {
  const float e2x = q.x - edges.originX;
  const float e2y = q.y - edges.originY;
  return {edges.e0x * e2x + edges.e0y * e2y, edges.e1x * e2x + edges.e1y * e2y};
}

// The target-independent quantities of one LED's triangle for the full
// test: the 32-bit edges, the dot products widened to 64-bit, and the
// 64-bit weight factor.
struct LedFrame {
  LedEdges edges;
  double d00;
  double d01;
  double d11;
  double inv;  // 1 / (d11 * d00 - d01 * d01); infinite or NaN for a degenerate triangle
};

inline LedFrame MakeLedFrame(Chromaticity p0, Chromaticity p1, Chromaticity p2) {
  LedFrame frame;
  frame.edges = MakeLedEdges(p0, p1, p2);
  frame.d00 = static_cast<double>(frame.edges.d00);
  frame.d01 = static_cast<double>(frame.edges.d01);
  frame.d11 = static_cast<double>(frame.edges.d11);
  frame.inv = 1.0 / (frame.d11 * frame.d00 - frame.d01 * frame.d01);
  return frame;
}

// Whether q lies in the frame's triangle, boundary included. A degenerate
// triangle gives infinite or NaN weights, and one of the tests fails.
//
// The weights must satisfy 0 <= u <= 1, 0 <= v <= 1 and u + v <= 1. Once u
// and v are non-negative, u > 1 or v > 1 already makes the rounded u + v
// exceed 1 (adding a non-negative value never rounds below the larger
// operand), so the upper bounds decide nothing and are not tested; a NaN
// weight fails the >= tests. Without branches the count's loop vectorises.
inline bool FrameContains(const LedFrame& frame, Chromaticity q) {
  const TargetDots dots = MakeTargetDots(frame.edges, q);
  const double d02 = static_cast<double>(dots.d02);
  const double d12 = static_cast<double>(dots.d12);
  const double u = (frame.d11 * d02 - d12 * frame.d01) * frame.inv;
  const double v = (d12 * frame.d00 - d02 * frame.d01) * frame.inv;
  const int inside = static_cast<int>(u >= 0.0) & static_cast<int>(v >= 0.0) &
                     static_cast<int>(u + v <= 1.0);
  return inside != 0;
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
