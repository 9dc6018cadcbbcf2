// The legend of the gamut plot: one line per kind of mark, drawn in a white
// box at a given place.
#ifndef AIMHUE_TOOLS_GAMUT_PLOT_LEGEND_H_
#define AIMHUE_TOOLS_GAMUT_PLOT_LEGEND_H_

#include <string>

#include <opencv2/core.hpp>

namespace aimhue {
namespace tool {

// Draws the legend into `box`; `white_name` labels the white point (none
// when empty).
void DrawGamutPlotLegend(cv::Mat& image, const cv::Rect& box, const std::string& white_name);

}  // namespace tool
}  // namespace aimhue

#endif  // AIMHUE_TOOLS_GAMUT_PLOT_LEGEND_H_
