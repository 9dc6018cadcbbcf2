// The engine's input sets of a synthetic screen, for code that links the
// library's internals (unit tests and benchmarks). Header-only, so that the
// aimhue_synthetic library itself needs nothing but the public headers.
#ifndef AIMHUE_TOOLS_SYNTHETIC_SYNTHETIC_CHROMA_H_
#define AIMHUE_TOOLS_SYNTHETIC_SYNTHETIC_CHROMA_H_

#include <array>

#include "meter/chroma_lxy.h"
#include "synthetic/synthetic_screen.h"

namespace aimhue::synthetic {

// Red, green, blue.
using ScreenChroma = std::array<ChromaLxy, 3>;

// The three sets as a host's search gets them: each primary's X, Y, Z
// meters combined by ChromaLxy::Combine. Returns 0, or the status of the
// first combination that fails (then `sets` is unchanged).
inline int CombineMeters(const ScreenMeters& meters, ScreenChroma& sets) {
  ScreenChroma combined;
  for (size_t primary = 0; primary < combined.size(); ++primary) {
    const auto& triple = meters[primary];
    const int status = ChromaLxy::Combine(combined[primary], &triple[0], &triple[1], &triple[2]);
    if (status != 0) return status;
  }
  sets = combined;
  return 0;
}

// The generator's own luminance and chromaticity planes as the three sets,
// shared without copying, for tests that need exact chromaticities. They
// agree with CombineMeters up to the rounding of the tristimulus values.
inline ScreenChroma ChromaFromPlanes(const ScreenPlanes& planes) {
  ScreenChroma sets;
  for (size_t primary = 0; primary < sets.size(); ++primary) {
    sets[primary].L = planes[primary].luminance;
    sets[primary].x = planes[primary].x;
    sets[primary].y = planes[primary].y;
  }
  return sets;
}

}  // namespace aimhue::synthetic

#endif  // AIMHUE_TOOLS_SYNTHETIC_SYNTHETIC_CHROMA_H_
