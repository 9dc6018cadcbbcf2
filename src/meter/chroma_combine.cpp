// ChromaLxy::Combine and ChromaXYZ::Combine: the X, Y and Z meters of one
// primary checked together and turned into luminance and chromaticity
// planes, or handed over as tristimulus planes.
#include <aimhue/led_meter.h>
#include <aimhue/plume_log.h>
#include <aimhue/status.h>
#include <aimhue/target.h>

#include <cstddef>
#include <cstdint>
#include <utility>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

#include "common/float_plane.h"
#include "meter/chroma_lxy.h"

namespace aimhue {
namespace {

// The primary measured without a Z plane (its Z is zero): blue.
constexpr Colour kColorWithoutZ = kBlue;

bool IsFloatPlane(const cv::Mat& plane) { return plane.dims == 2 && plane.type() == CV_32FC1; }

// Checks the meters and picks the X, Y and Z chroma planes of a primary
// (shared, not copied). `Z` stays empty when the primary has no Z meter and
// its Z is zero. `name` is the caller's qualified name for the log lines.
int SelectPlanes(const char* name, const LedMeter* meter_x, const LedMeter* meter_y,
                 const LedMeter* meter_z, cv::Mat& X, cv::Mat& Y, cv::Mat& Z) {
  if (meter_x == nullptr && meter_y == nullptr && meter_z == nullptr) {
    PlumeLogError("%s-- meter_x meter_y  meter_z all Nullptr", name);
    return kNullInput;
  }
  // A null meter_x with another meter present goes to the three-meter check,
  // which reports it as a null input.
  const bool without_z =
      meter_x != nullptr && meter_x->color == kColorWithoutZ && meter_z == nullptr;
  const int status = without_z ? LedMeter::Check(kCheckForCombine, meter_x, meter_y)
                               : LedMeter::Check(kCheckForCombine, meter_x, meter_y, meter_z);
  if (status != kOk) return status;
  // The checks leave the element type open; the planes are read as 32-bit
  // floats, so anything else is refused rather than read past its end.
  const bool all_float = IsFloatPlane(meter_x->chroma) && IsFloatPlane(meter_y->chroma) &&
                         (without_z || IsFloatPlane(meter_z->chroma));
  if (!all_float) {
    PlumeLogError("%s--Error :: chroma is not a plane of 32-bit floats", name);
    return kUnsupportedElementType;
  }
  X = meter_x->chroma;
  Y = meter_y->chroma;
  Z = without_z ? cv::Mat() : meter_z->chroma;
  return kOk;
}

// x = X / S and y = Y / S with S = (X + Y) + Z for LED i, every step a
// 32-bit float operation in that order. A missing Z is added as +0.0f,
// literally as a plane of zeros would be.
template <bool kHasZ>
inline void ChromaticityOfLed(const float* X, const float* Y, const float* Z, float* x, float* y,
                              std::ptrdiff_t i) {
  const float sum = (X[i] + Y[i]) + (kHasZ ? Z[i] : 0.0f);
  x[i] = X[i] / sum;
  y[i] = Y[i] / sum;
}

// The chromaticity of `count` LEDs in a row, in one pass.
template <bool kHasZ>
void ChromaticityRow(const float* __restrict X, const float* __restrict Y,
                     const float* __restrict Z, float* __restrict x, float* __restrict y,
                     std::ptrdiff_t count) {
  std::ptrdiff_t i = 0;
#if defined(__SSE2__)
  // Four LEDs at a time with the same IEEE additions and divisions. The
  // results are written around the cache (streaming stores): they are not
  // read here, and on a large screen that saves reading every output line
  // from memory before it is overwritten. Streaming stores need 16-byte
  // aligned targets; the few LEDs before the first aligned one and after the
  // last group of four take the one-LED path.
  constexpr uintptr_t kAlign = 16;
  while (i < count && reinterpret_cast<uintptr_t>(x + i) % kAlign != 0) {
    ChromaticityOfLed<kHasZ>(X, Y, Z, x, y, i++);
  }
  if (reinterpret_cast<uintptr_t>(y + i) % kAlign == 0) {
    for (; i + 4 <= count; i += 4) {
      const __m128 vx = _mm_loadu_ps(X + i);
      const __m128 vy = _mm_loadu_ps(Y + i);
      const __m128 vz = kHasZ ? _mm_loadu_ps(Z + i) : _mm_setzero_ps();
      const __m128 sum = _mm_add_ps(_mm_add_ps(vx, vy), vz);
      _mm_stream_ps(x + i, _mm_div_ps(vx, sum));
      _mm_stream_ps(y + i, _mm_div_ps(vy, sum));
    }
    _mm_sfence();
  }
#endif
  for (; i < count; ++i) ChromaticityOfLed<kHasZ>(X, Y, Z, x, y, i);
}

// The chromaticity of `count` LEDs written over their own X and Z values:
// x over X, y over Z, by the operations of ChromaticityOfLed. Each LED's
// three values are read before its two results are written, so the
// overlap changes nothing but where the results go.
void ChromaticityRowInPlace(float* X_then_x, const float* Y, float* Z_then_y,
                            std::ptrdiff_t count) {
  std::ptrdiff_t i = 0;
#if defined(__SSE2__)
  for (; i + 4 <= count; i += 4) {
    const __m128 vx = _mm_loadu_ps(X_then_x + i);
    const __m128 vy = _mm_loadu_ps(Y + i);
    const __m128 vz = _mm_loadu_ps(Z_then_y + i);
    const __m128 sum = _mm_add_ps(_mm_add_ps(vx, vy), vz);
    _mm_storeu_ps(X_then_x + i, _mm_div_ps(vx, sum));
    _mm_storeu_ps(Z_then_y + i, _mm_div_ps(vy, sum));
  }
#endif
  for (; i < count; ++i) {
    const float sum = (X_then_x[i] + Y[i]) + Z_then_y[i];
    const float x = X_then_x[i] / sum;
    const float y = Y[i] / sum;
    X_then_x[i] = x;
    Z_then_y[i] = y;
  }
}

// Whether the meter alone holds `plane` (no other matrix shares its data)
// and its rows follow one another: then it may be written over and kept.
bool SolelyHeld(const cv::Mat& plane) {
  return plane.u != nullptr && plane.u->refcount == 1 && plane.isContinuous();
}

// Fills the new planes x and y from X, Y and Z (Z empty: zero). All planes
// have the same rows and columns; any of the inputs may be a view with
// gaps between its rows.
void ComputeChromaticity(const cv::Mat& X, const cv::Mat& Y, const cv::Mat& Z, cv::Mat& x,
                         cv::Mat& y) {
  const bool has_z = !Z.empty();
  const bool continuous = X.isContinuous() && Y.isContinuous() && (!has_z || Z.isContinuous());
  // Continuous planes are walked as one long row.
  const int rows = continuous ? 1 : X.rows;
  const std::ptrdiff_t count =
      continuous ? static_cast<std::ptrdiff_t>(X.total()) : static_cast<std::ptrdiff_t>(X.cols);
  for (int row = 0; row < rows; ++row) {
    if (has_z) {
      ChromaticityRow<true>(X.ptr<float>(row), Y.ptr<float>(row), Z.ptr<float>(row),
                            x.ptr<float>(row), y.ptr<float>(row), count);
    } else {
      ChromaticityRow<false>(X.ptr<float>(row), Y.ptr<float>(row), nullptr, x.ptr<float>(row),
                             y.ptr<float>(row), count);
    }
  }
}

}  // namespace

int ChromaLxy::Combine(ChromaLxy& out, const LedMeter* meter_x, const LedMeter* meter_y,
                       const LedMeter* meter_z) {
  PlumeLogInfo("ChromaLxy::Combine");
  cv::Mat X, Y, Z;
  const int status = SelectPlanes("ChromaLxy::Combine", meter_x, meter_y, meter_z, X, Y, Z);
  if (status != kOk) return status;
  cv::Mat x = NewFloatPlane(Y.rows, Y.cols);
  cv::Mat y = NewFloatPlane(Y.rows, Y.cols);
  ComputeChromaticity(X, Y, Z, x, y);
  out.L = Y;
  out.x = x;
  out.y = y;
  return kOk;
}

int ChromaLxy::Check(const char* name, const LedMeter* meter_x, const LedMeter* meter_y,
                     const LedMeter* meter_z) {
  cv::Mat X, Y, Z;
  return SelectPlanes(name, meter_x, meter_y, meter_z, X, Y, Z);
}

int ChromaLxy::CombineOwned(ChromaLxy& out, const LedMeter* meter_x, const LedMeter* meter_y,
                            const LedMeter* meter_z) {
  ChromaLxy combined;
  const int status = Combine(combined, meter_x, meter_y, meter_z);
  if (status != kOk) return status;
  cv::Mat L = NewFloatPlane(combined.L.rows, combined.L.cols);
  combined.L.copyTo(L);
  combined.L = L;
  out = combined;
  return kOk;
}

int ChromaLxy::CombineTaking(ChromaLxy& out, LedMeter* meter_x, LedMeter* meter_y,
                             LedMeter* meter_z) {
  const bool inPlace = meter_x != nullptr && meter_y != nullptr && meter_z != nullptr &&
                       SolelyHeld(meter_x->chroma) && SolelyHeld(meter_y->chroma) &&
                       SolelyHeld(meter_z->chroma);
  if (!inPlace) {
    const int status = CombineOwned(out, meter_x, meter_y, meter_z);
    if (status != kOk) return status;
    for (LedMeter* meter : {meter_x, meter_y, meter_z}) {
      if (meter != nullptr) meter->chroma = cv::Mat();
    }
    return kOk;
  }
  PlumeLogInfo("ChromaLxy::Combine");
  {
    cv::Mat X, Y, Z;
    const int status = SelectPlanes("ChromaLxy::Combine", meter_x, meter_y, meter_z, X, Y, Z);
    if (status != kOk) return status;
  }
  cv::Mat X = std::move(meter_x->chroma);
  cv::Mat Y = std::move(meter_y->chroma);
  cv::Mat Z = std::move(meter_z->chroma);
  meter_x->chroma = cv::Mat();
  meter_y->chroma = cv::Mat();
  meter_z->chroma = cv::Mat();
  ChromaticityRowInPlace(X.ptr<float>(), Y.ptr<float>(), Z.ptr<float>(),
                         static_cast<std::ptrdiff_t>(X.total()));
  out.L = Y;
  out.x = X;
  out.y = Z;
  return kOk;
}

int ChromaXYZ::Combine(ChromaXYZ& out, const LedMeter* meter_x, const LedMeter* meter_y,
                       const LedMeter* meter_z) {
  PlumeLogInfo("ChromaXYZ::Combine");
  cv::Mat X, Y, Z;
  const int status = SelectPlanes("ChromaXYZ::Combine", meter_x, meter_y, meter_z, X, Y, Z);
  if (status != kOk) return status;
  if (Z.empty()) Z = cv::Mat::zeros(Y.rows, Y.cols, CV_32FC1);
  out.X = X;
  out.Y = Y;
  out.Z = Z;
  return kOk;
}

}  // namespace aimhue
