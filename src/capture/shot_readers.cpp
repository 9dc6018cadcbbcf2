// Shot constructors from camera files: raw dumps and DNG files.
#include <aimhue/bimage.h>
#include <aimhue/plume_log.h>
#include <aimhue/shot.h>
#include <aimhue/status.h>

#include "common/exception_guard.h"

namespace aimhue {

int Shot::CreateFromRaw(const std::string& fullname, uint32_t in_type, int cols, int rows,
                        int bayer_type) {
  PlumeLogInfo("Shot::CreateFromRaw");
  return GuardExceptions("Shot::CreateFromRaw", [&]() -> int {
    const cv::Mat raw = BImage::ReadOrvoRaw(fullname, rows, cols);
    if (raw.empty()) {
      PlumeLogError("Shot::CreateFromRaw -- Error Read raw file = %s", fullname.c_str());
      return kOpenReadFailed;
    }
    return bayer_type != 0 ? SetImageColor(raw, bayer_type, in_type) : SetImageSingle(raw, in_type);
  });
}

int Shot::CreateFromRaw(const std::string& fullname, int cam_type, uint32_t in_type) {
  PlumeLogInfo("Shot::CreateFromRaw");
  return GuardExceptions("Shot::CreateFromRaw", [&]() -> int {
    cv::Mat raw;
    if (cam_type == kCamera120016) {
      raw = BImage::ReadOrvoRaw120016(fullname);
    } else if (cam_type == kCamera320012) {
      raw = BImage::ReadOrvoRaw320012(fullname);
    } else {
      PlumeLogError("Shot::CreateFromRaw -- Error CameraType");
      return kUnknownCameraType;
    }
    if (raw.empty()) {
      PlumeLogError("Shot::CreateFromRaw -- Error Read raw file=%s", fullname.c_str());
      return kOpenReadFailed;
    }
    return SetImageSingle(raw, in_type);
  });
}

int Shot::ReadDng(const std::string& fullname, uint32_t in_type, int bayer_type) {
  PlumeLogInfo("Shot::ReadDng");
  return GuardExceptions("Shot::ReadDng", [&]() -> int {
    const cv::Mat raw = BImage::ReadRggbDng(fullname);
    if (raw.empty()) {
      PlumeLogError("Shot::ReadDng--Error ::Error Read dng file = %s", fullname.c_str());
      return kOpenReadFailed;
    }
    return bayer_type != 0 ? SetImageColor(raw, bayer_type, in_type) : SetImageSingle(raw, in_type);
  });
}

int Shot::ReadDngToupTek(const std::string& fullname, uint32_t in_type) {
  PlumeLogInfo("Shot::ReadDngToupTek");
  return GuardExceptions("Shot::ReadDngToupTek", [&]() -> int {
    const cv::Mat raw = BImage::ReadDngToup(fullname);
    if (raw.empty()) {
      PlumeLogError("Shot::ReadDng--Error ::Error Read dng file = %s", fullname.c_str());
      return kOpenReadFailed;
    }
    return SetImageSingle(raw, in_type);
  });
}

}  // namespace aimhue
