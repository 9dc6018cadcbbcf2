#include "engine/coverage_misses.h"

#include <aimhue/status.h>
#include <aimhue/target.h>

#include "engine/coverage_inputs.h"
#include "engine/led_gamut.h"
#include "meter/chroma_lxy.h"

namespace aimhue {

int CoverageMisses(const ChromaLxy* red, const ChromaLxy* green, const ChromaLxy* blue,
                   const float* targets, const cv::Mat& mask, uint8_t* misses) {
  if (red == nullptr || blue == nullptr || green == nullptr || targets == nullptr) {
    return kNullInput;
  }
  const int status = CheckCoverageInputs(red, green, blue, mask);
  if (status != kOk) return status;

  Chromaticity target[kPrimaryCount];
  for (int primary = 0; primary < kPrimaryCount; ++primary) {
    const TargetLxy point = TargetAt(targets, primary);
    target[primary] = Chromaticity{point.x, point.y};
  }
  const int rows = red->L.rows;
  const int cols = red->L.cols;
  for (int r = 0; r < rows; ++r) {
    const float* rx = red->x.ptr<float>(r);
    const float* ry = red->y.ptr<float>(r);
    const float* gx = green->x.ptr<float>(r);
    const float* gy = green->y.ptr<float>(r);
    const float* bx = blue->x.ptr<float>(r);
    const float* by = blue->y.ptr<float>(r);
    const uint8_t* keep = mask.empty() ? nullptr : mask.ptr<uint8_t>(r);
    uint8_t* out = misses + static_cast<size_t>(r) * static_cast<size_t>(cols);
    for (int col = 0; col < cols; ++col) {
      uint8_t missed = 0;
      if (keep == nullptr || keep[col] != 0) {
        const LedFrame frame =
            MakeLedFrame({rx[col], ry[col]}, {gx[col], gy[col]}, {bx[col], by[col]});
        for (int primary = 0; primary < kPrimaryCount; ++primary) {
          if (!FrameContains(frame, target[primary])) missed |= ColourOfPrimary(primary);
        }
      }
      out[col] = missed;
    }
  }
  return kOk;
}

}  // namespace aimhue
