// Per-LED correction: the 3 x 3 coefficients that mix every LED's own red,
// green and blue emitters so that it shows the targets, with the predicted
// colour differences before and after.
//
// The model. For LED i, M_i is the 3 x 3 matrix whose columns are the
// measured X, Y, Z of its red, green and blue emitters at full drive (the
// nine meter planes). The targets give T, whose column j is target primary
// j's tristimulus values from its L, x, y: X = x L / y, Y = L,
// Z = (1 - x - y) L / y. The correction C_i = M_i^-1 T maps an input drive
// (r, g, b) in [0, 1] to the LED's own emitter drives; the LED then shows
// M_i C_i (r, g, b) = T (r, g, b). Column j of C_i is the emitter mix that
// shows target j; row k is the load on emitter k.
//
// CalcCorrection, per LED, in double precision (the 32-bit inputs widened
// to double; outputs stored as 32-bit floats). Negative measured values
// (camera noise) are used as they are.
//  1. Skip an LED that is dead (bit 0 of any of its nine meters' state
//     planes, or X = Y = Z = 0 for any of its emitters; an empty state plane
//     marks no LED dead), not finite (any of its nine values NaN or
//     infinite), or singular (|det M_i| <= 1e-9 times the product of the
//     Euclidean norms of M_i's three columns). The tests run in that order
//     and a skipped LED carries exactly one of the three flags. Skipped LEDs
//     get all-zero coefficients, gain 0 and NaN colour differences; they are
//     no error as long as some LED is left.
//  2. Chroma mode: C_i = M_i^-1 T (the inverse by cofactors, in double).
//  3. Negative entries are clipped to 0. A negative entry in column j means
//     target j lies outside the LED's own gamut (the triangle of its three
//     chromaticities): the LED is flagged "red/green/blue target clipped".
//  4. Common luminance scale: r_i = the largest row sum of the clipped C_i.
//     Over the n LEDs not skipped, the quantile q of r_i by nearest rank
//     (ascending order, element ceil(q n) - 1, with the 32-bit q widened to
//     double and the product and ceiling in double) gives k = min(1, 1 /
//     that value). Every C_i is multiplied by k, and so are the target
//     luminances (`Correction::targets`).
//  5. An LED with k r_i > 1 would overdrive an emitter: its whole C_i is
//     divided by that row sum (its chromaticities stay, its luminance
//     drops), it is flagged "dimmed" and its gain is 1 / (k r_i); every
//     other LED not skipped has gain 1. The LED at the quantile's rank is
//     never dimmed, whatever the rounding: with q = 1 no LED is dimmed, and
//     at most a share 1 - q of the LEDs (rounded down) is.
//  6. Brightness mode: C_i is diagonal, C_i[j][j] = L_j / Y_ij (target
//     luminance over the LED's own Y of emitter j); an emitter whose own Y
//     is not positive gets drive 0. Steps 1, 4, 5, 7 and 8 apply as in chroma
//     mode; no "clipped" flag is set.
//  7. Fixed point (bits b in 8..16; 0 keeps floats): each coefficient
//     becomes the nearest integer n in [0, 2^b - 1] (ties to even), full
//     scale 1.0 = 2^b - 1. When rounding lets a row's integer sum exceed
//     2^b - 1, the entries of that row that were rounded up the most are
//     lowered by one until it fits, and the LED is flagged "rounding
//     repaired". `coeff` then holds n / (2^b - 1) as 32-bit floats; n is
//     recovered exactly as round(coeff * (2^b - 1)).
//  8. Prediction: the corrected LED shows P_i = M_i C_i, with the stored
//     32-bit coefficients widened to double (so quantisation shows).
//     "After": for red, green, blue (the columns of P_i) and white
//     (P_i (1, 1, 1)), the CIEDE2000 difference to the scaled target (the
//     column of k T, and k T (1, 1, 1)), both in CIELAB with k T (1, 1, 1),
//     the sum of the three scaled target primaries, as reference white (not
//     the block's white entry). "Before": the same differences for the
//     LED's own primaries and white (the columns of M_i and M_i (1, 1, 1))
//     against the medians over the LEDs not skipped: per primary the
//     component-wise median of its X, Y, Z, and for white the component-wise
//     median of the LEDs' own whites M_i (1, 1, 1), which is also the
//     reference white (the median of an even count is the mean of the two
//     middle values). That is the native non-uniformity the correction
//     removes.
#ifndef AIMHUE_CORRECTION_H_
#define AIMHUE_CORRECTION_H_

#include <aimhue/export.h>
#include <aimhue/target.h>

#include <cstdint>
#include <string>

#include <opencv2/core.hpp>

