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

  // Target search.
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
