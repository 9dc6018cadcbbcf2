// Counting LEDs with implausible measured values.
#include "measurement_check.h"

#include <cmath>
#include <vector>

#include <opencv2/imgproc.hpp>

#include "spectral_locus.h"

namespace aimhue {
namespace tool {
namespace {

// Cells per unit of chromaticity of the locus raster.
constexpr int kLocusRaster = 1024;
// How far outside the locus a measured chromaticity may lie before it is
// implausible: narrow-band LEDs sit close to the locus, and a meter's
// calibration error or a lone faulty LED may carry them a few hundredths
// past it; values of no measurement at all (huge numbers, swapped planes)
// land much further out.
constexpr double kLocusMargin = 0.05;

// 255 for the cells of [0, 1) x [0, 1) (row = y) inside the locus, widened
// by kLocusMargin. Built once; read only.
const cv::Mat& LocusRaster() {
  static const cv::Mat raster = [] {
    std::vector<cv::Point> outline;
    for (const SpectralPoint& point : SpectralLocus()) {
      outline.emplace_back(static_cast<int>(std::lround(point.x * kLocusRaster)),
                           static_cast<int>(std::lround(point.y * kLocusRaster)));
    }
    cv::Mat inside = cv::Mat::zeros(kLocusRaster, kLocusRaster, CV_8UC1);
    cv::fillPoly(inside, std::vector<std::vector<cv::Point>>{outline}, cv::Scalar(255));
    const int radius = static_cast<int>(std::ceil(kLocusMargin * kLocusRaster));
    cv::dilate(inside, inside,
               cv::getStructuringElement(cv::MORPH_ELLIPSE,
                                         cv::Size(2 * radius + 1, 2 * radius + 1)));
    return inside;
  }();
  return raster;
}

// Whether (x, y) lies in the widened locus of `raster` (LocusRaster's data,
// kLocusRaster x kLocusRaster bytes, row = y).
bool InsideLocus(const uchar* raster, float x, float y) {
  if (!(x >= 0.0f && x < 1.0f && y >= 0.0f && y < 1.0f)) return false;  // NaN too
  const int col = static_cast<int>(x * kLocusRaster);
  const int row = static_cast<int>(y * kLocusRaster);
  return raster[row * kLocusRaster + col] != 0;
}

}  // namespace

ImplausibleLeds CountImplausibleLeds(const AimhueScreenPlanes& planes) {
  ImplausibleLeds counts;
  const uchar* raster = LocusRaster().ptr<uchar>();  // continuous: made whole by cv::Mat::zeros
  const std::size_t total = static_cast<std::size_t>(planes.rows) * planes.cols;
  for (std::size_t i = 0; i < total; ++i) {
    const float L = planes.L[i];
    const float x = planes.x[i];
    const float y = planes.y[i];
    if (L == 0.0f && std::isnan(x) && std::isnan(y)) continue;  // dead: reported on its own
    if (!(L > 0.0f) || !std::isfinite(L)) ++counts.badLuminance;
    if (!InsideLocus(raster, x, y)) ++counts.outsideLocus;
  }
  return counts;
}

void WarnImplausibleLeds(std::ostream& out, const std::string& command, const char* primary,
                         const ImplausibleLeds& counts, int64_t leds) {
  if (counts.badLuminance == 0 && counts.outsideLocus == 0) return;
  out << command << ": warning: " << primary << ": implausible measured values in";
  if (counts.badLuminance > 0) {
    out << " " << counts.badLuminance << " of " << leds
        << " LEDs (luminance Y not a positive number)";
  }
  if (counts.outsideLocus > 0) {
    out << (counts.badLuminance > 0 ? " and" : "") << " " << counts.outsideLocus << " of "
        << leds << " LEDs (chromaticity outside the spectral locus)";
  }
  out << "; check the meter files\n";
}

}  // namespace tool
}  // namespace aimhue
