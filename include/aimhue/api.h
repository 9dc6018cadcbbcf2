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

#include <cstdint>

namespace aimhue {
struct Aimhue;
class LedMeter;
}  // namespace aimhue

// Opaque pointer to one engine record.
typedef aimhue::Aimhue* AimhueHandle;

// A mask image that restricts AimhueCalcPercentOfTarget to a region: one
// byte per LED, 0 for an LED that is left out, anything else for one that
// counts. The pixels are copied; the caller keeps its buffer.
//
// `type` is an OpenCV-style element type code, depth + 8 x (channels - 1)
// (depth 0 = 8-bit unsigned, 1 = 8-bit signed, 2 = 16-bit unsigned,
// 3 = 16-bit signed, 4 = 32-bit signed, 5 = 32-bit float, 6 = 64-bit float);
// only 0 (8-bit unsigned, one channel) is accepted.
//
// The descriptor is consistent when
//   size == channels x (1 << (depth / 2)) x rows x cols
// with channels = type / 8 + 1 and depth = type % 8, and either `data` is
// non-null with rows >= 1, cols >= 1 and size != 0, or `data` is null with
// rows <= 0, cols <= 0 and size == 0. A negative `type` is inconsistent.
struct AimhueImage {
  int32_t rows;
  int32_t cols;
  int32_t type;
  uint32_t size;        // bytes at `data`
  const void* data;     // rows one after another, no gap between rows
};

// Everything an engine handle holds, read in one call by AimhueGetResults.
struct AimhueResults {
  aimhue::TargetLxy targets[4];      // the target block, as AimhueGet: red, green, blue, white
  aimhue::TargetLxy searchStart[4];  // the search's first stage: the primaries' means
  aimhue::TargetLxy searchEnd[4];    // the search's final points
  float fractions[4];                // interpolation fractions (AimhueSetPercentCalcChroma)
  float percentEnd[4];               // required coverage red, green, blue, all
  float ngLimit;                     // NG limit (AimhueCalcPercentNG or a load)
  float ngThresh;                    // NG threshold (AimhueSetNGThresh)
  float whiteScale;                  // the gain cap of AimhueCalcWhite without `flag`
  // LEDs that the last search's outlier mask excluded because of each
  // primary (red, green, blue), counted over the search's working LEDs
  // (every LED of a screen of at most 100000, else the subsample); an LED
  // far out in two primaries counts in both. -1 when no search has run on
  // the handle since it was created or loaded (the counts are not saved).
  int32_t outliers[3];
};

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

// Copies everything the handle holds into *out (see AimhueResults).
// Status: 1 for a null handle or null `out`.
AIMHUE_EXPORT int AimhueGetResults(AimhueHandle handle, AimhueResults* out);

// Replaces the target block with a caller's twelve floats (red, green,
// blue, white, each L, x, y; the layout AimhueGet returns), so that a host
// can calibrate to a gamut of its own and then use the white point, NG and
// persistence functions on it. Both search results and the settings are
// kept. Status: 1 for a null handle or null `targets`; 9 when any of the
// twelve is not finite or a point's y is not greater than 0 (logged as
// "AimhueSetTargets--Error :: ..."), with nothing stored.
AIMHUE_EXPORT int AimhueSetTargets(AimhueHandle handle, const float* targets);

// The NG rules on a coverage the host has already measured, so that a host
// that reports the coverage, stores the NG limit and judges the same
// measurement counts only once (for example with AimhueCalcScreenCoverage
// of the handle's targets, which also gives the per-LED misses).
// AimhueSetNGLimitFromCoverage stores coverage->all minus the NG threshold
// as the NG limit, as AimhueCalcPercentNG does after its own count;
// AimhueJudgeCoverage sets *out_ng to whether the handle's NG limit is
// greater than coverage->all, as AimhueJudgeNG does. Only coverage->all is
// read. Status: 1 for a null pointer; 9 when coverage->all is not a number
// in [0, 1] (a NaN from a count over no LED, for instance), logged as
// "<Function>--Error :: coverage of all three targets ... is not in [0, 1]",
// with the limit and *out_ng unchanged.
AIMHUE_EXPORT int AimhueSetNGLimitFromCoverage(AimhueHandle handle,
                                               const aimhue::Coverage* coverage);
AIMHUE_EXPORT int AimhueJudgeCoverage(AimhueHandle handle, const aimhue::Coverage* coverage,
                                      bool* out_ng);

// The computing functions below take each primary as a meter triple: a
// pointer to an array of three LedMeter pointers, the CIE X, Y and Z meters
// of that primary in that order (a colour-4 primary may pass a null Z
// meter). Each triple is checked and combined into luminance and
// chromaticity planes, red first, then green, then blue; the first failing
// combination's status is returned (1 when all three meters of a triple are
// null, otherwise the meter check's 1, 9 or 12). The combined planes are
// released before the function returns.
//
// An exception from inside (memory exhausted on a huge screen) never
// reaches the caller: it is logged as "<Function>--Error :: exception: ..."
// and reported as 9. The engine record may then hold partial results.

