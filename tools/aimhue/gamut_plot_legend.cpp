// The legend of the gamut plot.
#include "gamut_plot_legend.h"

#include <opencv2/imgproc.hpp>

#include "gamut_plot_drawing.h"
#include "picture_text.h"
#include "spectral_locus.h"

namespace aimhue {
namespace tool {

void DrawGamutPlotLegend(cv::Mat& image, const cv::Rect& box, const std::string& white_name) {
  using namespace gamut_plot;
  image(box).setTo(kWhite);
  cv::rectangle(image, box, kPictureFrame, 1);
  int y = box.y + 24;
  const int x = box.x + 14;
  const int text_x = x + 50;
  auto entry = [&](const std::string& label) {
    PictureText(image, label, {text_x, y + 5}, 0.45, kPictureInk);
    y += 24;
  };
  Line(image, {double(x), double(y)}, {x + 40.0, double(y)}, kPictureInk, 1);
  entry("spectral locus (CIE 1931 2 deg)");
  const auto& gamuts = ReferenceGamuts();
  for (std::size_t g = 0; g < gamuts.size(); ++g) {
    ReferenceGamutLine(image, {double(x), double(y)}, {x + 40.0, double(y)}, g);
    entry(gamuts[g].name);
  }
  for (int p = 0; p < 3; ++p) {
    cv::circle(image, {x + 20, y}, 6, kPrimaryColours[p], cv::FILLED, cv::LINE_AA);
    entry(std::string(kPrimaryNames[p]) + " LEDs (density)");
  }
  DashedLine(image, {double(x), double(y)}, {x + 40.0, double(y)}, kMeanColour, 1, 8.0, 5.0);
  entry("mean triangle (search start)");
  Line(image, {double(x), double(y)}, {x + 40.0, double(y)}, kPictureInk, 2);
  entry("target triangle");
  DrawWhitePoint(image, Viewport{cv::Rect(x + 20, y, 0, 0), 0.0, 0.0, 1.0},
                 TargetLxy{0.0f, 0.0f, 0.0f}, 7);
  entry("white point" + (white_name.empty() ? std::string() : " " + white_name));
}

}  // namespace tool
}  // namespace aimhue
