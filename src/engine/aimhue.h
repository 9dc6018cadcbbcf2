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
