// Shot: metadata setters, the metadata copy and the two image setters.
#include <aimhue/plume_log.h>
#include <aimhue/shot.h>
#include <aimhue/status.h>

#include <vector>

#include <opencv2/imgproc.hpp>

#include "capture/shot_types.h"
#include "common/exception_guard.h"
#include "common/record_rules.h"

namespace aimhue {

void Shot::ClearMeta() {
  part.reset();
  panel.reset();
  layer.reset();
  pattern.reset();
  color.reset();
  device.reset();
  capture.reset();
}

int Shot::SetPartition(const Partition& value) {
  PlumeLogInfo("Shot::SetPartition");
  return GuardExceptions("Shot::SetPartition", [&]() -> int {
    if (!PartitionFitsScreen(value)) {
      PlumeLogError("Shot::SetPartition--Error :: invalid screen wh or partition xywh");
      return kBadPartition;
    }
    StoreRecord(part, value);
    return kOk;
  });
}

int Shot::SetLedPanel(const LedPanel& value) {
  PlumeLogInfo("Shot::SetLedPanel");
  return GuardExceptions("Shot::SetLedPanel", [&]() -> int {
    if (value.w < 1 || value.h < 1) {
      PlumeLogError("Shot::SetLedPanel--Error :: invalid panel_wh");
      return kBadLedPanel;
    }
    StoreRecord(panel, value);
    return kOk;
  });
}

int Shot::SetLayer(const Layer& value) {
  PlumeLogInfo("Shot::SetLayer");
  return GuardExceptions("Shot::SetLayer", [&]() -> int {
    StoreRecord(layer, value);
    return kOk;
  });
}

int Shot::SetPattern(const Pattern& value) {
  PlumeLogInfo("Shot::SetPattern");
  return GuardExceptions("Shot::SetPattern", [&]() -> int {
    if (value.interval_x < 1 || value.interval_y < 1 || value.loc_x < 0 ||
        value.loc_x >= value.interval_x || value.loc_y < 0 || value.loc_y >= value.interval_y) {
      PlumeLogError("Shot::SetPattern--Error :: invalid pattern_type pattern_loc_xy");
      return kBadPattern;
    }
    StoreRecord(pattern, value);
    if (part == nullptr) return kOk;

    const int32_t lit_w = LitLedCount(part->w, value.interval_x, value.loc_x);
    const int32_t lit_h = LitLedCount(part->h, value.interval_y, value.loc_y);
    if (value.lighted_led_w >= 1 && value.lighted_led_h >= 1) {
      if (value.lighted_led_w == lit_w && value.lighted_led_h == lit_h) return kOk;
      // The pattern stays stored as given: the caller learns of the mismatch
      // but keeps what it set.
      PlumeLogError(
          "Shot::SetPattern or SetPartition --Error :: mismatch pattern and partition info");
      return kPatternPartitionMismatch;
    }
    pattern->lighted_led_w = lit_w;
    pattern->lighted_led_h = lit_h;
    return kOk;
  });
}

int Shot::SetColor(const int& value) {
  PlumeLogInfo("Shot::SetColor");
  return GuardExceptions("Shot::SetColor", [&]() -> int {
    StoreRecord(color, static_cast<int32_t>(value));
    return kOk;
  });
}

int Shot::SetDevice(const Device& value) {
  PlumeLogInfo("Shot::SetDevice");
  return GuardExceptions("Shot::SetDevice", [&]() -> int {
    StoreRecord(device, value);
    return kOk;
  });
}

int Shot::SetCapture(const Capture& value) {
  PlumeLogInfo("Shot::SetCapture");
  return GuardExceptions("Shot::SetCapture", [&]() -> int {
    StoreRecord(capture, value);
    return kOk;
  });
}

void Shot::CopyMetaTo(Shot* dst) const {
  if (dst == this) return;
  dst->ClearMeta();
  // The partition goes first so that the pattern is checked against it.
  if (part != nullptr) dst->SetPartition(*part);
  if (panel != nullptr) dst->SetLedPanel(*panel);
  if (layer != nullptr) dst->SetLayer(*layer);
  if (pattern != nullptr) dst->SetPattern(*pattern);
  if (color != nullptr) dst->SetColor(*color);
  if (device != nullptr) dst->SetDevice(*device);
  if (capture != nullptr) dst->SetCapture(*capture);
}

int Shot::SetImageSingle(const cv::Mat& in_image, uint32_t in_type) {
  PlumeLogInfo("Shot::SetImageSingle");
  return GuardExceptions("Shot::SetImageSingle", [&]() -> int {
    if (!IsSingleChannelType(in_type)) {
      PlumeLogError(
          "Shot::SetImageSingle--Error :: in_cie_type!= CIE_Y && in_cie_type != CIE_X && "
          "in_cie_type != CIE_Z&&in_cie_type != CAM_R && in_cie_type != CAM_G && in_cie_type != "
          "CAM_B");
      return kUnsupportedCaptureType;
    }
    if (in_image.type() != CV_16UC1) {
      PlumeLogError("Shot::SetImageSingle--Error :: data and type mismatch");
      return kBadImageDataType;
    }
    image = in_image.clone();
    type = in_type;
    return kOk;
  });
}

namespace {

// The channel of the demosaiced image that a single camera type keeps:
// CAM_R, CAM_G and CAM_B take channels 0, 1 and 2 in the order the caller's
// conversion code gives them.
int CameraChannel(uint32_t type) {
  switch (type) {
    case CAM_R:
      return 0;
    case CAM_G:
      return 1;
    default:
      return 2;  // CAM_B
  }
}

}  // namespace

int Shot::SetImageColor(const cv::Mat& raw, int bayer_type, uint32_t in_type) {
  PlumeLogInfo("Shot::SetImageColor");
  return GuardExceptions("Shot::SetImageColor", [&]() -> int {
    if (in_type != CAM_R && in_type != CAM_G && in_type != CAM_B && in_type != CAM_RGB) {
      PlumeLogError(
          "Shot::SetImage--Error :: in_cie_type != CAM_R && in_cie_type != CAM_G && in_cie_type != "
          "CAM_B && in_cie_type != CAM_RGB");
      return kUnsupportedCaptureType;
    }
    if (raw.type() != CV_16UC1) {
      PlumeLogError("Shot::SetImageColor--Error :: data and type mismatch");
      return kBadImageDataType;
    }
    if (bayer_type == 0) {
      PlumeLogError("Shot::SetImageColor--Error :: in_bayer_type");
      return kZeroBayerCode;  // the one failure whose status equals CAM_RGB's value
    }
    cv::Mat color_image;
    try {
      cv::demosaicing(raw, color_image, bayer_type);
    } catch (const cv::Exception&) {
      color_image.release();
    }
    // Grey and four-channel codes, and codes OpenCV refuses, give no R, G, B planes.
    if (color_image.empty() || color_image.channels() != 3) {
      PlumeLogError("Shot::SetImageColor--Error :: in_bayer_type");
      return kOutOfRange;
    }
    cv::Mat selected;
    if (in_type == CAM_RGB) {
      selected = color_image;
    } else {
      cv::extractChannel(color_image, selected, CameraChannel(in_type));
    }
    image = selected;
    type = in_type;
    return kOk;
  });
}

}  // namespace aimhue
