// A screen: the three primaries of one measurement, each combined once from
// its X, Y and Z meters into luminance and chromaticity planes, so that a
// host can search, count and judge it as often as it likes without handing
// the meters over again, and can free each primary's meters as soon as
// that primary is set (its peak memory then stays near the size of the
// measurement).
//
// Results through a screen are bit-identical to those of AimhueSearch,
// AimhueCalcPercentNG, AimhueJudgeNG and AimhueCalcPercentOfTarget given
// the same meters: the same combination, search and count run on them.
//
// Statuses are those of <aimhue/status.h>; nothing is thrown across the
// interface (an exception, such as memory exhausted, is logged as
// "<Function>--Error :: exception: ..." and reported as 9). A failed call
// leaves its outputs and the screen unchanged. A screen, like a handle, has
// no lock: calls on one screen must not overlap.
#ifndef AIMHUE_SCREEN_H_
#define AIMHUE_SCREEN_H_

#include <aimhue/api.h>
#include <aimhue/export.h>
#include <aimhue/target.h>

#include <cstdint>

namespace aimhue {
struct Screen;
}  // namespace aimhue

// Opaque pointer to one screen.
typedef aimhue::Screen* AimhueScreen;

extern "C" {

// Allocates an empty screen (no primary set) and stores it in *out.
// Status: 1 when `out` is null; 9 when memory is exhausted (*out is then
// null).
AIMHUE_EXPORT int AimhueCreateScreen(AimhueScreen* out);

// Frees the screen and its planes; a null screen is ignored.
AIMHUE_EXPORT void AimhueDestroyScreen(AimhueScreen screen);

// Combines one primary's meter triple (X, Y, Z meters, as the computing
// functions of <aimhue/api.h> take them; a blue primary may pass a null Z
// meter) into the screen's planes for `colour`, replacing what that colour
// held. The screen keeps its own copy of every plane it needs, so the
// meters may be freed or changed afterwards.
// Status, in order: 1 for a null screen or null `triple`; 9 when `colour`
// is not kRed, kGreen or kBlue ("AimhueScreenSetPrimary--Error :: colour
// ... is not a primary"); the combination's status (1, 6, 9, 12, with its
// own message); 9 when the meters carry another colour code than `colour`
// ("... meters of colour ... given as colour ..."), or when the planes'
// size differs from that of another primary already set ("... planes of
// R x C on a screen of R x C").
AIMHUE_EXPORT int AimhueScreenSetPrimary(AimhueScreen screen, uint32_t colour,
                                         const aimhue::LedMeter* const* triple);

// AimhueScreenSetPrimary for a host that loaded the meters only to combine
// them: the screen takes the meters' value planes over instead of copying
// them. When each of the three meters alone holds its value plane (no
// other matrix shares it) and the plane's rows follow one another, the
// chromaticities are written over the X and Z planes and the Y plane
// becomes the luminance plane: nothing is allocated, and the peak memory of
// a host that loads one primary at a time stays at the size of its meters.
// Otherwise (a shared plane, a view with gaps between rows, a blue primary
// without a Z meter) the planes are copied as AimhueScreenSetPrimary does.
// The results are the same bits either way. On success the three meters'
// value planes (`chroma`) are empty and everything else of the meters stays;
// on failure the meters are unchanged.
// Status: that of AimhueScreenSetPrimary, with every check made before a
// meter is touched; its messages name "AimhueScreenTakePrimary".
AIMHUE_EXPORT int AimhueScreenTakePrimary(AimhueScreen screen, uint32_t colour,
                                          aimhue::LedMeter* const* triple);

// The screen's size in LEDs: rows and columns of its planes.
// Status: 1 for a null pointer; 12 while no primary is set (outputs
// unchanged).
AIMHUE_EXPORT int AimhueScreenSize(AimhueScreen screen, int32_t* rows, int32_t* cols);

// Read-only access to the planes of one primary on the screen, so that a
// host can show or check the combined measurement (a chromaticity plot, a
// plausibility check) without combining the meters a second time.
struct AimhueScreenPlanes {
  const float* L;  // luminance: the Y meter's values
  const float* x;  // chromaticity x = X / (X + Y + Z), in 32-bit floats
  const float* y;  // chromaticity y = Y / (X + Y + Z)
  int32_t rows;    // each plane holds rows x cols floats, row after row,
  int32_t cols;    // with no gap between rows
};

// Fills *out with the planes of `colour` (kRed, kGreen or kBlue). A dead
// LED (X = Y = Z = 0) has L = 0 and x = y = NaN (0 / 0). The pointers stay
// valid, and the planes unchanged, until that colour is set again or the
// screen is destroyed; they must not be written through.
// Status: 1 for a null screen or `out`; 9 when `colour` is not a primary;
// 12 when that primary is not set (*out unchanged).
AIMHUE_EXPORT int AimhueGetScreenPlanes(AimhueScreen screen, uint32_t colour,
                                        AimhueScreenPlanes* out);

// The functions below need all three primaries: while any is missing they
// return 12 ("<Function>--Error :: the screen has no <colour> primary").

// The target search on the screen, as AimhueSearch. Status: 1 for a null
// handle or screen; 12 for a missing primary; the search's status.
AIMHUE_EXPORT int AimhueSearchScreen(AimhueHandle handle, AimhueScreen screen);

// Stores the NG limit from the screen's coverage of the handle's targets,
// as AimhueCalcPercentNG, and writes that coverage to *out_coverage when it
// is not null. Status: 1 for a null handle or screen; 12 for a missing
// primary; the count's status (limit and coverage unchanged on failure).
AIMHUE_EXPORT int AimhueCalcPercentNGScreen(AimhueHandle handle, AimhueScreen screen,
                                            aimhue::Coverage* out_coverage);

// Judges the screen against the handle's NG limit, as AimhueJudgeNG:
// *out_ng becomes true when the limit is greater than the coverage of all
// three targets. The coverage it measured goes to *out_coverage when that
// is not null. Status: 1 for a null handle, screen or `out_ng`; 12 for a
// missing primary; otherwise 0 with both outputs written.
AIMHUE_EXPORT int AimhueJudgeNGScreen(AimhueHandle handle, AimhueScreen screen, bool* out_ng,
                                      aimhue::Coverage* out_coverage);

// The coverage of a caller's twelve-float target block on the screen, as
// AimhueCalcPercentOfTarget (only the x, y of red, green and blue are read;
// `mask` as there, null for every LED), and where the misses are.
// `out_coverage` (nullable) receives the four fractions. `out_misses`
// (nullable) receives one byte per LED, rows x cols row by row: the Colour
// bits (kRed, kGreen, kBlue) of the targets whose triangle the LED's own
// gamut does not hold, by the same rule as the count. An LED that the mask
// leaves out gets 0 (it is not counted, so it misses nothing); an LED whose
// gamut has no area or a NaN chromaticity (a dead LED) holds no target and
// gets all three bits. So, over the counted LEDs, the fraction without the
// kRed bit is the red coverage, and so on.
// Status, in order: 1 for a null screen or null `targets`; 12 for a missing
// primary; the mask's 7, 5 or 6 as for AimhueCalcPercentOfTarget; 13 when
// `out_misses` is given and misses_size < rows x cols; 9 when the mask's
// size differs from the screen's. Nothing is written unless the status is 0.
AIMHUE_EXPORT int AimhueCalcScreenCoverage(AimhueScreen screen, const float* targets,
                                           const AimhueImage* mask,
                                           aimhue::Coverage* out_coverage, uint8_t* out_misses,
                                           uint64_t misses_size);

}  // extern "C"

#endif  // AIMHUE_SCREEN_H_
