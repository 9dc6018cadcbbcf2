// Dead LEDs: LEDs that gave no light at all in a measurement, so that their
// X, Y and Z values are all 0 and they have no chromaticity (0 / 0). Left
// in, a dead LED's NaN chromaticity would enter every mean of the target
// search; the usual answer is to mark it and replace its values by those of
// its neighbours before the search.
#ifndef AIMHUE_DEAD_LEDS_H_
#define AIMHUE_DEAD_LEDS_H_

#include <aimhue/export.h>
#include <aimhue/led_meter.h>

#include <cstdint>

namespace aimhue {

// The bit of a meter's state byte that marks a dead LED
// (LedMeter::FixDeadPoint repairs the LEDs that carry it).
constexpr uint8_t kDeadLedBit = 0x1;

// What FixDeadLeds found.
struct DeadLedCounts {
  int64_t found = 0;      // LEDs whose X, Y and Z are all 0
  int64_t remaining = 0;  // of those, still dead after the repair (found without one)
};

// Finds the dead LEDs of one primary: the LEDs whose values are 0 in all
// three meters of `triple` (X, Y, Z, as the computing functions take a
// primary; a null Z meter counts as zeros, as for a blue primary). When
// `repair` holds and there are any, it marks each one in the state plane of
// every meter of the triple (kDeadLedBit; a state plane that is empty or
// not an 8-bit plane of the values' size is replaced by zeros first) and
// repairs every meter with LedMeter::FixDeadPoint: each marked LED takes the
// 3 x 3 median of its neighbourhood. LEDs already marked in a state plane
// are repaired with them. A dead LED inside a cluster of dead LEDs can
// stay dead; `remaining` counts those still dead afterwards. The work is
// one pass over the values plus, for a repair, work in proportion to the
// dead LEDs and one more pass to count what remains.
// Planes that are not 32-bit float planes of one size hold no dead LED:
// the counts are 0 and nothing changes (the combination of the meters
// reports that mismatch with its own status and message).
// Status: 1 for a null `triple`, `out`, X or Y meter; otherwise
// FixDeadPoint's status (the meters repaired before it stay repaired).
// *out is written on success only.
AIMHUE_EXPORT int FixDeadLeds(LedMeter* const* triple, bool repair, DeadLedCounts* out);

}  // namespace aimhue

#endif  // AIMHUE_DEAD_LEDS_H_