// Rescales the three target luminances by `scale` and balances them to the
// wanted white's x, y (its L is ignored); writes the white point. `flag` > 0
// leaves the gains uncapped, otherwise they are scaled down together so that
// none exceeds 1.1. Status: 1 for a null handle or null `white`; otherwise
// always 0, even when the engine refuses the scale (outside (0, 1.0]) and
// changes nothing.
AIMHUE_EXPORT int AimhueCalcWhite(AimhueHandle handle, float scale, const aimhue::TargetLxy* white,
                                  int flag);

// The target search over three combined primaries; stores both search
// results and the targets (their luminances are set afterwards by
// AimhueSetPercentCalcChroma). Status: 1 for a null handle, 9 when `count`
// is not 3 (before any meter is read), the first combination error, or the
// search's status.
AIMHUE_EXPORT int AimhueSearch(AimhueHandle handle, const aimhue::LedMeter* const* red,
                               const aimhue::LedMeter* const* green,
                               const aimhue::LedMeter* const* blue, int count);

// Measures the coverage of the current targets on this screen and stores
// the NG limit: the coverage of all three minus the NG threshold. Status as
// AimhueSearch, then the count's status (the limit is kept on failure).
AIMHUE_EXPORT int AimhueCalcPercentNG(AimhueHandle handle, const aimhue::LedMeter* const* red,
                                      const aimhue::LedMeter* const* green,
                                      const aimhue::LedMeter* const* blue, int count);

// Judges a new measurement: *out_ng becomes true (NG) when the stored NG
// limit is greater than the coverage of all three targets measured here.
// Status: 1 for a null handle, 9 when `count` is not 3, 1 for a null
// `out_ng`, then the first combination error; 0 when the judgement ran.
// *out_ng is written only when the status is 0. A screen whose coverage
// cannot be counted (planes of different sizes) is judged NG.
AIMHUE_EXPORT int AimhueJudgeNG(AimhueHandle handle, bool* out_ng,
                                const aimhue::LedMeter* const* red,
                                const aimhue::LedMeter* const* green,
                                const aimhue::LedMeter* const* blue, int count);

// Coverage of a caller's target block (twelve floats, red, green, blue,
// white, each L, x, y; only the x, y of the first three are read) on a
// screen: out_percent receives four fractions, red, green, blue and all
// three. A non-null `mask` restricts the count to its non-zero bytes; it
// must have the LED planes' size. Needs no handle.
// Status, in order: 9 when `count` is not 3; 1 for null `targets` or
// `out_percent`; the first combination error; for the mask 7 when
// inconsistent, 5 when it has no data, 6 when its type is not 0; then the
// count's status (9 when the mask's size differs from the planes').
// out_percent is written only on success. A mask of zeros gives four NaN
// fractions with status 0.
AIMHUE_EXPORT int AimhueCalcPercentOfTarget(const aimhue::LedMeter* const* red,
                                            const aimhue::LedMeter* const* green,
                                            const aimhue::LedMeter* const* blue,
                                            const float* targets, float* out_percent,
                                            const AimhueImage* mask, int count);

// Saves or loads the results (interpolation fractions, NG limit, targets and
// both search results) as a 169-byte ".aimhue" file. The NG threshold, the
// required coverage and the tuning constants are not stored; a load keeps
// the handle's own.
// Status: 1 for a null handle or null `filename`; 8 when the name does not
// end in ".aimhue" (or is only that); 4 (save) or 2 (load) when the file
// cannot be opened; for a load, 10 when the first byte is not 'L' and 3 when
// the version is not 1 or the file is shorter than 169 bytes. A refused load
// leaves the handle unchanged.
AIMHUE_EXPORT int AimhueSave(AimhueHandle handle, const char* filename);
AIMHUE_EXPORT int AimhueLoad(AimhueHandle handle, const char* filename);

// The same 169 bytes through a caller's buffer.
// AimhueToBuffer: 1 for a null handle, buffer or size; 13 when *size < 169
// (buffer and *size untouched); otherwise writes 169 bytes and sets *size.
// AimhueFromBuffer: 1 for a null handle or buffer, 9 for a negative size,
// then 10 and 3 as for AimhueLoad; a refused load leaves the handle
// unchanged.
// AimhueGetBufferSize: 1 for a null handle or size; otherwise *size = 169.
AIMHUE_EXPORT int AimhueToBuffer(AimhueHandle handle, char* buffer, uint64_t* size);
AIMHUE_EXPORT int AimhueFromBuffer(AimhueHandle handle, const char* buffer, int64_t size);
AIMHUE_EXPORT int AimhueGetBufferSize(AimhueHandle handle, uint64_t* size);

// Stacks two measurements of the same screen: out's state and chroma planes
// become top's with bottom's below them, and out takes top's colour and
// measurement type. out's position plane and descriptive records are left as
// they were; `out` may be `top` or `bottom`.
// Status 9, with out untouched, when the chroma planes' column counts differ
// ("LedMeter::Check--Error in LedMeter input cols"), the types differ
// ("LedMeter::Check--Error in LedMeter input type"), the colours differ
// ("LedMeter::Check--Error in LedMeter input color"), or the planes cannot
// be stacked (state planes of different widths or element types; logged as
// an exception). Status 1 for a null pointer.
AIMHUE_EXPORT int AimhueVConcatMeter(const aimhue::LedMeter* top, const aimhue::LedMeter* bottom,
                                     aimhue::LedMeter* out);

}  // extern "C"

#endif  // AIMHUE_API_H_
