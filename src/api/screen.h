// The record behind an AimhueScreen: one combined luminance/chromaticity
// set per primary.
#ifndef AIMHUE_SRC_API_SCREEN_H_
#define AIMHUE_SRC_API_SCREEN_H_

#include <aimhue/target.h>

#include <array>

#include "meter/chroma_lxy.h"

namespace aimhue {

struct Screen {
  // Red, green, blue; a primary not yet set has empty planes.
  std::array<ChromaLxy, kPrimaryCount> primaries;

  bool Has(int primary) const { return !primaries[primary].L.empty(); }
};

}  // namespace aimhue

#endif  // AIMHUE_SRC_API_SCREEN_H_
