// The standard gamuts' primaries and whites.
#include "standard_gamut.h"

#include <algorithm>
#include <cctype>

namespace aimhue {
namespace tool {

const std::vector<StandardGamut>& StandardGamuts() {
  static const WhitePoint kD65{"D65", 0.3127f, 0.3290f};
  static const WhitePoint kDci{"DCI", 0.314f, 0.351f};
  static const std::vector<StandardGamut> kGamuts = {
      {"rec709", "Rec.709", {0.640f, 0.330f}, {0.300f, 0.600f}, {0.150f, 0.060f}, kD65},
      {"p3", "DCI-P3", {0.680f, 0.320f}, {0.265f, 0.690f}, {0.150f, 0.060f}, kDci},
      {"p3-d65", "P3-D65", {0.680f, 0.320f}, {0.265f, 0.690f}, {0.150f, 0.060f}, kD65},
      {"bt2020", "BT.2020", {0.708f, 0.292f}, {0.170f, 0.797f}, {0.131f, 0.046f}, kD65},
  };
  return kGamuts;
}

std::optional<StandardGamut> FindStandardGamut(const std::string& option) {
  std::string key = option;
  std::transform(key.begin(), key.end(), key.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  for (const StandardGamut& gamut : StandardGamuts()) {
    if (key == gamut.option) return gamut;
  }
  return std::nullopt;
}

}  // namespace tool
}  // namespace aimhue
