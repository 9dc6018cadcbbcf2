// Coverage counts through the exported interface.
#include "coverage_count.h"

#include <aimhue/api.h>

#include <cstdint>

#include "command_error.h"

namespace aimhue {
namespace tool {

Coverage CountCoverage(const Meters& meters, const TargetBlock& targets, const cv::Mat& mask) {
  float block[12];
  for (int i = 0; i < 4; ++i) {
    block[3 * i] = targets[i].L;
    block[3 * i + 1] = targets[i].x;
    block[3 * i + 2] = targets[i].y;
  }
  AimhueImage descriptor{};
  const AimhueImage* mask_pointer = nullptr;
  const cv::Mat pixels = mask.isContinuous() ? mask : mask.clone();  // rows without gaps
  if (!pixels.empty()) {
    if (pixels.total() * pixels.elemSize() > UINT32_MAX) {
      throw CommandError(kExitLibrary, "the mask image is too large");
    }
    descriptor.rows = pixels.rows;
    descriptor.cols = pixels.cols;
    descriptor.type = pixels.type();
    descriptor.size = static_cast<uint32_t>(pixels.total() * pixels.elemSize());
    descriptor.data = pixels.data;
    mask_pointer = &descriptor;
  }
  float coverage[4] = {};
  const MeterTriple red = Triple(meters, 0);
  const MeterTriple green = Triple(meters, 1);
  const MeterTriple blue = Triple(meters, 2);
  CheckStatus(AimhueCalcPercentOfTarget(red.get(), green.get(), blue.get(), block, coverage,
                                        mask_pointer, 3),
              mask.empty() ? "the coverage count refused the meters"
                           : "the coverage count refused the meters or the mask");
  return Coverage{coverage[0], coverage[1], coverage[2], coverage[3]};
}

}  // namespace tool
}  // namespace aimhue
