// The gamut plot's mapping of chromaticities to pixels.
#include "gamut_plot_viewport.h"

#include <algorithm>
#include <cmath>

namespace aimhue {
namespace tool {

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

}  // namespace tool
}  // namespace aimhue
