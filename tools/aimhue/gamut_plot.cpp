// The gamut plot: its layout, the spectral locus, the reference gamuts, the
// LED clouds and the insets.
#include "gamut_plot.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include <opencv2/imgproc.hpp>

#include "gamut_plot_drawing.h"
#include "gamut_plot_legend.h"
#include "gamut_plot_viewport.h"
#include "picture_text.h"
#include "spectral_locus.h"

namespace aimhue {
namespace tool {
namespace {

using namespace gamut_plot;

const cv::Scalar& kInk = kPictureInk;
const cv::Scalar& kFrame = kPictureFrame;

// Main panel: x from 0 to 0.8 and y from 0 to 0.9 at 1000 pixels per unit.
const cv::Rect kMainArea(80, 40, 800, 900);
constexpr double kMainScale = 1000.0;
// Insets: a column of three to the right of the main panel.
constexpr int kInsetLeft = 950;
constexpr int kInsetWidth = 670;
constexpr int kInsetHeight = 290;
constexpr int kInsetTop = 40;
constexpr int kInsetGap = 15;
// Inner margins of an inset: room for the title and the tick labels.
constexpr int kInsetMarginLeft = 64;
constexpr int kInsetMarginRight = 10;
constexpr int kInsetMarginTop = 24;
constexpr int kInsetMarginBottom = 26;

// The polygon of the spectral locus in pixels, closed by the line of purples.
std::vector<cv::Point> LocusPolygon(const Viewport& view) {
  std::vector<cv::Point> polygon;
  for (const SpectralPoint& point : SpectralLocus()) {
    polygon.push_back(Fixed(view.ToPixel(point.x, point.y)));
  }
  return polygon;
}

// Approximate sRGB colour of a chromaticity at full brightness, lightened
// towards white so that the clouds drawn over it stay readable.
cv::Vec3b TintOf(double x, double y) {
  const double X = x / y;
  const double Z = (1.0 - x - y) / y;
  double rgb[3] = {3.2406 * X - 1.5372 - 0.4986 * Z, -0.9689 * X + 1.8758 + 0.0415 * Z,
                   0.0557 * X - 0.2040 + 1.0570 * Z};
  const double low = std::min({rgb[0], rgb[1], rgb[2]});
  for (double& c : rgb) c -= std::min(low, 0.0);  // desaturate out-of-gamut colours
  const double high = std::max({rgb[0], rgb[1], rgb[2]});
  cv::Vec3b tint;
  for (int c = 0; c < 3; ++c) {
    const double linear = high > 0.0 ? rgb[c] / high : 0.0;
    const double encoded = linear <= 0.0031308 ? 12.92 * linear
                                               : 1.055 * std::pow(linear, 1.0 / 2.4) - 0.055;
    const double light = 0.76 + 0.24 * encoded;  // pastel: 76 % white
    tint[2 - c] = cv::saturate_cast<uchar>(light * 255.0);
  }
  return tint;
}

void FillLocus(cv::Mat& image, const Viewport& view) {
  cv::Mat inside = cv::Mat::zeros(image.size(), CV_8UC1);
  const std::vector<std::vector<cv::Point>> polygons = {LocusPolygon(view)};
  cv::fillPoly(inside, polygons, cv::Scalar(255), cv::LINE_8, kShift);
  for (int row = view.area.y; row < view.area.y + view.area.height; ++row) {
    for (int col = view.area.x; col < view.area.x + view.area.width; ++col) {
      if (inside.at<uchar>(row, col) == 0) continue;
      const double x = view.x0 + (col + 0.5 - view.area.x) / view.scale;
      const double y = view.y0 + (view.area.y + view.area.height - row - 0.5) / view.scale;
      if (y <= 0.0) continue;
      image.at<cv::Vec3b>(row, col) = TintOf(x, y);
    }
  }
}

// Composites a density cloud of `points` over the viewport: counts per
// pixel, smoothed, with a logarithmic scale so that a lone LED stays visible
// beside a dense core. Sparse pixels get a light, transparent tint of
// `colour`, the densest its dark shade.
void DrawCloud(cv::Mat& image, const Viewport& view, const std::vector<cv::Point2f>& points,
               const cv::Scalar& colour) {
  cv::Mat counts = cv::Mat::zeros(view.area.size(), CV_32FC1);
  for (const cv::Point2f& point : points) {
    const cv::Point2d pixel = view.ToPixel(point.x, point.y);
    const int col = static_cast<int>(std::floor(pixel.x)) - view.area.x;
    const int row = static_cast<int>(std::floor(pixel.y)) - view.area.y;
    if (col < 0 || row < 0 || col >= counts.cols || row >= counts.rows) continue;
    counts.at<float>(row, col) += 1.0f;
  }
  cv::Mat density;
  cv::GaussianBlur(counts, density, cv::Size(0, 0), 1.2);
  double peak = 0.0;
  cv::minMaxLoc(density, nullptr, &peak);
  if (peak <= 0.0) return;
  const double log_peak = std::log1p(peak * 20.0);
  const cv::Scalar light = colour * 0.55 + cv::Scalar::all(255.0 * 0.45);
  const cv::Scalar dark = colour * 0.55;
  cv::Mat region = image(view.area);
  for (int row = 0; row < region.rows; ++row) {
    for (int col = 0; col < region.cols; ++col) {
      const double d = density.at<float>(row, col);
      if (d <= 1e-4) continue;
      const double level = std::log1p(d * 20.0) / log_peak;  // 0 .. 1
      const double alpha = std::min(1.0, 0.25 + 0.75 * level);
      cv::Vec3b& pixel = region.at<cv::Vec3b>(row, col);
      for (int c = 0; c < 3; ++c) {
        const double shade = light[c] + (dark[c] - light[c]) * level * level;
        pixel[c] = cv::saturate_cast<uchar>(pixel[c] * (1.0 - alpha) + shade * alpha);
      }
    }
  }
}

void DrawReferenceGamuts(cv::Mat& image, const Viewport& view) {
  const auto& gamuts = ReferenceGamuts();
  for (std::size_t g = 0; g < gamuts.size(); ++g) {
    const ReferenceGamut& gamut = gamuts[g];
    const float* corners[3] = {gamut.red, gamut.green, gamut.blue};
    for (int i = 0; i < 3; ++i) {
      const float* a = corners[i];
      const float* b = corners[(i + 1) % 3];
      ReferenceGamutLine(image, view.ToPixel(a[0], a[1]), view.ToPixel(b[0], b[1]), g);
    }
    // Label beside the green corner, where the three outlines part most.
    const cv::Point2d at = view.ToPixel(gamut.green[0], gamut.green[1]);
    PictureText(image, gamut.name, {static_cast<int>(at.x) + 8, static_cast<int>(at.y) + 4}, 0.45,
                kGamutColours[g]);
  }
}

void DrawLocusOutline(cv::Mat& image, const Viewport& view) {
  const std::vector<std::vector<cv::Point>> polygons = {LocusPolygon(view)};
  cv::polylines(image, polygons, true, kInk, 1, cv::LINE_AA, kShift);
  for (const SpectralPoint& point : SpectralLocus()) {
    const int nm = point.nanometres;
    const bool labelled =
        (nm >= 460 && nm <= 620 && nm % 20 == 0) || nm == 700 || nm == 490 || nm == 510;
    if (!labelled || nm == 500) continue;
    // Label outwards, away from the locus' centre near (0.33, 0.33).
    const cv::Point2d at = view.ToPixel(point.x, point.y);
    const cv::Point2d centre = view.ToPixel(0.33, 0.33);
    cv::Point2d out = at - centre;
    out /= std::max(1.0, std::hypot(out.x, out.y));
    Line(image, at, at + out * 6.0, kInk, 1);
    const cv::Point2d label = at + out * 22.0;
    CentredText(image, std::to_string(nm), static_cast<int>(label.x),
                static_cast<int>(label.y) + 4, 0.4, kInk);
  }
}

void DrawInset(cv::Mat& image, const cv::Rect& frame, int primary, const GamutPlotInput& input,
               const Viewport& main) {
  const cv::Rect area(frame.x + kInsetMarginLeft, frame.y + kInsetMarginTop,
                      frame.width - kInsetMarginLeft - kInsetMarginRight,
                      frame.height - kInsetMarginTop - kInsetMarginBottom);
  const Viewport view =
      InsetView(area, input.leds[primary], input.searchStart[primary], input.targets[primary]);
  image(area).setTo(cv::Scalar(252, 252, 252));
  DrawAxes(image, view, NiceStep(view.area.width / view.scale, 6),
           NiceStep(view.area.height / view.scale, 5), 0.38);
  cv::Mat clip = image(area);
  Viewport local = view;
  local.area = cv::Rect(0, 0, area.width, area.height);
  DrawCloud(image, view, input.leds[primary], kPrimaryColours[primary]);
  DrawTriangle(clip, local, input.searchStart, kMeanColour, 1, true);
  DrawTriangle(clip, local, input.targets, kInk, 2, false);
  const TargetLxy& mean = input.searchStart[primary];
  const TargetLxy& target = input.targets[primary];
  if (std::isfinite(mean.x) && std::isfinite(mean.y)) {
    const cv::Point2d at = local.ToPixel(mean.x, mean.y);
    DrawMeanMark(clip, at, 7);
    HaloText(clip, "mean", {static_cast<int>(at.x) + 10, static_cast<int>(at.y) - 8}, 0.45);
  }
  if (std::isfinite(target.x) && std::isfinite(target.y)) {
    const cv::Point2d at = local.ToPixel(target.x, target.y);
    DrawTargetMark(clip, at, 6);
    // Below the mark unless that leaves the inset.
    const int baseline = at.y + 20 < clip.rows ? static_cast<int>(at.y) + 18
                                                : static_cast<int>(at.y) - 10;
    HaloText(clip, "target", {static_cast<int>(at.x) + 9, baseline}, 0.45);
  }
  cv::rectangle(image, area, kFrame, 1);

  const double magnification = view.scale / kMainScale;
  char title[128];
  std::snprintf(title, sizeof title, "%s primary, %zu LEDs, magnified %.0fx", kPrimaryNames[primary],
                input.leds[primary].size(), magnification);
  PictureText(image, title, {area.x, frame.y + 16}, 0.5, kPrimaryColours[primary], 1);

  // The inset's window, outlined on the main panel.
  const cv::Point2d low = main.ToPixel(view.x0, view.y0);
  const cv::Point2d high = main.ToPixel(view.XMax(), view.YMax());
  const cv::Rect2d window(cv::Point2d(std::min(low.x, high.x) - 2, std::min(low.y, high.y) - 2),
                          cv::Point2d(std::max(low.x, high.x) + 2, std::max(low.y, high.y) + 2));
  cv::rectangle(image, Fixed(window.tl()), Fixed(window.br()), kPrimaryColours[primary], 1,
                cv::LINE_AA, kShift);
}

}  // namespace

cv::Mat DrawGamutPlot(const GamutPlotInput& input) {
  cv::Mat image(kPlotHeight, kPlotWidth, CV_8UC3, kWhite);
  Viewport main;
  main.area = kMainArea;
  main.scale = kMainScale;

  FillLocus(image, main);
  DrawAxes(image, main, 0.1, 0.1, 0.45);
  // The grid is drawn over the tint; draw the tint's outline again on top.
  DrawLocusOutline(image, main);
  DrawReferenceGamuts(image, main);
  for (int p = 0; p < 3; ++p) DrawCloud(image, main, input.leds[p], kPrimaryColours[p]);
  DrawTriangle(image, main, input.searchStart, kMeanColour, 1, true);
  DrawTriangle(image, main, input.targets, kInk, 2, false);
  DrawWhitePoint(image, main, input.targets[3], 7);
  cv::rectangle(image, kMainArea, kFrame, 1);
  CentredText(image, "x", kMainArea.x + kMainArea.width / 2, kPlotHeight - 14, 0.6, kInk);
  PictureText(image, "y", {22, kMainArea.y + kMainArea.height / 2}, 0.6, kInk);
  PictureText(image, input.title, {kMainArea.x, 26}, 0.6, kInk, 1);

  for (int p = 0; p < 3; ++p) {
    const cv::Rect frame(kInsetLeft, kInsetTop + p * (kInsetHeight + kInsetGap), kInsetWidth,
                         kInsetHeight);
    DrawInset(image, frame, p, input, main);
  }
  DrawGamutPlotLegend(image, cv::Rect(kMainArea.x + 470, kMainArea.y + 20, 310, 270),
                      input.whiteName);
  return image;
}

}  // namespace tool
}  // namespace aimhue
