#include "common/float_plane.h"

#include <cstdint>

#if defined(__linux__)
#include <sys/mman.h>
#endif

namespace aimhue {
namespace {

#if defined(__linux__) && defined(MADV_HUGEPAGE)
constexpr uintptr_t kHugePageBytes = uintptr_t{2} << 20;

void AdviseHugePages(const cv::Mat& plane) {
  const auto begin = reinterpret_cast<uintptr_t>(plane.datastart);
  const auto end = reinterpret_cast<uintptr_t>(plane.dataend);
  const uintptr_t first = (begin + kHugePageBytes - 1) & ~(kHugePageBytes - 1);
  const uintptr_t last = end & ~(kHugePageBytes - 1);
  // Only whole huge pages inside the plane: the memory around it belongs to
  // the allocator. A refusal changes nothing but speed, so it is ignored.
  if (last > first) {
    (void)madvise(reinterpret_cast<void*>(first), last - first, MADV_HUGEPAGE);
  }
}
#else
void AdviseHugePages(const cv::Mat&) {}
#endif

}  // namespace

cv::Mat NewFloatPlane(int rows, int cols) {
  cv::Mat plane(rows, cols, CV_32FC1);
  AdviseHugePages(plane);
  return plane;
}

}  // namespace aimhue
