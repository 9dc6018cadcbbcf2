// The exported handle and settings functions.
#include <aimhue/api.h>
#include <aimhue/status.h>

#include <cstring>
#include <memory>
#include <new>

#include "engine/aimhue.h"

using aimhue::Aimhue;
using aimhue::Fractions;

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

}  // extern "C"
