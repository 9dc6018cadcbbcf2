// Shot::Check: validation of one shot or of a pair of shots by a bit set.
#include <aimhue/plume_log.h>
#include <aimhue/shot.h>
#include <aimhue/status.h>

#include "capture/shot_types.h"
#include "common/empty_plane.h"

namespace aimhue {

int Shot::Check(uint32_t flags, const Shot* shot) {
  constexpr uint32_t kSingleTests = kShotCheckNotNull | kShotCheckImageNotEmpty |
                                    kShotCheckSingleChannel | kShotCheckHasColor |
                                    kShotCheckHasDevice | kShotCheckHasPattern | kShotCheckHasPanel;
  // A null shot is refused whenever any test would have to look at it.
  if (shot == nullptr && (flags & kSingleTests) != 0) {
    PlumeLogError("Shot::Check--Error in Shot input is nullptr");
    return kNullInput;
  }
  if ((flags & kShotCheckImageNotEmpty) && IsEmptyPlane(shot->image)) {
    PlumeLogError("Shot::Check--Error shot.image is empty");
    return kNullInput;
  }
  if ((flags & kShotCheckSingleChannel) && !IsSingleChannelType(shot->type)) {
    PlumeLogError("Shot::Check--Error ::  only support single channel");
    return kUnsupportedCaptureType;
  }
  if ((flags & kShotCheckHasColor) && shot->color == nullptr) {
    PlumeLogError("Shot::Check--Error :: meta::color info incompleted.");
    return kNoColor;
  }
  if ((flags & kShotCheckHasDevice) && shot->device == nullptr) {
    PlumeLogError("Shot::Check--Error :: meta::device info incompleted.");
    return kNoDevice;
  }
  if ((flags & kShotCheckHasPattern) && shot->pattern == nullptr) {
    PlumeLogError("Shot::Check--Error ::  pattern meta info incompleted.");
    return kBadPattern;
  }
  if ((flags & kShotCheckHasPanel) && shot->panel == nullptr) {
    PlumeLogError("Shot::Check--Error ::  panel meta info incompleted.");
    return kBadLedPanel;
  }
  return kOk;
}

int Shot::Check(uint32_t flags, const Shot* a, const Shot* b) {
  int status = Check(flags, b);
  if (status != kOk) return status;
  status = Check(flags, a);
  if (status != kOk) return status;
  const uint32_t pair_tests = flags & (kShotCheckTypeSame | kShotCheckImageSizeSame);
  if (pair_tests != 0 && (a == nullptr || b == nullptr)) {
    PlumeLogError("Shot::Check--Error in Shot input is nullptr");
    return kNullInput;
  }
  if ((flags & kShotCheckTypeSame) && a->type != b->type) {
    PlumeLogError("Shot::Check--Error :: meta::type mismatch.");
    return kCaptureMismatch;
  }
  if ((flags & kShotCheckImageSizeSame) &&
      (a->image.rows != b->image.rows || a->image.cols != b->image.cols)) {
    PlumeLogError("Shot::Check--Error :: image size mismatch.");
    return kCaptureMismatch;
  }
  return kOk;
}

}  // namespace aimhue
