// The coverage count over every LED of a panel.
#include "engine/percent_of_target.h"

#include <aimhue/status.h>

#include <cstdint>

#include "engine/coverage_inputs.h"
#include "engine/led_gamut.h"
#include "meter/chroma_lxy.h"

#if defined(__x86_64__) && (defined(__GNUC__) || defined(__clang__))
#define AIMHUE_X86_KERNELS 1
#define AIMHUE_ALWAYS_INLINE inline __attribute__((always_inline))
#else
#define AIMHUE_X86_KERNELS 0
#define AIMHUE_ALWAYS_INLINE inline
#endif

namespace aimhue {
namespace {

// The six chromaticity planes and the mask of one panel.
struct CountInputs {
  const ChromaLxy* red;
  const ChromaLxy* green;
  const ChromaLxy* blue;
  const cv::Mat* mask;  // null when every LED counts
};

struct CountTotals {
  int32_t red = 0;
  int32_t green = 0;
  int32_t blue = 0;
  int32_t all = 0;
  int64_t excluded = 0;
};

// Every LED once: its frame, then the three targets against it. The loop
// body has no branch (a masked-out LED is computed and then not counted),
// so that the compiler turns it into vector code, many LEDs per
// instruction; each LED's arithmetic stays exactly the scalar one.
template <bool kMasked>
AIMHUE_ALWAYS_INLINE void CountPanel(const CountInputs& in, const float* targets, CountTotals& totals) {
  const Chromaticity red{targets[1], targets[2]};
  const Chromaticity green{targets[4], targets[5]};
  const Chromaticity blue{targets[7], targets[8]};
  const int rows = in.red->L.rows;
  const int cols = in.red->L.cols;
  for (int row = 0; row < rows; ++row) {
    const float* rx = in.red->x.ptr<float>(row);
    const float* ry = in.red->y.ptr<float>(row);
    const float* gx = in.green->x.ptr<float>(row);
    const float* gy = in.green->y.ptr<float>(row);
    const float* bx = in.blue->x.ptr<float>(row);
    const float* by = in.blue->y.ptr<float>(row);
    const uint8_t* keep = kMasked ? in.mask->ptr<uint8_t>(row) : nullptr;
    int32_t inRed = 0;
    int32_t inGreen = 0;
    int32_t inBlue = 0;
    int32_t inAll = 0;
    int32_t excluded = 0;
    for (int col = 0; col < cols; ++col) {
      const LedFrame frame = MakeLedFrame({rx[col], ry[col]}, {gx[col], gy[col]}, {bx[col], by[col]});
      const int32_t counted = kMasked ? static_cast<int32_t>(keep[col] != 0) : 1;
      const int32_t reachRed = static_cast<int32_t>(FrameContains(frame, red)) & counted;
      const int32_t reachGreen = static_cast<int32_t>(FrameContains(frame, green)) & counted;
      const int32_t reachBlue = static_cast<int32_t>(FrameContains(frame, blue)) & counted;
      inRed += reachRed;
      inGreen += reachGreen;
      inBlue += reachBlue;
      inAll += reachRed & reachGreen & reachBlue;
      excluded += 1 - counted;
    }
    totals.red += inRed;
    totals.green += inGreen;
    totals.blue += inBlue;
    totals.all += inAll;
    totals.excluded += excluded;
  }
}

AIMHUE_ALWAYS_INLINE void CountAny(const CountInputs& in, const float* targets, CountTotals& totals) {
  if (in.mask != nullptr) {
    CountPanel<true>(in, targets, totals);
  } else {
    CountPanel<false>(in, targets, totals);
  }
}

void CountPortable(const CountInputs& in, const float* targets, CountTotals& totals) {
  CountAny(in, targets, totals);
}

#if AIMHUE_X86_KERNELS
// The same loop compiled for wider vector units. Contraction into fused
// multiply-adds stays off (-ffp-contract=off), so every lane rounds exactly
// as the portable code does.
__attribute__((target("avx2"))) void CountAvx2(const CountInputs& in, const float* targets,
                                               CountTotals& totals) {
  CountAny(in, targets, totals);
}

__attribute__((target("avx512f,avx512vl,avx512bw,avx512dq"))) void CountAvx512(
    const CountInputs& in, const float* targets, CountTotals& totals) {
  CountAny(in, targets, totals);
}
#endif

}  // namespace

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

bool CountKernelAvailable(CountKernel kernel) {
  switch (kernel) {
    case CountKernel::kPortable:
      return true;
#if AIMHUE_X86_KERNELS
    case CountKernel::kAvx2:
      return __builtin_cpu_supports("avx2");
    case CountKernel::kAvx512:
      return __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512vl") &&
             __builtin_cpu_supports("avx512bw") && __builtin_cpu_supports("avx512dq");
#endif
    default:
      return false;
  }
}

CountKernel WidestCountKernel() {
  if (CountKernelAvailable(CountKernel::kAvx512)) return CountKernel::kAvx512;
  if (CountKernelAvailable(CountKernel::kAvx2)) return CountKernel::kAvx2;
  return CountKernel::kPortable;
}

int PercentOfTargetOn(CountKernel kernel, const ChromaLxy* red, const ChromaLxy* green,
                      const ChromaLxy* blue, const float* targets, Coverage& out,
                      const cv::Mat& mask) {
  if (red == nullptr || blue == nullptr || green == nullptr || targets == nullptr) {
    return kNullInput;
  }
  const int status = CheckCoverageInputs(red, green, blue, mask);
  if (status != kOk) return status;
  if (!CountKernelAvailable(kernel)) kernel = CountKernel::kPortable;

  // An absent mask counts every LED; no all-255 matrix is needed for that.
  const CountInputs in{red, green, blue, mask.empty() ? nullptr : &mask};
  CountTotals totals;
  switch (kernel) {
#if AIMHUE_X86_KERNELS
    case CountKernel::kAvx512:
      CountAvx512(in, targets, totals);
      break;
    case CountKernel::kAvx2:
      CountAvx2(in, targets, totals);
      break;
#endif
    default:
      CountPortable(in, targets, totals);
      break;
  }
  const int64_t counted = static_cast<int64_t>(red->L.rows) * red->L.cols - totals.excluded;
  out = CoverageFromCounts(totals.red, totals.green, totals.blue, totals.all, counted);
  return kOk;
}

int PercentOfTarget(const ChromaLxy* red, const ChromaLxy* green, const ChromaLxy* blue,
                    const float* targets, Coverage& out, const cv::Mat& mask) {
  return PercentOfTargetOn(WidestCountKernel(), red, green, blue, targets, out, mask);
}

}  // namespace aimhue
