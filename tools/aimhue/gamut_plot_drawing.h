// The drawing primitives of the gamut plot: its colours, sub-pixel lines,
// labels, axes and the marks of triangles, means, targets and white points.
#ifndef AIMHUE_TOOLS_GAMUT_PLOT_DRAWING_H_
#define AIMHUE_TOOLS_GAMUT_PLOT_DRAWING_H_

#include <cstddef>
#include <string>

#include <opencv2/core.hpp>

#include "gamut_plot_viewport.h"
#include "report_types.h"

namespace aimhue {
namespace tool {
namespace gamut_plot {

// Colours, OpenCV's blue-green-red order.
const cv::Scalar kWhite(255, 255, 255);
const cv::Scalar kGrid(225, 225, 225);
const cv::Scalar kPrimaryColours[3] = {cv::Scalar(40, 40, 210), cv::Scalar(40, 150, 30),
                                       cv::Scalar(210, 70, 30)};
// Rec.709, DCI-P3 and BT.2020, in the order of ReferenceGamuts().
const cv::Scalar kGamutColours[3] = {cv::Scalar(90, 90, 90), cv::Scalar(30, 120, 200),
                                     cv::Scalar(150, 60, 150)};
const cv::Scalar kMeanColour(120, 120, 120);
const char* const kPrimaryNames[3] = {"red", "green", "blue"};

constexpr int kShift = 4;  // sub-pixel bits of the line and circle coordinates
constexpr double kSubPixel = 1 << kShift;

// A point in pixels as the fixed-point coordinates of OpenCV's drawing
// functions with kShift fractional bits.
cv::Point Fixed(const cv::Point2d& p);

void Line(cv::Mat& image, const cv::Point2d& a, const cv::Point2d& b, const cv::Scalar& colour,
          int thickness);
void DashedLine(cv::Mat& image, const cv::Point2d& a, const cv::Point2d& b,
                const cv::Scalar& colour, int thickness, double dash, double gap);
// A line in the style of reference gamut `gamut` (its index in
// ReferenceGamuts()): solid, long dashes or short dashes.
void ReferenceGamutLine(cv::Mat& image, const cv::Point2d& a, const cv::Point2d& b,
                        std::size_t gamut);

// Text with a white halo, readable over a dense cloud.
void HaloText(cv::Mat& image, const std::string& text, cv::Point origin, double size);
// Text centred horizontally on `centre_x`, its baseline at `baseline`.
void CentredText(cv::Mat& image, const std::string& text, int centre_x, int baseline, double size,
                 const cv::Scalar& colour);
// Text ending at `right`.
void RightText(cv::Mat& image, const std::string& text, int right, int baseline, double size,
               const cv::Scalar& colour);

// A tick spacing of 1, 2 or 5 times a power of ten giving about `count`
// ticks over `span`.
double NiceStep(double span, int count);

// Grid lines, ticks and tick labels of a viewport.
void DrawAxes(cv::Mat& image, const Viewport& view, double x_step, double y_step,
              double label_size);

// The triangle of the first three points of `block`; sides with a point
// that is not finite are left out.
void DrawTriangle(cv::Mat& image, const Viewport& view, const TargetBlock& block,
                  const cv::Scalar& colour, int thickness, bool dashed);
// A white disc with a cross; nothing when the point is not finite.
void DrawWhitePoint(cv::Mat& image, const Viewport& view, const TargetLxy& white, int radius);
// The cross of a mean, at a point in pixels.
void DrawMeanMark(cv::Mat& image, const cv::Point2d& at, int arm);
// The ring of a target, at a point in pixels.
void DrawTargetMark(cv::Mat& image, const cv::Point2d& at, int radius);

}  // namespace gamut_plot
}  // namespace tool
}  // namespace aimhue

#endif  // AIMHUE_TOOLS_GAMUT_PLOT_DRAWING_H_
