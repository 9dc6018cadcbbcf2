// The emptiness test of a plane, shared by every check that asks whether a
// matrix holds values.
#ifndef AIMHUE_SRC_COMMON_EMPTY_PLANE_H_
#define AIMHUE_SRC_COMMON_EMPTY_PLANE_H_

#include <opencv2/core.hpp>

namespace aimhue {

// A plane is empty when it has no data or no elements; either alone is
// enough (a header over a null pointer, or a 0 x N matrix).
inline bool IsEmptyPlane(const cv::Mat& plane) {
  return plane.data == nullptr || plane.total() == 0;
}

}  // namespace aimhue

#endif  // AIMHUE_SRC_COMMON_EMPTY_PLANE_H_
