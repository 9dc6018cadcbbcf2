// Where the gamut plot puts a chromaticity: a rectangle of the picture that
// shows a window of the CIE 1931 (x, y) diagram, and the choice of the
// window of a magnified inset.
#ifndef AIMHUE_TOOLS_GAMUT_PLOT_VIEWPORT_H_
#define AIMHUE_TOOLS_GAMUT_PLOT_VIEWPORT_H_

#include <vector>

#include <aimhue/target.h>

#include <opencv2/core.hpp>

namespace aimhue {
namespace tool {

// A rectangle of the image showing chromaticities from (x0, y0) upwards at
// `scale` pixels per unit, y growing upwards.
struct Viewport {
  cv::Rect area;
  double x0 = 0.0;
  double y0 = 0.0;
  double scale = 1.0;

  cv::Point2d ToPixel(double x, double y) const {
    return {area.x + (x - x0) * scale, area.y + area.height - (y - y0) * scale};
  }
  double XMax() const { return x0 + area.width / scale; }
  double YMax() const { return y0 + area.height / scale; }
};

// The chromaticity window of an inset drawn into `area`: the central 99 % of
// the cloud, the mean and the target, padded, with the area's aspect ratio.
// Without any finite point, a window around the neutral point (0.33, 0.33).
Viewport InsetView(const cv::Rect& area, const std::vector<cv::Point2f>& cloud,
                   const TargetLxy& mean, const TargetLxy& target);

}  // namespace tool
}  // namespace aimhue

#endif  // AIMHUE_TOOLS_GAMUT_PLOT_VIEWPORT_H_