namespace aimhue {

class LedMeter;

// Chroma: the full 3 x 3 mix that shows the target chromaticities.
// Brightness: a diagonal gain per emitter that only evens out luminance.
enum class CorrectionMode : int32_t { Chroma = 0, Brightness = 1 };

// `quantile` is q of step 4, in (0, 1]; `bits` is 0 (32-bit float
// coefficients) or 8..16 (fixed point of step 7).
struct CorrectionSettings {
  float quantile = 0.999f;
  CorrectionMode mode = CorrectionMode::Chroma;
  int bits = 0;
};

// The bits of `Correction::flags`, one byte per LED.
enum CorrectionFlag : uint8_t {
  kCorrectionDead = 1,                // skipped: a state bit 0, or an emitter with X = Y = Z = 0
  kCorrectionNotFinite = 2,           // skipped: a NaN or infinite value
  kCorrectionSingular = 4,            // skipped: M_i (nearly) singular
  kCorrectionClippedRed = 8,          // the red target lies outside the LED's gamut
  kCorrectionClippedGreen = 16,       // the green target lies outside the LED's gamut
  kCorrectionClippedBlue = 32,        // the blue target lies outside the LED's gamut
  kCorrectionDimmed = 64,             // scaled down to keep every emitter within full drive
  kCorrectionRoundingRepaired = 128,  // a fixed-point row sum was lowered to full scale
};

// An LED with any of these bits was skipped: zero coefficients, gain 0, NaN
// colour differences.
constexpr uint8_t kCorrectionSkipped = kCorrectionDead | kCorrectionNotFinite | kCorrectionSingular;

// How many LEDs carry each flag; `corrected` counts the LEDs not skipped, so
// corrected + dead + notFinite + singular is the number of LEDs.
struct CorrectionCounts {
  int64_t corrected;
  int64_t dead;
  int64_t notFinite;
  int64_t singular;
  int64_t clippedRed;
  int64_t clippedGreen;
  int64_t clippedBlue;
  int64_t dimmed;
  int64_t roundingRepaired;
};

// The result of CalcCorrection; all planes have the screen's rows x cols.
struct AIMHUE_EXPORT Correction {
  cv::Mat coeff;              // CV_32FC(9); channel 3k + j = emitter k's drive for input primary j
  cv::Mat flags;              // CV_8UC1, CorrectionFlag bits
  cv::Mat gain;               // CV_32FC1: 1, 1 / row sum when dimmed, 0 when skipped
  cv::Mat deltaEBefore;       // CV_32FC4: red, green, blue, white (CIEDE2000)
  cv::Mat deltaEAfter;        // CV_32FC4
  float scale = 0.0f;         // k
  TargetLxy targets[4] = {};  // the targets with every L times k (white included)
  CorrectionSettings settings;  // the settings it was computed with
  CorrectionCounts counts = {};

  // The ".corr" file and buffer format, version 1: 'L', the version, the
  // scale, the twelve target floats, the settings (quantile, mode, bits),
  // the matrix blocks of coeff, flags, gain, deltaEBefore and deltaEAfter,
  // and the end tag 0xFFFFFFFF. Files and buffers hold the same bytes. The
  // counts are not stored: a load recounts them from the flags.
  //
  // Save: 8 when the name does not end in ".corr" (or is only that), 4 when
  // the file cannot be opened for writing; nothing is created on either.
  // Load / FromBuffer: 8 and 2 (file only) as above; 1 for a null buffer;
  // 10 when the first byte is not 'L'; 3 when the version is not 1, and
  // also, logged as "<method> -- Error data in file.", when the content
  // ends early, lacks its end tag, holds a plane of another element type or
  // size than the others, or settings out of range. Declared plane sizes are
  // checked against the bytes that remain before anything is allocated.
  // Every refusal leaves the record unchanged.
  // GetBufferSize: 1 for a null `size`, 5 when coeff is empty; otherwise the
  // content's length in bytes.
  // ToBuffer: 1 for a null buffer or size; 13 when *size is smaller than the
  // content, with the buffer and *size untouched; otherwise copies the
  // content and sets *size to its length.
  // Messages are those of the other formats, with "Correction::Load" and so
  // on as the method names. An exception inside (memory exhausted) is
  // logged and reported as 9.
  int Save(const std::string& fullname) const;
  int Load(const std::string& fullname);
  int ToBuffer(char* buffer, uint64_t* size) const;
  int FromBuffer(const char* buffer, uint64_t size);
  int GetBufferSize(uint64_t* size) const;
};

// Computes the per-LED correction of a screen (the model above).
//
// `targets` is a target block (red, green, blue, white); only the three
// primaries enter the model, the white entry is carried into the result
// with its L scaled by k. `red`, `green` and `blue` are meter triples in the
// order X, Y, Z, as the exported functions take them; their chroma planes
// must be CV_32FC1 of one size, and a state plane is either empty or
// CV_8UC1 of that size.
//
// Logs "CalcCorrection" on entry. Status, the first failing check deciding:
//  1  a null `targets`, triple, meter or `out`;
//  12 a meter whose chroma plane is empty;
//  9  chroma planes of different sizes or not CV_32FC1, a state plane of
//     another size or type; a primary target with L <= 0, y <= 0 or a value
//     not finite, or three targets whose tristimulus columns are (nearly)
//     linearly dependent (|det T| <= 1e-9 times the product of its column
//     norms); a quantile not in (0, 1] (NaN included), a mode other than the
//     two, bits not 0 or 8..16;
//  5  no LED left after step 1 (every LED skipped);
//  and 9 with "exception" when memory runs out.
// A failure logs one line "CalcCorrection--Error :: <text>" and leaves
// *out unchanged. On success *out is replaced whole.
//
// A target outside every LED's gamut is no error: every LED is then flagged
// clipped for it and the counts say so.
//
// Memory: the result's planes (73 bytes per LED, about 2.0 times the nine
// 32-bit input planes) and one double per LED of working space (the row
// sums, then the values each median selects from), so about 2.25 times the
// input planes in all; nothing else grows with the screen. Each LED is
// solved once; its coefficients wait in its own result slots until the
// common scale is known. The quantile and medians are selections, not
// sorts.
AIMHUE_EXPORT int CalcCorrection(const TargetLxy targets[4], const LedMeter* const red[3],
                                 const LedMeter* const green[3], const LedMeter* const blue[3],
                                 const CorrectionSettings& settings, Correction* out);

}  // namespace aimhue

#endif  // AIMHUE_CORRECTION_H_
