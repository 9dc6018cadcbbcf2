// Export planes of a correction.
#include "correction_export.h"

#include <cmath>

namespace aimhue {
namespace tool {
namespace {

const char* const kPrimaryNames[3] = {"red", "green", "blue"};

// round(value * full_scale) into 16 bits; the values are in [0, 1], so the
// product lies in [0, 65535].
cv::Mat FixedPoint(const cv::Mat& plane, double full_scale) {
  cv::Mat integers(plane.size(), CV_16UC1);
  for (int r = 0; r < plane.rows; ++r) {
    const float* value = plane.ptr<float>(r);
    uint16_t* integer = integers.ptr<uint16_t>(r);
    for (int c = 0; c < plane.cols; ++c) {
      const double scaled = std::nearbyint(static_cast<double>(value[c]) * full_scale);
      integer[c] = static_cast<uint16_t>(std::min(std::max(scaled, 0.0), full_scale));
    }
  }
  return integers;
}

}  // namespace

std::vector<ExportPlane> CorrectionExportPlanes(const Correction& correction) {
  const bool fixed = correction.settings.bits > 0;
  const double full_scale = fixed ? std::ldexp(1.0, correction.settings.bits) - 1.0 : 1.0;
  std::vector<cv::Mat> channels;
  cv::split(correction.coeff, channels);
  std::vector<ExportPlane> planes;
  for (int emitter = 0; emitter < 3; ++emitter) {
    for (int input = 0; input < 3; ++input) {
      const cv::Mat& plane = channels[static_cast<std::size_t>(3 * emitter + input)];
      planes.push_back({std::string("coefficient_") + kPrimaryNames[emitter] + "_for_" +
                            kPrimaryNames[input] + ".tiff",
                        fixed ? FixedPoint(plane, full_scale) : plane});
    }
  }
  planes.push_back({"gain.tiff", fixed ? FixedPoint(correction.gain, full_scale)
                                       : correction.gain.clone()});
  cv::Mat flags;
  correction.flags.convertTo(flags, fixed ? CV_16U : CV_32F);
  planes.push_back({"flags.tiff", flags});
  return planes;
}

}  // namespace tool
}  // namespace aimhue
