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

  // White point: rescales the primaries' luminances and balances them to the
  // wanted white's x, y.
  int CalcWhite(float scale, const TargetLxy* white, bool uncapped);

  // Coverage and NG judgement on three combined primaries.
  int CalcPercentNG(const ChromaLxy* red, const ChromaLxy* green, const ChromaLxy* blue);
  bool JudgeNG(const ChromaLxy* red, const ChromaLxy* green, const ChromaLxy* blue);
  int TuneCoverage(const cv::Mat& mask, const ChromaLxy* red, const ChromaLxy* green,
                   const ChromaLxy* blue, const cv::Mat& lines);
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

  // Persistence of the results (169-byte image).
  int Save(const std::string& fullname) const;
  int Load(const std::string& fullname);
  int ToBuffer(char* buffer, uint64_t* size) const;
  int FromBuffer(const char* buffer, int64_t size);
  int GetBufferSize(uint64_t* size) const;
};

}  // namespace aimhue

#endif  // AIMHUE_SRC_ENGINE_AIMHUE_H_
