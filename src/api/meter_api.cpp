// The exported meter stacking function.
#include <aimhue/api.h>
#include <aimhue/led_meter.h>
#include <aimhue/plume_log.h>
#include <aimhue/status.h>

#include "common/exception_guard.h"

extern "C" {

int AimhueVConcatMeter(const aimhue::LedMeter* top, const aimhue::LedMeter* bottom,
                       aimhue::LedMeter* out) {
  if (top == nullptr || bottom == nullptr || out == nullptr) return aimhue::kNullInput;
  if (top->chroma.cols != bottom->chroma.cols) {
    PlumeLogError("LedMeter::Check--Error in LedMeter input cols");
    return aimhue::kOutOfRange;
  }
  if (top->type != bottom->type) {
    PlumeLogError("LedMeter::Check--Error in LedMeter input type");
    return aimhue::kOutOfRange;
  }
  if (top->color != bottom->color) {
    PlumeLogError("LedMeter::Check--Error in LedMeter input color");
    return aimhue::kOutOfRange;
  }
  return aimhue::GuardExceptions("AimhueVConcatMeter", [&] {
    // Stacked into new planes first: `out` may be `top` or `bottom`, and a
    // failure must leave it untouched.
    cv::Mat state;
    cv::Mat chroma;
    cv::vconcat(top->state, bottom->state, state);
    cv::vconcat(top->chroma, bottom->chroma, chroma);
    out->state = state;
    out->chroma = chroma;
    out->color = top->color;
    out->type = top->type;
    return static_cast<int>(aimhue::kOk);
  });
}

}  // extern "C"
