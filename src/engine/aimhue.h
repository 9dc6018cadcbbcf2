// The engine record behind an AimhueHandle: results, settings and the fixed
// tuning constants that the white point, the coverage count and the target
// search read.
#ifndef AIMHUE_SRC_ENGINE_AIMHUE_H_
#define AIMHUE_SRC_ENGINE_AIMHUE_H_

#include <aimhue/target.h>

#include <array>
#include <cstdint>
#include <string>

#include <opencv2/core.hpp>

namespace aimhue {

struct ChromaLxy;

using TargetBlock = std::array<TargetLxy, 4>;  // red, green, blue, white
using Fractions = std::array<float, 4>;        // red, green, blue, fourth/all

// Positions of the points in a target block (and of the primaries' rows
// wherever the engine keeps one row per primary).
constexpr int kRedTarget = kRedPoint;
constexpr int kGreenTarget = kGreenPoint;
constexpr int kBlueTarget = kBluePoint;
constexpr int kWhiteTarget = kWhitePoint;

// Plain record, no base class and no virtual operations. Field order is the
// order of creation and of the persisted image.
struct Aimhue {
  // Interpolation fractions red, green, blue (and a stored, unread fourth)
  // between searchStart (0) and searchEnd (1).
  Fractions percentCalcChroma;
  // Result: red, green, blue and white target points.
  TargetBlock target;
  // Required coverage red, green, blue and all.
  Fractions percentEnd;
  float ngLimit;
  float ngThresh;
  // Final and first-stage results of the target search.
  TargetBlock searchEnd;
  TargetBlock searchStart;
  // Tuning constants, fixed at creation.
  uint32_t tuneMode;
  float whiteScale;
  std::array<float, 3> sigmaK;
  std::array<float, 3> lineSlopeK;
  int32_t maxIter;
  float percentTol;
  // LEDs that the last search's outlier mask excluded because of each
  // primary; -1 until a search runs (creation and loads reset it; it is not
  // persisted).
  std::array<int32_t, 3> outliers;

  // Fills the defaults. The target block and both search results have no
  // defined value before a search or a load; they are zeroed here so that
  // nothing indeterminate is ever read.
  Aimhue();

  // Setters. Each returns 0, or 9 when a value fails the fraction range test
  // (four-element setters test element 3, then 0, 1, 2); a failed setter
  // changes nothing and logs no error.
  int SetPercentCalcChroma(Fractions fractions);
  int SetNGThresh(float threshold);
  int SetPercentEnd(const Fractions& ends);

  // White point. Multiplies the red, green and blue target L by `scale`,
  // then solves for one gain per primary so that the mixture lands on the
  // wanted white's x, y while the summed luminance stays that of the
  // rescaled primaries; unless `uncapped`, the gains are scaled down
  // together so that none exceeds whiteScale. The gains multiply the target
  // L, and target[3] becomes (sum of the new L, white x, white y). Only the
  // x, y of `white` are read. Statuses: 9 when scale > 1.0 or scale <= 0.0
  // (a NaN scale passes), then 1 for a null `white`; both leave the record
  // unchanged and log nothing beyond the entry line "Aimhue::CalcWhite".
  // A primary whose rescaled L is not positive counts as X = Y = Z = 0;
  // that, like any other singular system, gives zero gains: all four L
  // become 0, reported as success.
  int CalcWhite(float scale, const TargetLxy* white, bool uncapped);

  // Sets ngLimit to the coverage of all three targets (the record's target
  // block, every LED counted) minus ngThresh, in 32-bit floats. Returns the
  // count's status (1, 12, 9); on failure ngLimit is unchanged. The measured
  // coverage goes to *measured when that is not null (only on success).
  int CalcPercentNG(const ChromaLxy* red, const ChromaLxy* green, const ChromaLxy* blue,
                    Coverage* measured = nullptr);

  // NG verdict: true when ngLimit is strictly greater than the measured
  // coverage of all three targets (equal is not NG). When the count fails
  // (a null, empty or mismatched set) there is no coverage to judge and the
  // verdict is NG, the safe answer for a screen that cannot be checked.
  // The measured coverage goes to *measured when that is not null and the
  // count succeeded.
  bool JudgeNG(const ChromaLxy* red, const ChromaLxy* green, const ChromaLxy* blue,
               Coverage* measured = nullptr);

