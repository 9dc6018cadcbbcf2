// The standard colour gamuts a screen can be calibrated to instead of its
// searched targets (`calibrate --gamut`).
#ifndef AIMHUE_TOOLS_STANDARD_GAMUT_H_
#define AIMHUE_TOOLS_STANDARD_GAMUT_H_

#include <optional>
#include <string>
#include <vector>

#include "arguments.h"

namespace aimhue {
namespace tool {

struct StandardGamut {
  const char* option;  // as --gamut spells it: "rec709", "p3", "p3-d65", "bt2020"
  const char* name;    // as reports spell it: "Rec.709", ...
  float red[2];        // CIE 1931 x, y of the primaries
  float green[2];
  float blue[2];
  WhitePoint white;    // the standard's white
};

// rec709 (ITU-R BT.709, D65 white), p3 (DCI-P3, the cinema white), p3-d65
// (the P3 primaries with D65 white) and bt2020 (ITU-R BT.2020, D65 white).
const std::vector<StandardGamut>& StandardGamuts();

// The gamut of an option value (case-insensitive), or none.
std::optional<StandardGamut> FindStandardGamut(const std::string& option);

}  // namespace tool
}  // namespace aimhue

#endif  // AIMHUE_TOOLS_STANDARD_GAMUT_H_
