// The meters of one measurement (red, green, blue; each X, Y, Z), as the
// tool loads them from ".meter" files or gets them from the synthetic
// screen generator, the handling of dead LEDs, and their combination into
// a screen one primary at a time.
#ifndef AIMHUE_TOOLS_METER_SET_H_
#define AIMHUE_TOOLS_METER_SET_H_

#include <aimhue/dead_leds.h>
#include <aimhue/led_meter.h>
#include <aimhue/screen.h>
#include <aimhue/target.h>

#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include <opencv2/core.hpp>

#include "arguments.h"
#include "engine_handle.h"
#include "report.h"

namespace aimhue {
namespace tool {

// One primary's X, Y and Z meters.
using PrimaryMeters = std::array<LedMeter, 3>;
// Red, green, blue; each X, Y, Z.
using MeterFiles = std::array<std::array<std::string, 3>, kPrimaryCount>;
// All nine meters of a measurement, for the steps that need them at once
// (the per-LED correction): red, green, blue; each X, Y, Z.
using Meters = std::array<PrimaryMeters, kPrimaryCount>;

// The three meter pointers of one primary in the order the library takes
// them (X, Y, Z).
struct MeterTriple {
  std::array<const LedMeter*, 3> pointers{};
  const LedMeter* const* get() const { return pointers.data(); }
};
MeterTriple Triple(const Meters& meters, int primary);

// The LED columns and rows of the red X meter's chroma plane.
ScreenSize MeterScreen(const Meters& meters);

// Ends the command (CommandError, exit status 3) unless `meter`, loaded
// from `file`, holds the colour code of `primary` (0, 1, 2: red, green,
// blue) and the type of `axis` (0, 1, 2: CIE_X, CIE_Y, CIE_Z). The library
// takes a triple's roles by position and checks only that the types
// differ, so swapped X and Y files or another primary's files would
// otherwise give targets of no use.
void CheckMeterRole(const LedMeter& meter, const std::string& file, int primary, int axis);

// Loads one primary's three files and checks each one's role. A library
// status other than 0 or a meter in the wrong place ends the command
// (CommandError, exit status 3) naming the file.
PrimaryMeters LoadPrimary(const MeterFiles& files, int primary);

// Loads all nine files (LoadPrimary for each primary).
Meters LoadMeters(const MeterFiles& files);

// A short description of the files for reports: "meter files in DIR" when
// the nine share a folder, otherwise their names separated by blanks.
std::string DescribeMeterFiles(const MeterFiles& files);

// FixDeadLeds on the three meters: counts the dead LEDs and, when `repair`
// holds, marks and repairs them. A library status other than 0 ends the
// command (CommandError, exit status 3).
DeadLedCounts HandleDeadLeds(PrimaryMeters& meters, bool repair);

// At most `limit` chromaticities (x, y) of a primary's planes on the
// screen, taken at a regular stride in row-major order; LEDs without a
// finite chromaticity (dead LEDs) are left out. The gamut plot's sample.
std::vector<cv::Point2f> SampleChromaticities(const AimhueScreenPlanes& planes, std::size_t limit);

// A measurement combined into a screen, with what the reports need from
// the meters, which are gone by then.
struct MeasuredScreen {
  ScreenHandle screen;
  ScreenSize size;
  DeadLedSummary dead;
  std::array<std::vector<cv::Point2f>, kPrimaryCount> leds;  // plot sample per primary
};

// Builds the screen one primary at a time: `primary(p)` gives primary p's
// meters (red, green, blue in turn); their dead LEDs are counted (and
// repaired when `repair` holds), the primary is set on the screen
// (AimhueScreenTakePrimary), and from the screen's planes implausible values
// are reported on standard error and a sample of at most `plotted_leds`
// chromaticities is kept for the gamut plot. The meters are freed before the next primary
// is read, so the peak memory stays near the measurement's size.
MeasuredScreen MeasureScreen(const std::function<PrimaryMeters(int)>& primary, bool repair,
                             std::size_t plotted_leds);

}  // namespace tool
}  // namespace aimhue

#endif  // AIMHUE_TOOLS_METER_SET_H_
