// Shot::ExportColorImage and Shot::ExportGrayImage: 8-bit picture files.
#include <aimhue/plume_log.h>
#include <aimhue/shot.h>
#include <aimhue/status.h>
#include <aimhue/target.h>

#include <vector>

#include "capture/picture_8bit.h"
#include "common/exception_guard.h"

namespace aimhue {
namespace {

// Channels 0 and 2 exchanged, for any depth.
cv::Mat SwapFirstAndLast(const cv::Mat& image) {
  cv::Mat swapped(image.size(), image.type());
  const int from_to[] = {0, 2, 1, 1, 2, 0};
  cv::mixChannels(&image, 1, &swapped, 1, from_to, 3);
  return swapped;
}

double MaximumOf(const Device* device) {
  return device != nullptr ? SensorMaximum(device->cam_type) : 0.0;
}

cv::Mat GreyPicture(const Shot& shot) {
  const cv::Mat& source = shot.image.channels() == 3 ? SwapFirstAndLast(shot.image) : shot.image;
  return ConvertTo8Bit(source, MaximumOf(shot.device.get()), PictureMode::kGrey);
}

cv::Mat ColourPicture(const Shot& shot) {
  if (shot.image.channels() == 3) {
    return ConvertTo8Bit(SwapFirstAndLast(shot.image), MaximumOf(shot.device.get()),
                         PictureMode::kColour);
  }
  if (shot.color != nullptr && *shot.color != 0) {
    const cv::Mat grey = GreyPicture(shot);
    const cv::Mat zero = cv::Mat::zeros(grey.size(), grey.type());
    // Channels in the writer's blue, green, red order, bit k of the colour
    // code lighting channel k.
    const std::vector<cv::Mat> channels = {(*shot.color & kRed) ? grey : zero,
                                           (*shot.color & kGreen) ? grey : zero,
                                           (*shot.color & kBlue) ? grey : zero};
    cv::Mat picture;
    cv::merge(channels, picture);
    return picture;
  }
  return ConvertTo8Bit(shot.image, MaximumOf(shot.device.get()), PictureMode::kColour);
}

// Both exports: 5 for an empty image, 6 for half floats (OpenCV's channel
// operations do not handle them), 4 when the picture writer refuses.
int ExportPicture(const char* who, const Shot& shot, const std::string& fullname,
                  cv::Mat (*make_picture)(const Shot&)) {
  return GuardExceptions(who, [&] {
    if (shot.image.empty()) {
      PlumeLogError("%s--Error :: empty", who);
      return kEmptyInput;
    }
    if (shot.image.depth() == CV_16F) {
      PlumeLogError("%s--Error :: element type", who);
      return kUnsupportedElementType;
    }
    if (!WritePicture(fullname, make_picture(shot))) {
      PlumeLogError("%s--Error :: imwrite", who);
      return kOpenWriteFailed;
    }
    return kOk;
  });
}

}  // namespace

int Shot::ExportColorImage(const std::string& fullname) const {
  PlumeLogInfo("Shot::ExportColorImage");
  return ExportPicture("Shot::ExportColorImage", *this, fullname, ColourPicture);
}

int Shot::ExportGrayImage(const std::string& fullname) const {
  PlumeLogInfo("Shot::ExportGrayImage");
  return ExportPicture("Shot::ExportGrayImage", *this, fullname, GreyPicture);
}

}  // namespace aimhue
