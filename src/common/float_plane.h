// New result planes, allocated so that writing a large one the first time
// costs few page faults.
#ifndef AIMHUE_SRC_COMMON_FLOAT_PLANE_H_
#define AIMHUE_SRC_COMMON_FLOAT_PLANE_H_

#include <opencv2/core.hpp>

namespace aimhue {

// A new, continuous, uninitialised rows x cols matrix of `type` that shares
// its data with nothing. On Linux a large matrix (2 MiB or more) is made
// resident at once: the whole 2 MiB pages inside it are marked for
// transparent huge pages and all its pages are faulted in by one system
// call, instead of one fault per 4 KiB page on first touch (a 4K screen's
// plane would take some 8000 of them, and a fault is costly on virtual
// machines). Both are hints; where the system refuses them the matrix is
// the same, only slower to touch the first time. Use it only for memory
// that is written whole right away: it is all resident from the start.
cv::Mat NewPlane(int rows, int cols, int type);

// NewPlane of 32-bit floats.
cv::Mat NewFloatPlane(int rows, int cols);

}  // namespace aimhue

#endif  // AIMHUE_SRC_COMMON_FLOAT_PLANE_H_
