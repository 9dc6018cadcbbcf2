#include "engine/coverage_line_search.h"

#include <aimhue/status.h>

#include <cmath>

#include "engine/gamut_table.h"

namespace aimhue {
namespace {

constexpr float kInitialStep = 0.001f;
constexpr float kStepFactor = 0.5f;
constexpr float kInitialPreviousError = 1.0f;

}  // namespace

void SearchTargets(const Aimhue& handle, TargetBlock& final, const cv::Mat& mask,
                   const ChromaLxy& red, const ChromaLxy& green, const ChromaLxy& blue,
                   const TargetBlock& means, const TargetBlock& corners) {
  GamutTable table;
  if (table.Build(&red, &green, &blue, mask) != kOk) {
    for (int primary = 0; primary < kPrimaryCount; ++primary) final[primary] = corners[primary];
    return;
  }
  float startCoverage[kPrimaryCount];
  for (int primary = 0; primary < kPrimaryCount; ++primary) {
    startCoverage[primary] = table.Fraction({corners[primary].x, corners[primary].y});
  }

  const float tolerance = handle.percentTol;
  for (int primary = 0; primary < kPrimaryCount; ++primary) {
    const TargetLxy& corner = corners[primary];
    const float wanted = handle.percentEnd[primary];
    if (wanted >= startCoverage[primary]) {
      final[primary] = corner;
      continue;
    }
    const TargetLxy& mean = means[primary];
    const float slope = (corner.y - mean.y) / (corner.x - mean.x);
    const float intercept = corner.y - corner.x * slope;
    // The red target moves towards +x while too many LEDs reach it; green
    // and blue targets lie on the other side of their means' x, so they move
    // the other way.
    const float outward = primary == kRedTarget ? 1.0f : -1.0f;

    TargetLxy moving = corner;
    float step = kInitialStep;
    float previous = kInitialPreviousError;
    float x = corner.x;
    for (int i = 0; i < handle.maxIter; ++i) {
      const float error = table.Fraction({moving.x, moving.y}) - wanted;
      if (tolerance >= std::fabs(error)) break;
      previous = previous * error;
      if (previous < 0.0f && i >= 1) step = step * kStepFactor;
      previous = error;
      x = error > tolerance ? x + outward * step : x - outward * step;
      moving.x = x;
      moving.y = x * slope + intercept;
    }
    final[primary] = moving;
  }
}

}  // namespace aimhue
