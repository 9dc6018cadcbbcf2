// The exported handle and settings functions.
#include <aimhue/api.h>
#include <aimhue/plume_log.h>
#include <aimhue/status.h>

#include <cmath>
#include <cstring>
#include <memory>
#include <new>

#include "engine/aimhue.h"

using aimhue::Aimhue;
using aimhue::Fractions;

namespace aimhue {
namespace {

template <size_t kCount>
void CopyBlock(const TargetBlock& block, TargetLxy (&out)[kCount]) {
  static_assert(kCount == std::tuple_size<TargetBlock>::value, "a target block has four points");
  std::memcpy(out, block.data(), sizeof out);
}

// 9 with one error line unless the coverage fraction of all three targets
// is a number in [0, 1]: a limit or a verdict from anything else would
// pass screens that no count measured.
int CheckCoverage(const char* who, const Coverage& coverage) {
  if (coverage.all >= 0.0f && coverage.all <= 1.0f) return kOk;
  PlumeLogError("%s--Error :: coverage of all three targets %g is not in [0, 1]", who,
                static_cast<double>(coverage.all));
  return kOutOfRange;
}

}  // namespace
}  // namespace aimhue

extern "C" {

int AimhueCreateHandle(AimhueHandle* out) {
  if (out == nullptr) return aimhue::kNullInput;
  try {
    *out = std::make_unique<Aimhue>().release();
  } catch (const std::bad_alloc&) {
    *out = nullptr;  // reported through *out only; the status stays 0
  }
  return aimhue::kOk;
}

void AimhueDestroyHandle(AimhueHandle handle) {
  std::unique_ptr<Aimhue> owned(handle);
}

int AimhueRelease(AimhueHandle handle) {
  if (handle == nullptr) return aimhue::kNullInput;
  handle->percentCalcChroma.fill(0.0f);
  handle->target = {};
  return aimhue::kOk;
}

int AimhueSetNGThresh(AimhueHandle handle, float threshold) {
  if (handle == nullptr || threshold == 0.0f) return aimhue::kNullInput;
  return handle->SetNGThresh(threshold);
}

int AimhueSetPercentEnd(AimhueHandle handle, const float* ends) {
  if (handle == nullptr || ends == nullptr) return aimhue::kNullInput;
  Fractions values;
  std::memcpy(values.data(), ends, sizeof values);
  return handle->SetPercentEnd(values);
}

int AimhueSetPercentCalcChroma(AimhueHandle handle, const float* chroma) {
  // A null `chroma` is refused (the safe choice) before anything is read.
  if (chroma == nullptr) return aimhue::kNullInput;
  Fractions values;
  std::memcpy(values.data(), chroma, sizeof values);
  if (handle == nullptr) return aimhue::kNullInput;
  handle->SetPercentCalcChroma(values);  // out-of-range fractions are ignored by design
  return aimhue::kOk;
}

int AimhueGet(AimhueHandle handle, float* out_targets, float* out_chroma) {
  if (handle == nullptr || out_targets == nullptr) return aimhue::kNullInput;
  std::memcpy(out_targets, handle->target.data(), sizeof handle->target);
  if (out_chroma != nullptr) {
    std::memcpy(out_chroma, handle->percentCalcChroma.data(), sizeof handle->percentCalcChroma);
  }
  return aimhue::kOk;
}

int AimhueGetResults(AimhueHandle handle, AimhueResults* out) {
  if (handle == nullptr || out == nullptr) return aimhue::kNullInput;
  AimhueResults results{};
  aimhue::CopyBlock(handle->target, results.targets);
  aimhue::CopyBlock(handle->searchStart, results.searchStart);
  aimhue::CopyBlock(handle->searchEnd, results.searchEnd);
  std::memcpy(results.fractions, handle->percentCalcChroma.data(), sizeof results.fractions);
  std::memcpy(results.percentEnd, handle->percentEnd.data(), sizeof results.percentEnd);
  results.ngLimit = handle->ngLimit;
  results.ngThresh = handle->ngThresh;
  results.whiteScale = handle->whiteScale;
  std::memcpy(results.outliers, handle->outliers.data(), sizeof results.outliers);
  *out = results;
  return aimhue::kOk;
}

int AimhueSetTargets(AimhueHandle handle, const float* targets) {
  if (handle == nullptr || targets == nullptr) return aimhue::kNullInput;
  aimhue::TargetBlock block;
  for (int point = 0; point < aimhue::kTargetPointCount; ++point) {
    const aimhue::TargetLxy value = aimhue::TargetAt(targets, point);
    const bool usable = std::isfinite(value.L) && std::isfinite(value.x) &&
                        std::isfinite(value.y) && value.y > 0.0f;
    if (!usable) {
      PlumeLogError("AimhueSetTargets--Error :: target %d (L %g, x %g, y %g) is not finite or has "
                    "y <= 0", point, static_cast<double>(value.L), static_cast<double>(value.x),
                    static_cast<double>(value.y));
      return aimhue::kOutOfRange;
    }
    block[point] = value;
  }
  handle->target = block;
  return aimhue::kOk;
}

int AimhueSetNGLimitFromCoverage(AimhueHandle handle, const aimhue::Coverage* coverage) {
  if (handle == nullptr || coverage == nullptr) return aimhue::kNullInput;
  const int status = aimhue::CheckCoverage("AimhueSetNGLimitFromCoverage", *coverage);
  if (status != aimhue::kOk) return status;
  handle->SetNGLimit(*coverage);
  return aimhue::kOk;
}

int AimhueJudgeCoverage(AimhueHandle handle, const aimhue::Coverage* coverage, bool* out_ng) {
  if (handle == nullptr || coverage == nullptr || out_ng == nullptr) return aimhue::kNullInput;
  const int status = aimhue::CheckCoverage("AimhueJudgeCoverage", *coverage);
  if (status != aimhue::kOk) return status;
  *out_ng = handle->IsNG(*coverage);
  return aimhue::kOk;
}

}  // extern "C"
