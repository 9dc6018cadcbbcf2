// The caller's mask descriptor (AimhueImage) turned into a mask matrix.
#ifndef AIMHUE_SRC_API_MASK_IMAGE_H_
#define AIMHUE_SRC_API_MASK_IMAGE_H_

#include <aimhue/api.h>

#include <opencv2/core.hpp>

namespace aimhue {

// Whether the descriptor's size, pointer and dimensions agree (the rule in
// <aimhue/api.h>).
bool IsConsistent(const AimhueImage& image);

// Checks `image` and copies its pixels into a new rows x cols CV_8UC1
// matrix in `mask`. Status: 7 when inconsistent, 5 when it has no data, 6
// when its type is not 0 (8-bit unsigned, one channel); `mask` is written
// only on success.
int CopyMaskImage(const AimhueImage& image, cv::Mat& mask);

}  // namespace aimhue

#endif  // AIMHUE_SRC_API_MASK_IMAGE_H_
