// The exported computing functions: each takes the red, green and blue
// meter triples, combines them into luminance/chromaticity sets and hands
// those to the engine.
#include <aimhue/api.h>
#include <aimhue/led_meter.h>
#include <aimhue/status.h>

#include <cstring>

#include "api/mask_image.h"
#include "common/exception_guard.h"
#include "engine/aimhue.h"
#include "engine/percent_of_target.h"
#include "meter/chroma_lxy.h"

namespace aimhue {
namespace {

using MeterTriple = const LedMeter* const*;

// The three combined primaries of one call, released when it returns.
struct Primaries {
  ChromaLxy red;
  ChromaLxy green;
  ChromaLxy blue;
};

// Combines red, then green, then blue; the first failure is returned. A null
// triple (no array at all) is refused like a triple of null meters.
int CombinePrimaries(MeterTriple red, MeterTriple green, MeterTriple blue, Primaries& out) {
  const MeterTriple triples[kPrimaryCount] = {red, green, blue};
  ChromaLxy* sets[kPrimaryCount] = {&out.red, &out.green, &out.blue};
  for (int primary = 0; primary < kPrimaryCount; ++primary) {
    const MeterTriple triple = triples[primary];
    if (triple == nullptr) return kNullInput;
    const int status = ChromaLxy::Combine(*sets[primary], triple[0], triple[1], triple[2]);
    if (status != kOk) return status;
  }
  return kOk;
}

// Combines the three primaries and hands them to `work`, all under the
// exception guard; the combined sets are released when it returns.
template <typename Work>
int WithPrimaries(const char* who, MeterTriple red, MeterTriple green, MeterTriple blue,
                  Work&& work) {
  return GuardExceptions(who, [&] {
    Primaries primaries;
    const int status = CombinePrimaries(red, green, blue, primaries);
    if (status != kOk) return status;
    return static_cast<int>(work(primaries));
  });
}

}  // namespace
}  // namespace aimhue

using aimhue::GuardExceptions;
using aimhue::kNullInput;
using aimhue::kOk;
using aimhue::kOutOfRange;
using aimhue::Primaries;
using aimhue::WithPrimaries;

extern "C" {

int AimhueCalcWhite(AimhueHandle handle, float scale, const aimhue::TargetLxy* white, int flag) {
  if (handle == nullptr || white == nullptr) return kNullInput;
  return GuardExceptions("AimhueCalcWhite", [&] {
    handle->CalcWhite(scale, white, flag > 0);  // a refused scale is not reported, by design
    return static_cast<int>(kOk);
  });
}

int AimhueSearch(AimhueHandle handle, const aimhue::LedMeter* const* red,
                 const aimhue::LedMeter* const* green, const aimhue::LedMeter* const* blue,
                 int count) {
  if (handle == nullptr) return kNullInput;
  if (count != aimhue::kPrimaryCount) return kOutOfRange;
  return WithPrimaries("AimhueSearch", red, green, blue, [&](Primaries& primaries) {
    return handle->Search(&primaries.red, &primaries.green, &primaries.blue);
  });
}

int AimhueCalcPercentNG(AimhueHandle handle, const aimhue::LedMeter* const* red,
                        const aimhue::LedMeter* const* green, const aimhue::LedMeter* const* blue,
                        int count) {
  if (handle == nullptr) return kNullInput;
  if (count != aimhue::kPrimaryCount) return kOutOfRange;
  return WithPrimaries("AimhueCalcPercentNG", red, green, blue, [&](Primaries& primaries) {
    return handle->CalcPercentNG(&primaries.red, &primaries.green, &primaries.blue);
  });
}

int AimhueJudgeNG(AimhueHandle handle, bool* out_ng, const aimhue::LedMeter* const* red,
                  const aimhue::LedMeter* const* green, const aimhue::LedMeter* const* blue,
                  int count) {
  if (handle == nullptr) return kNullInput;
  if (count != aimhue::kPrimaryCount) return kOutOfRange;
  if (out_ng == nullptr) return kNullInput;
  return WithPrimaries("AimhueJudgeNG", red, green, blue, [&](Primaries& primaries) {
    *out_ng = handle->JudgeNG(&primaries.red, &primaries.green, &primaries.blue);
    return kOk;
  });
}

int AimhueCalcPercentOfTarget(const aimhue::LedMeter* const* red,
                              const aimhue::LedMeter* const* green,
                              const aimhue::LedMeter* const* blue, const float* targets,
                              float* out_percent, const AimhueImage* mask, int count) {
  if (count != aimhue::kPrimaryCount) return kOutOfRange;
  if (targets == nullptr || out_percent == nullptr) return kNullInput;
  return WithPrimaries("AimhueCalcPercentOfTarget", red, green, blue, [&](Primaries& primaries) {
    cv::Mat maskPlane;  // empty: every LED counts
    if (mask != nullptr) {
      const int status = aimhue::CopyMaskImage(*mask, maskPlane);
      if (status != kOk) return status;
    }
    aimhue::Coverage coverage{};
    const int status = aimhue::PercentOfTarget(&primaries.red, &primaries.green, &primaries.blue,
                                               targets, coverage, maskPlane);
    if (status != kOk) return status;
    const float fractions[4] = {coverage.red, coverage.green, coverage.blue, coverage.all};
    std::memcpy(out_percent, fractions, sizeof fractions);
    return static_cast<int>(kOk);
  });
}

}  // extern "C"
