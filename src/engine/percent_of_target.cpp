// The coverage count over every LED of a panel.
#include "engine/percent_of_target.h"

#include <aimhue/status.h>

#include <cstdint>

#include "engine/coverage_inputs.h"
#include "engine/led_gamut.h"
#include "meter/chroma_lxy.h"

namespace aimhue {

bool InGamut(Chromaticity p0, Chromaticity p1, Chromaticity p2, Chromaticity q) {
  return FrameContains(MakeLedFrame(p0, p1, p2), q);
}

Coverage CoverageFromCounts(int32_t red, int32_t green, int32_t blue, int32_t all,
                            int64_t counted) {
  const double total = static_cast<double>(counted);
  return Coverage{static_cast<float>(static_cast<double>(red) / total),
                  static_cast<float>(static_cast<double>(green) / total),
                  static_cast<float>(static_cast<double>(blue) / total),
                  static_cast<float>(static_cast<double>(all) / total)};
}

int PercentOfTarget(const ChromaLxy* red, const ChromaLxy* green, const ChromaLxy* blue,
                    const float* targets, Coverage& out, const cv::Mat& mask) {
  if (red == nullptr || blue == nullptr || green == nullptr || targets == nullptr) {
    return kNullInput;
  }
  const int status = CheckCoverageInputs(red, green, blue, mask);
  if (status != kOk) return status;

  const int rows = red->L.rows;
  const int cols = red->L.cols;
  // An absent mask counts every LED; no all-255 matrix is needed for that.
  const bool masked = !mask.empty();

  int64_t counted = static_cast<int64_t>(rows) * cols;
  CoverageTally tally(targets);
  for (int row = 0; row < rows; ++row) {
    const uint8_t* keep = masked ? mask.ptr<uint8_t>(row) : nullptr;
    const float* rx = red->x.ptr<float>(row);
    const float* ry = red->y.ptr<float>(row);
    const float* gx = green->x.ptr<float>(row);
    const float* gy = green->y.ptr<float>(row);
    const float* bx = blue->x.ptr<float>(row);
    const float* by = blue->y.ptr<float>(row);
    for (int col = 0; col < cols; ++col) {
      if (masked && keep[col] == 0) {
        --counted;
        continue;
      }
      // The LED's own frame once, then the three targets against it.
      tally.Add(MakeLedFrame({rx[col], ry[col]}, {gx[col], gy[col]}, {bx[col], by[col]}));
    }
  }
  out = tally.Fractions(counted);
  return kOk;
}

}  // namespace aimhue
