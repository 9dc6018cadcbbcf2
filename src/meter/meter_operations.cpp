// LedMeter operations on the value plane: Align, FixDeadPoint and
// MergeChroma.
#include <aimhue/led_meter.h>
#include <aimhue/plume_log.h>
#include <aimhue/status.h>

#include <algorithm>
#include <cmath>
#include <utility>

#include "common/exception_guard.h"
#include "meter/dead_led_repair.h"

namespace aimhue {
namespace {

// Multiplies every element by `factor` in single precision.
void ScalePlane(cv::Mat& plane, float factor) {
  for (int r = 0; r < plane.rows; ++r) {
    float* row = plane.ptr<float>(r);
    for (int c = 0; c < plane.cols; ++c) row[c] = row[c] * factor;
  }
}

}  // namespace

int LedMeter::Align(const float* target_xyz, const int* in_point, const int* in_radius) {
  PlumeLogInfo("LedMeter::Align");
  return GuardExceptions("LedMeter::Align", [&]() -> int {
    if (chroma.empty()) {
      PlumeLogError("LedMeter::Align--Error :: chroma empty");
      return kEmptyInput;
    }
    if (chroma.type() != CV_32FC1) {
      PlumeLogError("LedMeter::Align--Error :: chroma is not 32-bit float");
      return kBadImageDataType;
    }
    if (target_xyz == nullptr) {
      PlumeLogError("LedMeter::Align--Error :: target_xyz is nullptr");
      return kNullInput;
    }
    const float target = type == CIE_X   ? target_xyz[0]
                         : type == CIE_Y ? target_xyz[1]
                                         : target_xyz[2];

    float factor = 0.0f;
    if (in_point != nullptr && in_radius != nullptr) {
      const int64_t x = in_point[0];
      const int64_t y = in_point[1];
      const int64_t radius = *in_radius;
      if (x - radius < 0 || x + radius > chroma.cols || y - radius < 0 ||
          y + radius > chroma.rows) {
        PlumeLogError("LedMeter::Align--Error :: in_point or in_radius is invalid");
        return kBadAlignment;
      }
      // The bounds are inclusive, so the disc may reach one element past the
      // last row or column; that element does not exist and is left out.
      const double limit = static_cast<double>(radius) + 0.5;
      float sum = 0.0f;
      int count = 0;
      for (int64_t row = y - radius; row <= std::min<int64_t>(y + radius, chroma.rows - 1); ++row) {
        const float* values = chroma.ptr<float>(static_cast<int>(row));
        for (int64_t column = x - radius; column <= std::min<int64_t>(x + radius, chroma.cols - 1);
             ++column) {
          const double dx = static_cast<double>(column - x);
          const double dy = static_cast<double>(row - y);
          if (std::sqrt(dx * dx + dy * dy) < limit) {
            sum += values[column];
            ++count;
          }
        }
      }
      // No element (a negative radius) gives 0 / 0: the plane becomes NaN.
      const float mean = sum / static_cast<float>(count);
      factor = target / mean;
    } else {
      const double mean = cv::mean(chroma)[0];
      factor = static_cast<float>(static_cast<double>(target) / mean);
    }
    ScalePlane(chroma, factor);
    return kOk;
  });
}

int LedMeter::FixDeadPoint() {
  PlumeLogInfo("LedMeter::FixDeadPoint");
  return GuardExceptions("LedMeter::FixDeadPoint", [&]() -> int {
    if (chroma.empty()) {
      PlumeLogError("LedMeter::Align--Error :: chroma empty");  // the text shared with Align
      return kEmptyInput;
    }
    if (chroma.type() != CV_32FC1) {
      PlumeLogError("LedMeter::FixDeadPoint--Error :: chroma is not 32-bit float");
      return kBadImageDataType;
    }
    if (state.empty()) return kOk;  // no LED is marked dead
    if (state.size() != chroma.size() || state.type() != CV_8UC1) {
      PlumeLogError("LedMeter::FixDeadPoint--Error :: state size mismatch");
      return kOutOfRange;
    }
    RepairDeadLeds(state, chroma);
    return kOk;
  });
}

int LedMeter::MergeChroma(const LedMeter& src, const cv::Mat& mask) {
  PlumeLogInfo("LedMeter::MergeChroma");
  return GuardExceptions("LedMeter::MergeChroma", [&]() -> int {
    if (src.chroma.empty() || mask.total() == 0) {
      PlumeLogError("LedMeter::MergeChroma--Error :: input empty");
      return kEmptyInput;
    }
    if (src.chroma.size() != mask.size() || src.chroma.size() != chroma.size() ||
        src.chroma.type() != chroma.type() || mask.channels() != 1) {
      PlumeLogError("LedMeter::MergeChroma--Error :: input size mismatch");
      return kOutOfRange;
    }
    src.chroma.copyTo(chroma, mask != 0);
    return kOk;
  });
}

}  // namespace aimhue
