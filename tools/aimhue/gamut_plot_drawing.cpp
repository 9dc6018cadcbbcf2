// Drawing primitives of the gamut plot with OpenCV.
#include "gamut_plot_drawing.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include <opencv2/imgproc.hpp>

#include "picture_text.h"

namespace aimhue {
namespace tool {
namespace gamut_plot {
namespace {

const cv::Scalar& kInk = kPictureInk;

int DecimalsFor(double step) {
  return std::max(1, static_cast<int>(std::ceil(-std::log10(step) - 1e-9)));
}

std::string Number(double value, int decimals) {
  char text[32];
  std::snprintf(text, sizeof text, "%.*f", decimals, value);
  return text;
}

}  // namespace

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

void ReferenceGamutLine(cv::Mat& image, const cv::Point2d& a, const cv::Point2d& b,
                        std::size_t gamut) {
  DashedLine(image, a, b, kGamutColours[gamut], 1, gamut == 0 ? 1e9 : (gamut == 1 ? 10.0 : 3.0),
             gamut == 1 ? 6.0 : 4.0);
}

void HaloText(cv::Mat& image, const std::string& text, cv::Point origin, double size) {
  PictureText(image, text, origin, size, kWhite, 4);
  PictureText(image, text, origin, size, kInk, 1);
}

void CentredText(cv::Mat& image, const std::string& text, int centre_x, int baseline, double size,
                 const cv::Scalar& colour) {
  PictureText(image, text, {centre_x - PictureTextWidth(text, size) / 2, baseline}, size, colour);
}

void RightText(cv::Mat& image, const std::string& text, int right, int baseline, double size,
               const cv::Scalar& colour) {
  PictureText(image, text, {right - PictureTextWidth(text, size), baseline}, size, colour);
}

double NiceStep(double span, int count) {
  const double raw = span / count;
  const double power = std::pow(10.0, std::floor(std::log10(raw)));
  for (const double factor : {1.0, 2.0, 5.0, 10.0}) {
    if (factor * power >= raw) return factor * power;
  }
  return 10.0 * power;
}

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

}  // namespace gamut_plot
}  // namespace tool
}  // namespace aimhue
