#include "engine/coverage_inputs.h"

#include <aimhue/status.h>

#include "meter/chroma_lxy.h"

namespace aimhue {
namespace {

bool IsFloatPlaneOfSize(const cv::Mat& plane, const cv::Size& size) {
  return plane.type() == CV_32FC1 && plane.dims == 2 && plane.size() == size;
}

}  // namespace

int CheckCoverageInputs(const ChromaLxy* red, const ChromaLxy* green, const ChromaLxy* blue,
                        const cv::Mat& mask) {
  if (red == nullptr || blue == nullptr || green == nullptr) return kNullInput;
  if (IsEmpty(*red) || IsEmpty(*blue) || IsEmpty(*green)) return kEmptyPlane;
  const cv::Size size = red->L.size();
  if (green->L.size() != size || blue->L.size() != size) return kOutOfRange;
  if (!mask.empty() && mask.size() != size) return kOutOfRange;
  for (const ChromaLxy* set : {red, green, blue}) {
    if (!IsFloatPlaneOfSize(set->L, size) || !IsFloatPlaneOfSize(set->x, size) ||
        !IsFloatPlaneOfSize(set->y, size)) {
      return kOutOfRange;
    }
  }
  if (!mask.empty() && (mask.type() != CV_8UC1 || mask.dims != 2)) return kOutOfRange;
  return kOk;
}

}  // namespace aimhue
