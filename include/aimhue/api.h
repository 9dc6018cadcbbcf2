// The exported interface: plain functions with C linkage around one engine
// record behind an opaque handle.
//
// Every function returns a 32-bit status (0 = success, the codes of
// <aimhue/status.h>) except AimhueDestroyHandle. Nothing is thrown across the
// interface. Argument checks run before any work, in the order documented
// for each function, and the first failing check decides the status.
//
// Calling order in which every value read has been computed:
//   AimhueCreateHandle; optional settings (AimhueSetNGThresh,
//   AimhueSetPercentEnd) or a load; AimhueSearch; AimhueSetPercentCalcChroma;
//   AimhueCalcWhite; then AimhueGet, AimhueCalcPercentNG, AimhueJudgeNG and
//   saving as needed; AimhueRelease to clear the results for another run;
//   AimhueDestroyHandle at the end. The library enforces no order.
//
// Threads: a handle is a plain record without a lock. Calls on one handle
// must not overlap; separate handles may be used from separate threads.
#ifndef AIMHUE_API_H_
#define AIMHUE_API_H_

#include <aimhue/export.h>
#include <aimhue/target.h>

namespace aimhue {
struct Aimhue;
}  // namespace aimhue

// Opaque pointer to one engine record.
typedef aimhue::Aimhue* AimhueHandle;

extern "C" {

// Allocates an engine record with its defaults and stores it in *out.
// Defaults: interpolation fractions 1, 1, 1, 1; required coverage 1, 1, 1, 1;
// NG limit 0.8; NG threshold 0.08. The target block and both search results
// are zeroed at creation, so reading them before a search or a load yields
// zeros rather than indeterminate values.
// Status: 1 when `out` is null. If the allocation fails, *out is set to null
// and the status is still 0: check *out.
AIMHUE_EXPORT int AimhueCreateHandle(AimhueHandle* out);

// Frees the record; a null handle is ignored. Using the handle afterwards is
// not detected.
AIMHUE_EXPORT void AimhueDestroyHandle(AimhueHandle handle);

// Sets the interpolation fractions and the target block (the first sixteen
// floats of the record) to 0.0 and keeps every other setting and both search
// results. Afterwards the fractions are 0.0, not their creation default 1.0.
// Status: 1 for a null handle.
AIMHUE_EXPORT int AimhueRelease(AimhueHandle handle);

// Sets the NG threshold, the allowed drop in coverage of all three targets.
// Status: 1 for a null handle or a threshold of exactly 0.0; 9 unless
// 0 < threshold <= 1.0 (nothing stored). The range test uses ordered
// comparisons, so a NaN threshold passes and is stored.
AIMHUE_EXPORT int AimhueSetNGThresh(AimhueHandle handle, float threshold);

// Sets the required coverage fractions red, green, blue and all (four
// floats). Each must lie in (0, 1.0]; they are tested in the order element 3,
// 0, 1, 2 and the first failure returns 9 with nothing stored. NaN elements
// pass and are stored. Status: 1 for a null handle or null `ends`.
AIMHUE_EXPORT int AimhueSetPercentEnd(AimhueHandle handle, const float* ends);

// Sets the interpolation fractions (four floats: red, green, blue and a
// fourth that is stored but unused) and places each primary's target between
// the search's first-stage result (fraction 0) and its final result
// (fraction 1); each primary's luminance is taken from the first-stage
// result. Out-of-range fractions (the same rule as AimhueSetPercentEnd) leave
// the record unchanged, yet the status is still 0: this function reports
// only a null handle or a null `chroma`, both with status 1. The four floats
// are read before the handle is checked.
AIMHUE_EXPORT int AimhueSetPercentCalcChroma(AimhueHandle handle, const float* chroma);

// Copies the target block (twelve floats: red, green, blue, white, each L, x,
// y) to `out_targets` and, when `out_chroma` is not null, the four
// interpolation fractions to `out_chroma`. Status: 1 for a null handle or
// null `out_targets`.
AIMHUE_EXPORT int AimhueGet(AimhueHandle handle, float* out_targets, float* out_chroma);

}  // extern "C"

#endif  // AIMHUE_API_H_
