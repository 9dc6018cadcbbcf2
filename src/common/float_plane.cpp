#include "common/float_plane.h"

#include <cstdint>

#if defined(__linux__)
#include <sys/mman.h>
#endif

namespace aimhue {
namespace {

#if defined(__linux__) && defined(MADV_HUGEPAGE)
// Older C library headers lack the name; kernels before 5.14 refuse the
// advice with EINVAL, which is ignored like every other refusal here.
#ifndef MADV_POPULATE_WRITE
#define MADV_POPULATE_WRITE 23
#endif

constexpr uintptr_t kSmallPageBytes = uintptr_t{4} << 10;
constexpr uintptr_t kHugePageBytes = uintptr_t{2} << 20;

// Advises the whole pages of `page_bytes` that lie inside [begin, end): the
// memory around a matrix belongs to the allocator and is left alone.
void AdviseInside(uintptr_t begin, uintptr_t end, uintptr_t page_bytes, int advice) {
  const uintptr_t first = (begin + page_bytes - 1) & ~(page_bytes - 1);
  const uintptr_t last = end & ~(page_bytes - 1);
  if (last > first) (void)madvise(reinterpret_cast<void*>(first), last - first, advice);
}

void MakeResident(const cv::Mat& plane) {
  const auto begin = reinterpret_cast<uintptr_t>(plane.datastart);
  const auto end = reinterpret_cast<uintptr_t>(plane.dataend);
  if (end - begin < kHugePageBytes) return;
  AdviseInside(begin, end, kHugePageBytes, MADV_HUGEPAGE);
  AdviseInside(begin, end, kSmallPageBytes, MADV_POPULATE_WRITE);
}
#else
void MakeResident(const cv::Mat&) {}
#endif

}  // namespace

cv::Mat NewPlane(int rows, int cols, int type) {
  cv::Mat plane(rows, cols, type);
  MakeResident(plane);
  return plane;
}

cv::Mat NewFloatPlane(int rows, int cols) { return NewPlane(rows, cols, CV_32FC1); }

}  // namespace aimhue
