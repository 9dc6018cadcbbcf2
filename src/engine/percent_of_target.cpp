// The coverage count over every LED of a panel.
#include "engine/percent_of_target.h"

#include <aimhue/status.h>

#include <algorithm>
#include <cstdint>

#include "engine/coverage_inputs.h"
#include "engine/led_gamut.h"
#include "engine/quick_gamut.h"
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
  uint8_t* misses;      // null when no miss plane is wanted; else rows x cols bytes
};

struct CountTotals {
  int32_t red = 0;
  int32_t green = 0;
  int32_t blue = 0;
  int32_t all = 0;
  int64_t excluded = 0;
};

// One row of the six planes and the mask.
struct RowPlanes {
  const float* rx;
  const float* ry;
  const float* gx;
  const float* gy;
  const float* bx;
  const float* by;
  const uint8_t* keep;  // null when every LED counts
  uint8_t* miss;        // null when no miss plane is wanted
};

// The Colour bits of the targets an LED does not reach (each flag 0 or 1).
AIMHUE_ALWAYS_INLINE int32_t MissBits(int32_t red, int32_t green, int32_t blue) {
  return ((red ^ 1) * int32_t{kRed}) | ((green ^ 1) * int32_t{kGreen}) |
         ((blue ^ 1) * int32_t{kBlue});
}

// LEDs per quick pass: the unsure flags of one stretch live on the stack.
constexpr int kStretch = 256;

// A stretch of LEDs [begin, end) of one row: the quick 32-bit test on
// every LED, adding up the LEDs it decides for all three targets, then the
// full test on each LED it left unsure (on real screens a rare LED whose
// edge nearly touches a target, or a degenerate one). The quick loop has
// no branch (a masked-out LED is computed and then not counted), so that
// the compiler turns it into vector code, many LEDs per instruction. With
// kMisses each LED's byte of the miss plane gets the Colour bits of the
// targets it does not reach (0 for a masked-out LED), by the same decisions.
template <bool kMasked, bool kMisses>
AIMHUE_ALWAYS_INLINE void CountStretch(const RowPlanes& row, int begin, int end,
                                       const Chromaticity (&target)[kPrimaryCount], CountTotals& totals) {
  int32_t unsure[kStretch];
  int32_t inRed = 0;
  int32_t inGreen = 0;
  int32_t inBlue = 0;
  int32_t inAll = 0;
  int32_t excluded = 0;
  int32_t open = 0;
  const int count = end - begin;
  for (int i = 0; i < count; ++i) {
    const int col = begin + i;
    const QuickFrame frame = MakeQuickFrame({row.rx[col], row.ry[col]}, {row.gx[col], row.gy[col]},
                                            {row.bx[col], row.by[col]});
    const int32_t counted = kMasked ? static_cast<int32_t>(row.keep[col] != 0) : 1;
    int32_t sureRed = 0;
    int32_t sureGreen = 0;
    int32_t sureBlue = 0;
    const int32_t reachRed = QuickContains(frame, target[0], sureRed);
    const int32_t reachGreen = QuickContains(frame, target[1], sureGreen);
    const int32_t reachBlue = QuickContains(frame, target[2], sureBlue);
    const int32_t decided = sureRed & sureGreen & sureBlue & counted;
    inRed += reachRed & decided;
    inGreen += reachGreen & decided;
    inBlue += reachBlue & decided;
    inAll += reachRed & reachGreen & reachBlue & decided;
    excluded += 1 - counted;
    if (kMisses) {
      row.miss[col] = static_cast<uint8_t>(counted * MissBits(reachRed, reachGreen, reachBlue));
    }
    unsure[i] = counted & (decided ^ 1);
    open += unsure[i];
  }
  for (int i = 0; open > 0 && i < count; ++i) {
    if (unsure[i] == 0) continue;
    --open;
    const int col = begin + i;
    const LedFrame frame = MakeLedFrame({row.rx[col], row.ry[col]}, {row.gx[col], row.gy[col]},
                                        {row.bx[col], row.by[col]});
    const bool reachRed = FrameContains(frame, target[0]);
    const bool reachGreen = FrameContains(frame, target[1]);
    const bool reachBlue = FrameContains(frame, target[2]);
    inRed += reachRed;
    inGreen += reachGreen;
    inBlue += reachBlue;
    inAll += reachRed && reachGreen && reachBlue;
    if (kMisses) {
      row.miss[col] = static_cast<uint8_t>(MissBits(reachRed, reachGreen, reachBlue));
    }
  }
  totals.red += inRed;
  totals.green += inGreen;
  totals.blue += inBlue;
  totals.all += inAll;
  totals.excluded += excluded;
}

// Every LED once, row by row, in stretches.
template <bool kMasked, bool kMisses>
AIMHUE_ALWAYS_INLINE void CountPanel(const CountInputs& in, const float* targets, CountTotals& totals) {
  Chromaticity target[kPrimaryCount];
  for (int primary = 0; primary < kPrimaryCount; ++primary) {
    const TargetLxy point = TargetAt(targets, primary);
    target[primary] = Chromaticity{point.x, point.y};
  }
  const int rows = in.red->L.rows;
  const int cols = in.red->L.cols;
  for (int r = 0; r < rows; ++r) {
    const RowPlanes row{in.red->x.ptr<float>(r),   in.red->y.ptr<float>(r),
                        in.green->x.ptr<float>(r), in.green->y.ptr<float>(r),
                        in.blue->x.ptr<float>(r),  in.blue->y.ptr<float>(r),
                        kMasked ? in.mask->ptr<uint8_t>(r) : nullptr,
                        kMisses ? in.misses + static_cast<size_t>(r) * static_cast<size_t>(cols)
                                : nullptr};
    for (int begin = 0; begin < cols; begin += kStretch) {
      CountStretch<kMasked, kMisses>(row, begin, std::min(cols, begin + kStretch), target, totals);
    }
  }
}

AIMHUE_ALWAYS_INLINE void CountAny(const CountInputs& in, const float* targets, CountTotals& totals) {
  if (in.misses != nullptr) {
    if (in.mask != nullptr) {
      CountPanel<true, true>(in, targets, totals);
    } else {
      CountPanel<false, true>(in, targets, totals);
    }
  } else if (in.mask != nullptr) {
    CountPanel<true, false>(in, targets, totals);
  } else {
    CountPanel<false, false>(in, targets, totals);
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
                      const cv::Mat& mask, uint8_t* misses) {
  if (red == nullptr || blue == nullptr || green == nullptr || targets == nullptr) {
    return kNullInput;
  }
  const int status = CheckCoverageInputs(red, green, blue, mask);
  if (status != kOk) return status;
  if (!CountKernelAvailable(kernel)) kernel = CountKernel::kPortable;

  // An absent mask counts every LED; no all-255 matrix is needed for that.
  const CountInputs in{red, green, blue, mask.empty() ? nullptr : &mask, misses};
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
                    const float* targets, Coverage& out, const cv::Mat& mask, uint8_t* misses) {
  return PercentOfTargetOn(WidestCountKernel(), red, green, blue, targets, out, mask, misses);
}

}  // namespace aimhue