  // The two rules above applied to a coverage measured elsewhere (the same
  // count of the same target block): ngLimit becomes coverage.all minus
  // ngThresh; the verdict is ngLimit > coverage.all.
  void SetNGLimit(const Coverage& coverage);
  bool IsNG(const Coverage& coverage) const;

  // Moves the red, green and blue entries of `target` along the lines of
  // `lines` (3 x 2 CV_32F, rows red, green, blue, each (a, b); red and blue
  // move along y = a*k*x + b, green along x = (y - b)/(a*k), k from
  // lineSlopeK) until the coverage counted under `mask` is within
  // percentTol of percentCalcChroma: in tuneMode 0 the coverage of all
  // three, in tuneMode 1 each primary's own; at most maxIter rounds. On
  // convergence percentCalcChroma receives the last coverage and the status
  // is 0. Otherwise (rounds exhausted, another tuneMode, or maxIter < 1)
  // the coverage of every LED, without the mask, is stored and the status
  // is 550; the targets keep the last position they reached. Before any
  // round, the sets and mask are checked as for the count (1, 12, 9), and a
  // line matrix of another shape or type gives 9; these failures leave the
  // record unchanged.
  int TuneCoverage(const cv::Mat& mask, const ChromaLxy* red, const ChromaLxy* green,
                   const ChromaLxy* blue, const cv::Mat& lines);

  // Fills `lines` (made 3 x 2 CV_32F) for TuneCoverage from the red, green
  // and blue x, y of `targets`: row i holds the slope a of the line from
  // target i through the triangle's incentre, and b such that
  // y = a * lineSlopeK[i] * x + b passes through target i. Computed in
  // 64-bit, stored as 32-bit. Collinear targets store non-finite values.
  void BuildTuneLines(const TargetBlock& targets, cv::Mat& lines) const;

  // Target search over three combined primaries (src/engine/target_search.cpp):
  // subsampling to at most 100000 LEDs, means and outlier mask, the corners of
  // the gamut region nearly all LEDs share, and the line search towards
  // percentEnd. Logs "Aimhue::Search". Statuses: 1 for a null set, 12 for an
  // empty set (tested red, blue, green), 9 when the green or blue L plane
  // differs in size from the red one, and also 9 when any x or y plane
  // differs from it or a plane is not single-channel 32-bit float (so that
  // nothing is read outside a plane); the record is unchanged on failure.
  // On success it replaces searchStart (the means), searchEnd and target (the
  // final points); the L of the three primaries in searchEnd and target and
  // the white entry of all three blocks are set to 0. A dead LED (NaN
  // chromaticity) in the working set makes the means NaN, and then the
  // targets too unless percentEnd keeps the corners.
  int Search(const ChromaLxy* red, const ChromaLxy* green, const ChromaLxy* blue);

  // Persistence of the results as a 169-byte image ('L', version 1,
  // percentCalcChroma, ngLimit, target, searchEnd, searchStart), the same in
  // ".aimhue" files and buffers. percentEnd, ngThresh and the tuning block
  // are not stored and keep their values across a load.
  // Save: 8 for a name not ending in ".aimhue" (nothing created), 4 when the
  // file cannot be opened for writing.
  // Load / FromBuffer: 8 and 2 (file only); 1 for a null buffer; 9 for a
  // negative buffer size; 10 when the first byte is not 'L'; 3 when the
  // version is not 1, and also when fewer than 169 bytes are there
  // ("<method> -- Error data in file."). Every refusal leaves the record
  // unchanged; bytes after the image are ignored.
  // ToBuffer: 1 for a null buffer or size; 13 when *size < 169, with the
  // buffer and *size untouched; otherwise writes 169 bytes and sets *size.
  // GetBufferSize: 1 for a null size; otherwise 169.
  int Save(const std::string& fullname) const;
  int Load(const std::string& fullname);
  int ToBuffer(char* buffer, uint64_t* size) const;
  int FromBuffer(const char* buffer, int64_t size);
  int GetBufferSize(uint64_t* size) const;
};

}  // namespace aimhue

#endif  // AIMHUE_SRC_ENGINE_AIMHUE_H_
