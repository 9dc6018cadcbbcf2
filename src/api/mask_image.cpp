#include "api/mask_image.h"

#include <aimhue/status.h>

#include <cstring>
#include <limits>

namespace aimhue {

bool IsConsistent(const AimhueImage& image) {
  // A negative code has no element size: 1 << (depth / 2) is undefined.
  if (image.type < 0) return false;
  const int32_t channels = image.type / 8 + 1;
  const int32_t depth = image.type % 8;
  const uint64_t bytesPerCell = static_cast<uint64_t>(channels) << (depth / 2);
  // |rows x cols| < 2^62; a negative product matches no size.
  const int64_t cells = static_cast<int64_t>(image.rows) * image.cols;
  if (cells < 0) return false;
  if (static_cast<uint64_t>(cells) > std::numeric_limits<uint32_t>::max() / bytesPerCell) {
    return false;  // more bytes than any 32-bit size can state
  }
  if (static_cast<uint64_t>(cells) * bytesPerCell != image.size) return false;
  if (image.data != nullptr) return image.rows >= 1 && image.cols >= 1 && image.size != 0;
  return image.rows <= 0 && image.cols <= 0 && image.size == 0;
}

int CopyMaskImage(const AimhueImage& image, cv::Mat& mask) {
  if (!IsConsistent(image)) return kInconsistentDescriptor;
  if (image.data == nullptr) return kEmptyInput;
  if (image.type != CV_8UC1) return kUnsupportedElementType;
  cv::Mat copy(image.rows, image.cols, CV_8UC1);
  std::memcpy(copy.data, image.data, image.size);
  mask = copy;
  return kOk;
}

}  // namespace aimhue
