// Target points, coverage fractions and the primaries' colour codes as the
// engine reads and writes them.
#ifndef AIMHUE_TARGET_H_
#define AIMHUE_TARGET_H_

#include <cstdint>

namespace aimhue {

// The number of primaries of a screen: red, green and blue.
constexpr int kPrimaryCount = 3;

// The colour codes of the primaries, as meters carry them (LedMeter::color)
// and as the per-LED miss plane sets them: one bit per primary.
enum Colour : uint32_t { kRed = 1, kGreen = 2, kBlue = 4 };

// The bits of all three primaries.
constexpr uint32_t kAllColours = kRed | kGreen | kBlue;

// The colour code of the primary at `index` (0 red, 1 green, 2 blue), the
// order of target blocks, coverage fractions and meter triples.
constexpr Colour ColourOfPrimary(int index) { return static_cast<Colour>(1u << index); }

// The index (0, 1, 2) of a primary's colour code, or -1 for any other value
// (0, a combination of bits, an unknown code).
constexpr int PrimaryIndex(uint32_t colour) {
  return colour == kRed ? 0 : colour == kGreen ? 1 : colour == kBlue ? 2 : -1;
}

// One target point: luminance and CIE 1931 chromaticity, 32-bit floats.
// A target block is four of them, always red, green, blue, white; seen as
// twelve consecutive floats it reads red L, x, y, green L, x, y, ...
struct TargetLxy {
  float L;
  float x;
  float y;
};

// The points of a target block (red, green, blue, white) and their place in
// its twelve-float form.
enum TargetPoint : int { kRedPoint = 0, kGreenPoint = 1, kBluePoint = 2, kWhitePoint = 3 };
constexpr int kTargetPointCount = 4;
constexpr int kTargetBlockFloats = 3 * kTargetPointCount;

// Reads or writes one point of a twelve-float target block.
inline TargetLxy TargetAt(const float* block, int point) {
  return TargetLxy{block[3 * point], block[3 * point + 1], block[3 * point + 2]};
}
inline void SetTargetAt(float* block, int point, const TargetLxy& value) {
  block[3 * point] = value.L;
  block[3 * point + 1] = value.x;
  block[3 * point + 2] = value.y;
}

// Fractions of the counted LEDs whose own gamut holds the red target, the
// green target, the blue target, and all three at once.
struct Coverage {
  float red;
  float green;
  float blue;
  float all;
};

}  // namespace aimhue

#endif  // AIMHUE_TARGET_H_
