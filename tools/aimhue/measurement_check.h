// Plausibility of measured values: a meter full of huge numbers, negative
// luminances or X, Y, Z in the wrong files still gives the library something
// to compute with, and it answers with targets of no use and no complaint.
// The tool counts such LEDs and warns, so the operator looks at the
// measurement before trusting its targets.
#ifndef AIMHUE_TOOLS_MEASUREMENT_CHECK_H_
#define AIMHUE_TOOLS_MEASUREMENT_CHECK_H_

#include <aimhue/screen.h>

#include <cstdint>
#include <ostream>
#include <string>

namespace aimhue {
namespace tool {

// LEDs of one primary, dead LEDs (X = Y = Z = 0) not counted.
struct ImplausibleLeds {
  int64_t badLuminance = 0;   // Y not a positive finite number
  int64_t outsideLocus = 0;   // chromaticity more than 0.05 outside the spectral locus
};

// Counts the LEDs of one primary from its planes on the screen. An LED
// without luminance and without chromaticity (L = 0, x and y NaN: X, Y and
// Z all 0) is dead and counted apart, not here.
ImplausibleLeds CountImplausibleLeds(const AimhueScreenPlanes& planes);

// Prints one warning line per primary that has implausible LEDs:
// "<command>: warning: red: implausible measured values in 12 of 6000 LEDs
// (luminance Y not a positive number) ...".
void WarnImplausibleLeds(std::ostream& out, const std::string& command, const char* primary,
                         const ImplausibleLeds& counts, int64_t leds);

}  // namespace tool
}  // namespace aimhue

#endif  // AIMHUE_TOOLS_MEASUREMENT_CHECK_H_
