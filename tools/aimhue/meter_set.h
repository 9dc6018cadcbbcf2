// The nine meters of one measurement (red, green, blue; each X, Y, Z), as
// the tool loads them from ".meter" files or gets them from the synthetic
// screen generator, and the handling of dead LEDs before a search.
#ifndef AIMHUE_TOOLS_METER_SET_H_
#define AIMHUE_TOOLS_METER_SET_H_

#include <aimhue/led_meter.h>

#include <array>
#include <cstdint>
#include <string>

#include "arguments.h"
#include "report.h"

namespace aimhue {
namespace tool {

// Red, green, blue; each X, Y, Z.
using Meters = std::array<std::array<LedMeter, 3>, 3>;
using MeterFiles = std::array<std::array<std::string, 3>, 3>;

// The three meter pointers of one primary in the order the library takes
// them (X, Y, Z).
struct MeterTriple {
  std::array<const LedMeter*, 3> pointers{};
  const LedMeter* const* get() const { return pointers.data(); }
};
MeterTriple Triple(const Meters& meters, int primary);

// Ends the command (CommandError, exit status 3) unless `meter`, loaded
// from `file`, holds the colour code of `primary` (0, 1, 2: red, green,
// blue as 1, 2, 4) and the type of `axis` (0, 1, 2: CIE_X, CIE_Y, CIE_Z).
// The library takes a triple's roles by position and checks only that the
// types differ, so swapped X and Y files or another primary's files would
// otherwise give targets of no use.
void CheckMeterRole(const LedMeter& meter, const std::string& file, int primary, int axis);

// Loads the nine files and checks each one's role. A library status other
// than 0 or a meter in the wrong place ends the command (CommandError, exit
// status 3) naming the file.
Meters LoadMeters(const MeterFiles& files);

// The LED columns and rows of the red X meter's chroma plane.
ScreenSize MeterScreen(const Meters& meters);

// A short description of the files for reports: "meter files in DIR" when
// the nine share a folder, otherwise their names separated by blanks.
std::string DescribeMeterFiles(const MeterFiles& files);

// Counts each primary's LEDs with implausible measured values and warns on
// standard error (WarnImplausibleLeds).
void WarnImplausibleMeters(const Meters& meters);

// LEDs of each primary whose X, Y and Z are all 0. Such an LED has no
// chromaticity (0 / 0), and the search would average its NaN into every
// mean. A primary whose three chroma planes are not 32-bit float planes of
// one size counts 0: the library reports that mismatch itself.
std::array<int64_t, 3> CountDeadLeds(const Meters& meters);

// Counts the dead LEDs and, when `repair` holds, marks them in the state
// planes of their three meters (bit 0; a state plane that is empty or of
// another size is replaced by zeros first) and replaces their values by the
// 3 x 3 median of their neighbours (LedMeter::FixDeadPoint). LEDs already
// marked in a state plane are repaired too. A dead LED inside a cluster of
// dead LEDs may stay dead; `remaining` counts them.
DeadLedSummary HandleDeadLeds(Meters& meters, bool repair);

}  // namespace tool
}  // namespace aimhue

#endif  // AIMHUE_TOOLS_METER_SET_H_
