// LedMeter::ExportGrayChroma and LedMeter::ExportPointImage: 8-bit pictures
// of a meter's value and position planes.
#include <aimhue/led_meter.h>
#include <aimhue/plume_log.h>
#include <aimhue/status.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include <opencv2/imgproc.hpp>

#include "capture/picture_8bit.h"
#include "common/exception_guard.h"

namespace aimhue {
namespace {

constexpr double kMaxPictureSide = 65536.0;
constexpr int kMarkThickness = 1;
constexpr int kMarkLineType = 8;
const cv::Scalar kMarkColour(255);

}  // namespace

int LedMeter::ExportGrayChroma(const std::string& fullname, double scale,
                               const std::vector<cv::Point>& marks, bool full_screen) const {
  PlumeLogInfo("LedMeter::ExportGrayChroma");
  return GuardExceptions("LedMeter::ExportGrayChroma", [&]() -> int {
    if (chroma.empty()) {
      PlumeLogError("LedMeter::ExportGrayChroma--Error :: empty");
      return kEmptyInput;
    }
    const bool screen_known =
        partition != nullptr && partition->w == chroma.cols && partition->h == chroma.rows;
    if (full_screen && !screen_known) {
      PlumeLogError("LedMeter::ExportGrayChroma--Error :: no partition of the chroma size");
      return kOutOfRange;
    }
    const cv::Size leds =
        full_screen ? cv::Size(partition->screen_w, partition->screen_h) : chroma.size();
    const double picture_w = std::nearbyint(leds.width * scale);
    const double picture_h = std::nearbyint(leds.height * scale);
    // The negated tests also refuse a NaN scale.
    if (!(scale > 0.0) || !(picture_w >= 1.0 && picture_w <= kMaxPictureSide) ||
        !(picture_h >= 1.0 && picture_h <= kMaxPictureSide)) {
      PlumeLogError("LedMeter::ExportGrayChroma--Error :: scale");
      return kOutOfRange;
    }

    cv::Mat grey = ConvertTo8Bit(chroma, 0.0, PictureMode::kGrey);
    cv::Point offset(0, 0);
    if (full_screen) {
      offset = cv::Point(partition->x, partition->y);
      cv::Mat screen = cv::Mat::zeros(leds, CV_8UC1);
      grey.copyTo(screen(cv::Rect(offset, grey.size())));
      grey = screen;
    }
    cv::Mat picture;
    cv::resize(grey, picture, cv::Size(static_cast<int>(picture_w), static_cast<int>(picture_h)),
               0.0, 0.0, cv::INTER_NEAREST);
    const int radius = std::max(1, static_cast<int>(std::nearbyint(scale)));
    for (const cv::Point& mark : marks) {
      if (mark.x < 0 || mark.x >= chroma.cols || mark.y < 0 || mark.y >= chroma.rows) continue;
      const cv::Point centre(static_cast<int>(std::nearbyint((mark.x + offset.x + 0.5) * scale)),
                             static_cast<int>(std::nearbyint((mark.y + offset.y + 0.5) * scale)));
      cv::circle(picture, centre, radius, kMarkColour, kMarkThickness, kMarkLineType);
    }
    if (!WritePicture(fullname, picture)) {
      PlumeLogError("LedMeter::ExportGrayChroma--Error :: imwrite");
      return kOpenWriteFailed;
    }
    return kOk;
  });
}

int LedMeter::ExportPointImage(const std::string& fullname, int channel) const {
  PlumeLogInfo("LedMeter::ExportPointImage");
  return GuardExceptions("LedMeter::ExportPointImage", [&]() -> int {
    if (pos.empty()) {
      PlumeLogError("LedMeter::ExportPointImage--Error :: empty");
      return kEmptyInput;
    }
    if (channel < 0 || channel >= pos.channels()) {
      PlumeLogError("LedMeter::ExportPointImage--Error :: channel");
      return kOutOfRange;
    }
    std::vector<cv::Mat> planes;
    cv::split(pos, planes);
    if (!WritePicture(fullname, ConvertTo8Bit(planes[channel], 0.0, PictureMode::kGrey))) {
      PlumeLogError("LedMeter::ExportPointImage--Error :: imwrite");
      return kOpenWriteFailed;
    }
    return kOk;
  });
}

}  // namespace aimhue
