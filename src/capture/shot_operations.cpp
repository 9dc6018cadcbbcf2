// Shot operations that change a shot: colour conversion, split, rotation,
// background removal, deep copy and the point-locator preset.
#include <aimhue/plume_log.h>
#include <aimhue/shot.h>
#include <aimhue/status.h>
#include <aimhue/target.h>

#include <cstring>
#include <utility>
#include <vector>

#include <opencv2/imgproc.hpp>

#include "common/exception_guard.h"

namespace aimhue {
namespace {

constexpr int kFullTurn = 360;
constexpr char kPointLocatorName[] = "custom :: ForPointLocator";

}  // namespace

namespace {

// The plane ConvertColorSpace keeps for a CIE type: the X, Y or Z channel of
// the converted image, or (CIE_XYZ) the three-channel image itself, which
// follows the three channels.
size_t CiePlaneIndex(uint32_t cieType) {
  switch (cieType) {
    case CIE_X:
      return 0;
    case CIE_Y:
      return 1;
    case CIE_Z:
      return 2;
    default:
      return 3;
  }
}

}  // namespace

int Shot::ConvertColorSpace(uint32_t in_cie_type, const cv::Mat& in_color_trans) {
  PlumeLogInfo("Shot::ConvertColorSpace");
  return GuardExceptions("Shot::ConvertColorSpace", [&]() -> int {
    if (in_cie_type != CIE_X && in_cie_type != CIE_Y && in_cie_type != CIE_Z &&
        in_cie_type != CIE_XYZ) {
      PlumeLogError(
          "Shot::ConvertColorSpace--Error :: in_cie_type != CIE_Y && in_cie_type != CIE_X && "
          "in_cie_type != CIE_Z && in_cie_type != CIE_XYZ");
      return kUnsupportedCaptureType;
    }
    if (type != CAM_RGB) {
      PlumeLogError("Shot::ConvertColorSpace--Error :: shot type is not CAM_RGB");
      return kUnsupportedCaptureType;
    }
    if (image.type() != CV_16UC3) {
      PlumeLogError("Shot::ConvertColorSpace--Error :: data channel must be 3");
      return kBadImageDataType;
    }
    if (image.empty()) {
      PlumeLogError("Shot::ConvertColorSpace--Error :: empty");
      return kEmptyInput;
    }
    if (in_color_trans.rows != 3 || in_color_trans.cols != 3 || in_color_trans.channels() != 1) {
      PlumeLogError("Shot::ConvertToCIEXYZ--Error :: in_color_trans.size()!=cv::Size(3,3)");
      return kOutOfRange;
    }
    cv::Mat_<float> matrix;
    in_color_trans.convertTo(matrix, CV_32F);

    // Every pixel p = (c0, c1, c2) becomes M * p, each component summed left to
    // right in single precision.
    cv::Mat converted(image.rows, image.cols, CV_32FC3);
    for (int r = 0; r < image.rows; ++r) {
      const cv::Vec3w* source = image.ptr<cv::Vec3w>(r);
      cv::Vec3f* target = converted.ptr<cv::Vec3f>(r);
      for (int c = 0; c < image.cols; ++c) {
        const float c0 = source[c][0], c1 = source[c][1], c2 = source[c][2];
        for (int k = 0; k < 3; ++k) {
          target[c][k] = matrix(k, 0) * c0 + matrix(k, 1) * c1 + matrix(k, 2) * c2;
        }
      }
    }
    std::vector<cv::Mat> entries;
    cv::split(converted, entries);
    entries.push_back(converted);
    image = entries[CiePlaneIndex(in_cie_type)];
    type = in_cie_type;
    return kOk;
  });
}

int Shot::Split(Shot* r, Shot* g, Shot* b) const {
  PlumeLogInfo("Shot::Split");
  return GuardExceptions("Shot::Split", [&]() -> int {
    if (r == nullptr && g == nullptr && b == nullptr) {
      PlumeLogError("SHOT::Split -- all input was nullptr");
      return kNullInput;
    }
    if (image.empty()) {
      PlumeLogError("Shot::Split--Error :: empty");
      return kEmptyInput;
    }
    if (image.channels() != 3 || type != CAM_RGB) {
      PlumeLogError("Shot::Split -- Error image.channels() != 3 || type!= CAM_RGB");
      return kBadImageDataType;
    }
    std::vector<cv::Mat> planes;
    cv::split(image, planes);  // new matrices, not views of this image
    struct Output {
      Shot* shot;
      uint32_t type;
      int plane;
      Shot result;
    };
    Output outputs[] = {{b, CAM_B, 2, {}}, {g, CAM_G, 1, {}}, {r, CAM_R, 0, {}}};
    // Every output is made whole before any is stored, so that a failure on
    // the way leaves them all as they were.
    for (Output& output : outputs) {
      if (output.shot == nullptr) continue;
      CopyMetaTo(&output.result);
      output.result.type = output.type;
      output.result.image = planes[output.plane];
    }
    for (Output& output : outputs) {
      if (output.shot != nullptr) *output.shot = std::move(output.result);
    }
    return kOk;
  });
}

int Shot::Rotate(int roll_angle) {
  PlumeLogInfo("Shot::Rotate");
  return GuardExceptions("Shot::Rotate", [&]() -> int {
    // A negative angle is lifted by whole turns until it is positive; a
    // negative multiple of a turn thus becomes a full turn, which is refused.
    int64_t angle = roll_angle % kFullTurn;
    if (roll_angle < 0) {
      const int64_t turns = roll_angle / kFullTurn;
      angle = roll_angle + (1 - turns) * kFullTurn;
    }
    if (angle == 0) return kOk;
    if (angle != 90 && angle != 180 && angle != 270) {
      PlumeLogError("Shot::Rotate--Error :: roll_angle");
      return kOutOfRange;
    }
    if (image.empty()) {
      PlumeLogError("Shot::Rotate--Error :: empty");
      return kEmptyInput;
    }
    cv::Mat rotated;
    if (angle == 90) {
      cv::flip(image.t(), rotated, 0);
    } else if (angle == 180) {
      cv::flip(image, rotated, -1);
    } else {
      cv::flip(image.t(), rotated, 1);
    }
    image = rotated;
    return kOk;
  });
}

int Shot::RemoveBackground(const Shot& background) {
  PlumeLogInfo("Shot::Remove");
  return GuardExceptions("Shot::Remove", [&]() -> int {
    if (background.image.empty() || image.empty()) {
      PlumeLogError("SHOT::RemoveBackground -- Error empty data");
      return kEmptyInput;
    }
    if (background.image.rows != image.rows || background.image.cols != image.cols ||
        background.image.type() != image.type()) {
      PlumeLogError("SHOT::RemoveBackground -- Error data mismatch");
      return kCaptureMismatch;
    }
    if (image.depth() == CV_16F) {
      // OpenCV has no subtraction of half floats; a 16-bit float image can
      // only come from a file.
      PlumeLogError("SHOT::RemoveBackground -- Error element type");
      return kUnsupportedElementType;
    }
    cv::Mat difference;
    cv::subtract(image, background.image, difference);  // saturates to the type
    // Everything at or below zero becomes zero. Unsigned samples cannot be
    // below zero after the saturating subtraction, so they need nothing more.
    switch (difference.depth()) {
      case CV_16S:
      case CV_32F:
      case CV_64F:
        cv::threshold(difference, difference, 0.0, 255.0, cv::THRESH_TOZERO);
        break;
      case CV_8S:
      case CV_32S: {
        cv::Mat samples = difference.reshape(1);
        samples.setTo(0, samples < 0);
        break;
      }
      default:
        break;
    }
    image = difference;
    return kOk;
  });
}

void Shot::CopyTo(Shot* dst) const {
  PlumeLogInfo("Shot::CopyTo");
  if (dst == nullptr || dst == this) return;
  GuardExceptionsQuietly("Shot::CopyTo", [&] {
    // Built aside and moved in whole, so that a failure leaves dst as it was.
    Shot copy;
    CopyMetaTo(&copy);
    copy.type = type;
    copy.image = image.clone();
    *dst = std::move(copy);
  });
}

int Shot::SetForPointLocator(int cam_type, const int screen_wh[2], const int interval[2], int index,
                             int lens_type) {
  return GuardExceptions("Shot::SetForPointLocator", [&]() -> int {
    Device locator{};
    std::strncpy(locator.id, kPointLocatorName, sizeof(locator.id) - 1);
    locator.cam_type = cam_type;
    std::strncpy(locator.lens_id, kPointLocatorName, sizeof(locator.lens_id) - 1);
    locator.lens_type = lens_type;
    SetDevice(locator);

    if (screen_wh != nullptr && screen_wh[0] > 0 && screen_wh[1] > 0) {
      SetPartition(Partition{0, 0, screen_wh[0], screen_wh[1], screen_wh[0], screen_wh[1]});
      if (interval != nullptr) {
        Pattern locator_pattern{1, interval[0], interval[1], 0, 0, -1, -1};
        // An interval below 1 is refused by SetPattern; the phase is only
        // computed where the division is defined.
        if (interval[0] >= 1) {
          locator_pattern.loc_x = index % interval[0];
          locator_pattern.loc_y = index / interval[0];
        }
        SetPattern(locator_pattern);
      }
    }
    SetLedPanel(LedPanel{1, 4, 0, 1, 1, -1.0f});
    return SetColor(kGreen);
  });
}

}  // namespace aimhue
