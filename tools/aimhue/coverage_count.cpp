// Coverage counts through the exported interface.
#include "coverage_count.h"

#include <cstdint>
#include <vector>

#include "command_error.h"

namespace aimhue {
namespace tool {

Coverage CountCoverage(AimhueScreen screen, const TargetBlock& targets, const cv::Mat& mask) {
  float block[kTargetBlockFloats];
  for (int i = 0; i < kTargetPointCount; ++i) SetTargetAt(block, i, targets[i]);
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
  Coverage coverage{};
  CheckStatus(AimhueCalcScreenCoverage(screen, block, mask_pointer, &coverage, nullptr, 0),
              mask.empty() ? "the coverage count refused the meters"
                           : "the coverage count refused the meters or the mask");
  return coverage;
}

CoverageCount CountCoverageAndMisses(AimhueScreen screen, const TargetLxy (&targets)[4],
                                     const ScreenSize& size) {
  float block[kTargetBlockFloats];
  for (int i = 0; i < kTargetPointCount; ++i) SetTargetAt(block, i, targets[i]);
  cv::Mat misses(size.rows, size.cols, CV_8UC1);
  CoverageCount count;
  CheckStatus(AimhueCalcScreenCoverage(screen, block, nullptr, &count.coverage, misses.data,
                                       misses.total()),
              "the coverage count refused the meters");
  count.ledsMissingTargets = cv::countNonZero(misses);
  return count;
}

}  // namespace tool
}  // namespace aimhue
