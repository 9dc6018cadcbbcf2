// A cheaper, 32-bit form of the LED gamut test (led_gamut.h) that answers
// only where its answer is certain to be FrameContains' own, and otherwise
// says "unsure" so that the caller runs FrameContains.
//
// Why it is safe. Let A = d11 d02, B = d12 d01, C = d12 d00, D = d02 d01,
// E = d11 d00, F = d01 d01 be the exact products of the 32-bit dot products
// (the same floats the full test widens), NU = A - B, NV = C - D,
// DET = E - F and W = DET - NU - NV. In 64-bit each such product is exact
// and each difference is rounded once, so the full test's nu, nv and det
// carry the signs of NU, NV and DET. For finite inputs with DET > 0 its
// weight factor 1 / det is finite and positive, and no weight underflows
// to zero (a non-zero product above is at least 2^-298 in size, a
// determinant at most 2^257), so u and v carry the signs of NU and NV; and
// when both are non-negative, u + v is within a relative 2^-50 of
// (NU + NV) / DET. Hence, when DET > 0, the full test says "inside" if
// NU >= 0, NV >= 0 and W >= 2^-45 DET, and "outside" if NU < 0, NV < 0 or
// W <= -2^-45 DET.
//
// Here the same quantities are formed in 32-bit floats. With
// S = |A| + |B| + |C| + |D| + |E| + |F|, each product is off by at most
// 2^-24 of itself (plus 2^-150 should it underflow) and each subtraction by
// 2^-24 of its result, so the 32-bit NU, NV, DET and W are each within
// 4.1 * 2^-24 S (+ 10 * 2^-150) of the exact values. The tolerance
// 2^-20 S + 2^-125 (formed with S rounded a few times, still far above
// that) exceeds the error by more than 2^-45 S >= 2^-45 DET, so a value
// beyond the tolerance has the sign, and the margin, the full test needs.
// A tolerance of 2^80 or more (large or infinite inputs), a NaN, or an LED
// whose DET is not clearly positive leaves the answer unsure.
#ifndef AIMHUE_SRC_ENGINE_QUICK_GAMUT_H_
#define AIMHUE_SRC_ENGINE_QUICK_GAMUT_H_

#include <cmath>
#include <cstdint>

#include "engine/led_gamut.h"
#include "engine/percent_of_target.h"

namespace aimhue {

// The quick test's view of one LED: its 32-bit edges and the LED's parts
// of the quantities above.
struct QuickFrame {
  LedEdges edges;
  float det;        // d11 d00 - d01 d01
  float ledSum;     // d11 d00 + d01 d01, the LED's share of S
  float weight02;   // d11 + |d01|: |A| + |D| = |d02| weight02
  float weight12;   // d00 + |d01|: |B| + |C| = |d12| weight12
  int32_t regular;  // DET certainly positive and nothing overflows
};

constexpr float kQuickRelative = 0x1p-20f;
constexpr float kQuickAbsolute = 0x1p-125f;
constexpr float kQuickLimit = 0x1p80f;

inline QuickFrame MakeQuickFrame(Chromaticity p0, Chromaticity p1, Chromaticity p2) {
  QuickFrame frame;
  frame.edges = MakeLedEdges(p0, p1, p2);
  const LedEdges& e = frame.edges;
  const float productE = e.d11 * e.d00;
  const float productF = e.d01 * e.d01;
  frame.det = productE - productF;
  frame.ledSum = productE + productF;
  const float tolerance = frame.ledSum * kQuickRelative + kQuickAbsolute;
  frame.regular = static_cast<int32_t>(frame.det > tolerance) &
                  static_cast<int32_t>(tolerance < kQuickLimit);
  const float magnitude01 = std::fabs(e.d01);
  frame.weight02 = e.d11 + magnitude01;
  frame.weight12 = e.d00 + magnitude01;
  return frame;
}

// Whether q lies in the frame's triangle: 1 inside, 0 outside, each
// certain to agree with FrameContains when `sure` comes back 1; when it
// comes back 0 the answer means nothing.
inline int32_t QuickContains(const QuickFrame& frame, Chromaticity q, int32_t& sure) {
  const LedEdges& e = frame.edges;
  const TargetDots dots = MakeTargetDots(e, q);
  const float nu = e.d11 * dots.d02 - dots.d12 * e.d01;
  const float nv = dots.d12 * e.d00 - dots.d02 * e.d01;
  const float w = frame.det - nu - nv;
  const float sum =
      std::fabs(dots.d02) * frame.weight02 + std::fabs(dots.d12) * frame.weight12 + frame.ledSum;
  const float tolerance = sum * kQuickRelative + kQuickAbsolute;
  // The smallest of nu, nv, w; a NaN in nu or nv reaches w, and w is taken
  // last so that a NaN survives.
  const float least = nu < nv ? nu : nv;
  const float smallest = least < w ? least : w;
  const int32_t usable = frame.regular & static_cast<int32_t>(tolerance < kQuickLimit);
  const int32_t inside = static_cast<int32_t>(smallest >= tolerance);
  const int32_t outside = static_cast<int32_t>(smallest < -tolerance);
  sure = usable & (inside | outside);
  return inside;
}

}  // namespace aimhue

#endif  // AIMHUE_SRC_ENGINE_QUICK_GAMUT_H_
