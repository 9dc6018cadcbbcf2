// Target points and coverage fractions as the engine reads and writes them.
#ifndef AIMHUE_TARGET_H_
#define AIMHUE_TARGET_H_

namespace aimhue {

// One target point: luminance and CIE 1931 chromaticity, 32-bit floats.
// A target block is four of them, always red, green, blue, white; seen as
// twelve consecutive floats it reads red L, x, y, green L, x, y, ...
struct TargetLxy {
  float L;
  float x;
  float y;
};

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
