// The engine record: defaults and the three settings setters.
#include "engine/aimhue.h"

#include <aimhue/plume_log.h>
#include <aimhue/status.h>

#include "common/numeric.h"

namespace aimhue {
namespace {

constexpr Fractions kDefaultCalcChroma = {1.0f, 1.0f, 1.0f, 1.0f};
constexpr TargetBlock kZeroBlock = {};
constexpr int32_t kNoOutlierCount = -1;

// The four-element range test: element 3 first, then 0, 1, 2.
bool AllInFractionRange(const Fractions& values) {
  return InFractionRange(values[3]) && InFractionRange(values[0]) &&
         InFractionRange(values[1]) && InFractionRange(values[2]);
}

// a + (b - a) * t per coordinate in 32-bit floats, computed as (b - a) * t + a;
// a coordinate on which a and b agree is kept exactly as it is in a.
void Lerp2(float ax, float ay, float bx, float by, float t, float& outX, float& outY) {
  outX = ax == bx ? ax : (bx - ax) * t + ax;
  outY = ay == by ? ay : (by - ay) * t + ay;
}

}  // namespace

Aimhue::Aimhue()
    : percentCalcChroma(kDefaultCalcChroma),
      target(kZeroBlock),
      percentEnd{1.0f, 1.0f, 1.0f, 1.0f},
      ngLimit(0.8f),
      ngThresh(0.08f),
      searchEnd(kZeroBlock),
      searchStart(kZeroBlock),
      tuneMode(0),
      whiteScale(1.1f),
      sigmaK{4.0f, 4.3f, 4.0f},
      lineSlopeK{2.3f, 0.8f, 0.5f},
      maxIter(100),
      percentTol(0.005f),
      outliers{kNoOutlierCount, kNoOutlierCount, kNoOutlierCount} {}

int Aimhue::SetPercentCalcChroma(Fractions fractions) {
  PlumeLogInfo("Aimhue::SetPercentCalcChroma");
  if (!AllInFractionRange(fractions)) return kOutOfRange;
  percentCalcChroma = fractions;
  for (int primary = 0; primary < kPrimaryCount; ++primary) {
    const TargetLxy& start = searchStart[primary];
    const TargetLxy& end = searchEnd[primary];
    target[primary].L = start.L;
    Lerp2(start.x, start.y, end.x, end.y, percentCalcChroma[primary], target[primary].x,
          target[primary].y);
  }
  return kOk;
}

int Aimhue::SetNGThresh(float threshold) {
  if (!InFractionRange(threshold)) return kOutOfRange;
  ngThresh = threshold;
  return kOk;
}

int Aimhue::SetPercentEnd(const Fractions& ends) {
  if (!AllInFractionRange(ends)) return kOutOfRange;
  percentEnd = ends;
  return kOk;
}

}  // namespace aimhue
