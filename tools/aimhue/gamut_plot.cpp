// Drawing of the gamut plot with OpenCV.
#include "gamut_plot.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include <opencv2/imgproc.hpp>

#include "spectral_locus.h"

namespace aimhue {
namespace tool {
namespace {

// Colours, OpenCV's blue-green-red order.
const cv::Scalar kWhite(255, 255, 255);
const cv::Scalar kInk(40, 40, 40);
const cv::Scalar kGrid(225, 225, 225);
const cv::Scalar kFrame(150, 150, 150);
const cv::Scalar kPrimaryColours[3] = {cv::Scalar(40, 40, 210), cv::Scalar(40, 150, 30),
                                       cv::Scalar(210, 70, 30)};
const cv::Scalar kGamutColours[3] = {cv::Scalar(90, 90, 90), cv::Scalar(30, 120, 200),
                                     cv::Scalar(150, 60, 150)};
const cv::Scalar kMeanColour(120, 120, 120);
const char* const kPrimaryNames[3] = {"red", "green", "blue"};

constexpr int kFont = cv::FONT_HERSHEY_SIMPLEX;
constexpr int kShift = 4;  // sub-pixel bits of the line and circle coordinates
constexpr double kSubPixel = 1 << kShift;

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

cv::Point Fixed(const cv::Point2d& p) {
  return {static_cast<int>(std::lround(p.x * kSubPixel)),
          static_cast<int>(std::lround(p.y * kSubPixel))};
}

void Line(cv::Mat& image, const cv::Point2d& a, const cv::Point2d& b, const cv::Scalar& colour,
          int thickness) {
  cv::line(image, Fixed(a), Fixed(b), colour, thickness, cv::LINE_AA, kShift);
}

void DashedLine(cv::Mat& image, const cv::Point2d& a, const cv::Point2d& b,
                const cv::Scalar& colour, int thickness, double dash, double gap) {
  const cv::Point2d d = b - a;
  const double length = std::hypot(d.x, d.y);
  if (length <= 0.0) return;
  const cv::Point2d unit = d / length;
  for (double s = 0.0; s < length; s += dash + gap) {
    Line(image, a + unit * s, a + unit * std::min(s + dash, length), colour, thickness);
  }
}

void Text(cv::Mat& image, const std::string& text, cv::Point origin, double size,
          const cv::Scalar& colour, int thickness = 1) {
  cv::putText(image, text, origin, kFont, size, colour, thickness, cv::LINE_AA);
}

// Text with a white halo, readable over a dense cloud.
void HaloText(cv::Mat& image, const std::string& text, cv::Point origin, double size) {
  cv::putText(image, text, origin, kFont, size, kWhite, 4, cv::LINE_AA);
  cv::putText(image, text, origin, kFont, size, kInk, 1, cv::LINE_AA);
}

// Text centred horizontally on `centre_x`, its baseline at `baseline`.
void CentredText(cv::Mat& image, const std::string& text, int centre_x, int baseline,
                 double size, const cv::Scalar& colour) {
  int unused = 0;
  const cv::Size extent = cv::getTextSize(text, kFont, size, 1, &unused);
  Text(image, text, {centre_x - extent.width / 2, baseline}, size, colour);
}

void RightText(cv::Mat& image, const std::string& text, int right, int baseline, double size,
               const cv::Scalar& colour) {
  int unused = 0;
  const cv::Size extent = cv::getTextSize(text, kFont, size, 1, &unused);
  Text(image, text, {right - extent.width, baseline}, size, colour);
}

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

// A tick spacing of 1, 2 or 5 times a power of ten giving about `count`
// ticks over `span`.
double NiceStep(double span, int count) {
  const double raw = span / count;
  const double power = std::pow(10.0, std::floor(std::log10(raw)));
  for (const double factor : {1.0, 2.0, 5.0, 10.0}) {
    if (factor * power >= raw) return factor * power;
  }
  return 10.0 * power;
}

int DecimalsFor(double step) {
  return std::max(1, static_cast<int>(std::ceil(-std::log10(step) - 1e-9)));
}

std::string Number(double value, int decimals) {
  char text[32];
  std::snprintf(text, sizeof text, "%.*f", decimals, value);
  return text;
}

// Grid lines, ticks and tick labels of a viewport.
void DrawAxes(cv::Mat& image, const Viewport& view, double x_step, double y_step,
              double label_size) {
  const int bottom = view.area.y + view.area.height;
  const int right = view.area.x + view.area.width;
  // Tick positions are multiples of the step, counted in whole steps so
  // that no rounding drift adds or drops a tick at the far end.
  const long first_col = static_cast<long>(std::ceil(view.x0 / x_step - 1e-9));
  for (long k = first_col; k * x_step <= view.XMax() + 1e-9 * x_step; ++k) {
    const double x = k * x_step;
    const int col = static_cast<int>(std::lround(view.ToPixel(x, 0).x));
    cv::line(image, {col, view.area.y}, {col, bottom}, kGrid, 1);
    cv::line(image, {col, bottom}, {col, bottom + 5}, kInk, 1);
    CentredText(image, Number(x, DecimalsFor(x_step)), col, bottom + 19, label_size, kInk);
  }
  const long first_row = static_cast<long>(std::ceil(view.y0 / y_step - 1e-9));
  for (long k = first_row; k * y_step <= view.YMax() + 1e-9 * y_step; ++k) {
    const double y = k * y_step;
    const int row = static_cast<int>(std::lround(view.ToPixel(0, y).y));
    cv::line(image, {view.area.x, row}, {right, row}, kGrid, 1);
    cv::line(image, {view.area.x - 5, row}, {view.area.x, row}, kInk, 1);
    RightText(image, Number(y, DecimalsFor(y_step)), view.area.x - 8, row + 5, label_size, kInk);
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

void DrawTriangle(cv::Mat& image, const Viewport& view, const TargetBlock& block,
                  const cv::Scalar& colour, int thickness, bool dashed) {
  for (int i = 0; i < 3; ++i) {
    const TargetLxy& a = block[i];
    const TargetLxy& b = block[(i + 1) % 3];
    if (!std::isfinite(a.x) || !std::isfinite(a.y) || !std::isfinite(b.x) || !std::isfinite(b.y)) {
      continue;
    }
    const cv::Point2d pa = view.ToPixel(a.x, a.y);
    const cv::Point2d pb = view.ToPixel(b.x, b.y);
    if (dashed) {
      DashedLine(image, pa, pb, colour, thickness, 8.0, 5.0);
    } else {
      Line(image, pa, pb, colour, thickness);
    }
  }
}

void DrawWhitePoint(cv::Mat& image, const Viewport& view, const TargetLxy& white, int radius) {
  if (!std::isfinite(white.x) || !std::isfinite(white.y)) return;
  const cv::Point centre = Fixed(view.ToPixel(white.x, white.y));
  cv::circle(image, centre, static_cast<int>(radius * kSubPixel), kWhite, cv::FILLED, cv::LINE_AA,
             kShift);
  cv::circle(image, centre, static_cast<int>(radius * kSubPixel), kInk, 2, cv::LINE_AA, kShift);
  const int arm = static_cast<int>((radius - 2) * kSubPixel);
  cv::line(image, centre - cv::Point(arm, 0), centre + cv::Point(arm, 0), kInk, 1, cv::LINE_AA,
           kShift);
  cv::line(image, centre - cv::Point(0, arm), centre + cv::Point(0, arm), kInk, 1, cv::LINE_AA,
           kShift);
}

void DrawMeanMark(cv::Mat& image, const cv::Point2d& at, int arm) {
  Line(image, at - cv::Point2d(arm + 1, 0), at + cv::Point2d(arm + 1, 0), kWhite, 5);
  Line(image, at - cv::Point2d(0, arm + 1), at + cv::Point2d(0, arm + 1), kWhite, 5);
  Line(image, at - cv::Point2d(arm, 0), at + cv::Point2d(arm, 0), kInk, 2);
  Line(image, at - cv::Point2d(0, arm), at + cv::Point2d(0, arm), kInk, 2);
}

void DrawTargetMark(cv::Mat& image, const cv::Point2d& at, int radius) {
  cv::circle(image, Fixed(at), static_cast<int>(radius * kSubPixel), kInk, cv::FILLED, cv::LINE_AA,
             kShift);
  cv::circle(image, Fixed(at), static_cast<int>((radius - 2) * kSubPixel), kWhite, cv::FILLED,
             cv::LINE_AA, kShift);
}

void DrawReferenceGamuts(cv::Mat& image, const Viewport& view) {
  const auto& gamuts = ReferenceGamuts();
  for (std::size_t g = 0; g < gamuts.size(); ++g) {
    const ReferenceGamut& gamut = gamuts[g];
    const float* corners[3] = {gamut.red, gamut.green, gamut.blue};
    for (int i = 0; i < 3; ++i) {
      const float* a = corners[i];
      const float* b = corners[(i + 1) % 3];
      DashedLine(image, view.ToPixel(a[0], a[1]), view.ToPixel(b[0], b[1]), kGamutColours[g], 1,
                 g == 0 ? 1e9 : (g == 1 ? 10.0 : 3.0), g == 1 ? 6.0 : 4.0);
    }
    // Label beside the green corner, where the three outlines part most.
    const cv::Point2d at = view.ToPixel(gamut.green[0], gamut.green[1]);
    Text(image, gamut.name, {static_cast<int>(at.x) + 8, static_cast<int>(at.y) + 4}, 0.45,
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

// The chromaticity window of an inset: the central 99 % of the cloud, the
// mean and the target, padded, with the inset's aspect ratio.
Viewport InsetView(const cv::Rect& area, const std::vector<cv::Point2f>& cloud,
                   const TargetLxy& mean, const TargetLxy& target) {
  std::vector<double> xs;
  std::vector<double> ys;
  for (const cv::Point2f& p : cloud) {
    xs.push_back(p.x);
    ys.push_back(p.y);
  }
  double x_low = 1.0;
  double x_high = 0.0;
  double y_low = 1.0;
  double y_high = 0.0;
  auto include = [&](double x, double y) {
    if (!std::isfinite(x) || !std::isfinite(y)) return;
    x_low = std::min(x_low, x);
    x_high = std::max(x_high, x);
    y_low = std::min(y_low, y);
    y_high = std::max(y_high, y);
  };
  if (!xs.empty()) {
    auto quantile = [](std::vector<double>& values, double q) {
      const std::size_t k = static_cast<std::size_t>(q * (values.size() - 1));
      std::nth_element(values.begin(), values.begin() + k, values.end());
      return values[k];
    };
    include(quantile(xs, 0.005), quantile(ys, 0.005));
    include(quantile(xs, 0.995), quantile(ys, 0.995));
  }
  include(mean.x, mean.y);
  include(target.x, target.y);
  if (x_low > x_high) {  // nothing finite to show: a window around the neutral point
    x_low = x_high = 0.33;
    y_low = y_high = 0.33;
  }
  const double aspect = static_cast<double>(area.width) / area.height;
  double half_height = std::max({(y_high - y_low) * 0.5, (x_high - x_low) * 0.5 / aspect, 0.0008});
  half_height *= 1.3;
  const double half_width = half_height * aspect;
  Viewport view;
  view.area = area;
  view.scale = area.height / (2.0 * half_height);
  view.x0 = (x_low + x_high) * 0.5 - half_width;
  view.y0 = (y_low + y_high) * 0.5 - half_height;
  return view;
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
  Text(image, title, {area.x, frame.y + 16}, 0.5, kPrimaryColours[primary], 1);

  // The inset's window, outlined on the main panel.
  const cv::Point2d low = main.ToPixel(view.x0, view.y0);
  const cv::Point2d high = main.ToPixel(view.XMax(), view.YMax());
  const cv::Rect2d window(cv::Point2d(std::min(low.x, high.x) - 2, std::min(low.y, high.y) - 2),
                          cv::Point2d(std::max(low.x, high.x) + 2, std::max(low.y, high.y) + 2));
  cv::rectangle(image, Fixed(window.tl()), Fixed(window.br()), kPrimaryColours[primary], 1,
                cv::LINE_AA, kShift);
}

void DrawLegend(cv::Mat& image, const GamutPlotInput& input) {
  const cv::Rect box(kMainArea.x + 470, kMainArea.y + 20, 310, 270);
  image(box).setTo(kWhite);
  cv::rectangle(image, box, kFrame, 1);
  int y = box.y + 24;
  const int x = box.x + 14;
  const int text_x = x + 50;
  auto entry = [&](const std::string& label) {
    Text(image, label, {text_x, y + 5}, 0.45, kInk);
    y += 24;
  };
  Line(image, {double(x), double(y)}, {x + 40.0, double(y)}, kInk, 1);
  entry("spectral locus (CIE 1931 2 deg)");
  const auto& gamuts = ReferenceGamuts();
  for (std::size_t g = 0; g < gamuts.size(); ++g) {
    DashedLine(image, {double(x), double(y)}, {x + 40.0, double(y)}, kGamutColours[g], 1,
               g == 0 ? 1e9 : (g == 1 ? 10.0 : 3.0), g == 1 ? 6.0 : 4.0);
    entry(gamuts[g].name);
  }
  for (int p = 0; p < 3; ++p) {
    cv::circle(image, {x + 20, y}, 6, kPrimaryColours[p], cv::FILLED, cv::LINE_AA);
    entry(std::string(kPrimaryNames[p]) + " LEDs (density)");
  }
  DashedLine(image, {double(x), double(y)}, {x + 40.0, double(y)}, kMeanColour, 1, 8.0, 5.0);
  entry("mean triangle (search start)");
  Line(image, {double(x), double(y)}, {x + 40.0, double(y)}, kInk, 2);
  entry("target triangle");
  DrawWhitePoint(image, Viewport{cv::Rect(x + 20, y, 0, 0), 0.0, 0.0, 1.0},
                 TargetLxy{0.0f, 0.0f, 0.0f}, 7);
  entry("white point" + (input.whiteName.empty() ? std::string() : " " + input.whiteName));
}

}  // namespace

std::vector<cv::Point2f> LedChromaticities(const cv::Mat& X, const cv::Mat& Y, const cv::Mat& Z,
                                           std::size_t limit) {
  std::vector<cv::Point2f> points;
  if (X.empty() || X.type() != CV_32FC1 || Y.size() != X.size() || Z.size() != X.size() ||
      Y.type() != CV_32FC1 || Z.type() != CV_32FC1 || limit == 0) {
    return points;
  }
  const std::size_t total = X.total();
  const std::size_t stride = std::max<std::size_t>(1, (total + limit - 1) / limit);
  points.reserve(total / stride + 1);
  const cv::Mat x_plane = X.isContinuous() ? X : X.clone();
  const cv::Mat y_plane = Y.isContinuous() ? Y : Y.clone();
  const cv::Mat z_plane = Z.isContinuous() ? Z : Z.clone();
  const float* xs = x_plane.ptr<float>();
  const float* ys = y_plane.ptr<float>();
  const float* zs = z_plane.ptr<float>();
  for (std::size_t i = 0; i < total; i += stride) {
    const float sum = xs[i] + ys[i] + zs[i];
    const float x = xs[i] / sum;
    const float y = ys[i] / sum;
    if (std::isfinite(x) && std::isfinite(y)) points.emplace_back(x, y);
  }
  return points;
}

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
  Text(image, "y", {22, kMainArea.y + kMainArea.height / 2}, 0.6, kInk);
  Text(image, input.title, {kMainArea.x, 26}, 0.6, kInk, 1);

  for (int p = 0; p < 3; ++p) {
    const cv::Rect frame(kInsetLeft, kInsetTop + p * (kInsetHeight + kInsetGap), kInsetWidth,
                         kInsetHeight);
    DrawInset(image, frame, p, input, main);
  }
  DrawLegend(image, input);
  return image;
}

}  // namespace tool
}  // namespace aimhue
