// New result planes of 32-bit floats, allocated so that writing a large one
// the first time costs few page faults.
#ifndef AIMHUE_SRC_COMMON_FLOAT_PLANE_H_
#define AIMHUE_SRC_COMMON_FLOAT_PLANE_H_

#include <opencv2/core.hpp>

namespace aimhue {

// A new, continuous, uninitialised rows x cols plane of 32-bit floats that
// shares its data with nothing. On Linux the whole 2 MiB pages inside a
// large plane are marked for transparent huge pages: a 4K screen's plane
// is then faulted in some 16 times instead of some 8000 times. The mark is
// a hint; where the system refuses it the plane is the same, only slower to
// touch the first time.
cv::Mat NewFloatPlane(int rows, int cols);

}  // namespace aimhue

#endif  // AIMHUE_SRC_COMMON_FLOAT_PLANE_H_
