// The gamut plot: a picture of where a screen's LEDs and the calibration
// targets lie in the CIE 1931 chromaticity diagram.
//
// The main panel shows the spectral locus (tinted with approximate colours),
// the reference gamuts Rec.709, DCI-P3 and BT.2020, a density cloud of every
// primary's LED chromaticities, the mean triangle (where the target search
// starts), the target triangle and the white point. Three magnified insets
// show the neighbourhood of each primary, where a spread of a few
// thousandths between LEDs becomes visible.
#ifndef AIMHUE_TOOLS_GAMUT_PLOT_H_
#define AIMHUE_TOOLS_GAMUT_PLOT_H_

#include <array>
#include <string>
#include <vector>

#include <opencv2/core.hpp>

#include "report_types.h"

namespace aimhue {
namespace tool {

constexpr int kPlotWidth = 1640;
constexpr int kPlotHeight = 1000;

struct GamutPlotInput {
  std::string title;
  std::string whiteName;                           // label of the white point
  std::array<std::vector<cv::Point2f>, 3> leds;    // chromaticities, red, green, blue
  TargetBlock searchStart{};                       // mean triangle (x, y of red, green, blue)
  TargetBlock targets{};                           // target triangle and white point
};

// Draws the plot into an 8-bit, three-channel image of kPlotWidth x
// kPlotHeight pixels.
cv::Mat DrawGamutPlot(const GamutPlotInput& input);

}  // namespace tool
}  // namespace aimhue

#endif  // AIMHUE_TOOLS_GAMUT_PLOT_H_
