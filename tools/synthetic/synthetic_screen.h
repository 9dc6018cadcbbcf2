// Synthetic LED screens: per-LED X, Y, Z measurements of the three
// primaries, with the spread of a real screen (per-panel offsets, per-LED
// noise, a few outliers and dead LEDs), all derived from one seed.
#ifndef AIMHUE_TOOLS_SYNTHETIC_SYNTHETIC_SCREEN_H_
#define AIMHUE_TOOLS_SYNTHETIC_SYNTHETIC_SCREEN_H_

#include <aimhue/led_meter.h>

#include <array>
#include <cstdint>

#include <opencv2/core.hpp>

namespace aimhue::synthetic {

// Colour codes of the meters of each primary.
constexpr uint32_t kRedColor = 1;
constexpr uint32_t kGreenColor = 2;
constexpr uint32_t kBlueColor = 4;

struct PrimaryOptions {
  float x;          // typical chromaticity of the primary
  float y;
  float luminance;  // typical Y (luminance) of one LED
};

struct ScreenOptions {
  int rows = 1080;           // LED rows of the screen
  int cols = 1920;           // LED columns
  int moduleRows = 60;       // LED rows of one panel (module)
  int moduleCols = 80;       // LED columns of one panel
  uint64_t seed = 1;
  // Red, green, blue.
  std::array<PrimaryOptions, 3> primaries = {{{0.690f, 0.300f, 300.0f},
                                              {0.170f, 0.720f, 900.0f},
                                              {0.135f, 0.050f, 80.0f}}};
  float moduleSpread = 0.002f;       // std. deviation of a panel's chromaticity offset
  float ledSpread = 0.0015f;         // std. deviation of an LED's chromaticity noise
  float moduleLuminanceSpread = 0.03f;  // relative std. deviation of a panel's luminance
  float ledLuminanceSpread = 0.05f;     // relative std. deviation of an LED's luminance
  int outlierCount = 20;             // LEDs with one primary far from its mean
  float outlierDistance = 0.03f;     // chromaticity distance of an outlier from its LED's value
  int deadCount = 3;                 // LEDs with X = Y = Z = 0 in all three primaries
  float pixelPitch = 1.5f;           // stored in the panel record, in millimetres
};

// The luminance (Y) and chromaticity (x, y) planes of one primary as the
// generator made them: rows x cols 32-bit floats. A dead LED has luminance
// 0 and NaN chromaticity, which is what combining its zero X, Y, Z gives.
struct PrimaryPlanes {
  cv::Mat luminance;
  cv::Mat x;
  cv::Mat y;
};

// Red, green, blue.
using ScreenPlanes = std::array<PrimaryPlanes, 3>;
// Red, green, blue; each X, Y, Z.
using ScreenMeters = std::array<std::array<LedMeter, 3>, 3>;

// The planes of a screen. Chromaticity = primary + panel offset + LED noise
// (approximately normal: each deviate is the sum of four uniforms, rescaled),
// luminance = typical x (1 + panel + LED variation), clamped at a tenth of
// the typical value. The outliers are LEDs at random positions whose
// chromaticity in one random primary is moved outlierDistance in a random
// direction; the dead LEDs are at random positions (a dead LED may also be
// drawn as an outlier; it stays dead). Every value depends only on the
// options, so a seed gives the same screen on every machine. Rows, columns
// and panel sizes below 1 give empty planes.
ScreenPlanes GeneratePlanes(const ScreenOptions& options);

// The X, Y, Z tristimulus values of the planes, as the nine meters a host
// would hand over: X = x / y * Y and Z = (1 - x - y) / y * Y per LED (0 for a
// dead LED); each meter with colour kRedColor, kGreenColor or kBlueColor,
// type CIE_X, CIE_Y or CIE_Z, its chroma plane, a state plane of zeros, a
// partition covering the whole screen and a panel record of the module
// size. The Y meter's chroma plane shares the luminance plane.
ScreenMeters MetersFromPlanes(const ScreenOptions& options, const ScreenPlanes& planes);

// GeneratePlanes, then MetersFromPlanes.
ScreenMeters GenerateMeters(const ScreenOptions& options);

}  // namespace aimhue::synthetic

#endif  // AIMHUE_TOOLS_SYNTHETIC_SYNTHETIC_SCREEN_H_
