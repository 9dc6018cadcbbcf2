// The 8-bit picture conversion and writer shared by Shot and LedMeter.
#include "capture/picture_8bit.h"

#include <aimhue/picture_files.h>

#include <cmath>

#include <opencv2/imgproc.hpp>

namespace aimhue {
namespace {

cv::Mat FirstChannel(const cv::Mat& image) {
  cv::Mat channel;
  cv::extractChannel(image, channel, 0);
  return channel;
}

}  // namespace

cv::Mat ConvertTo8Bit(const cv::Mat& image, double maximum, PictureMode mode) {
  cv::Mat picture;
  if (maximum > 0.0) {
    const float scale = 255.0f / static_cast<float>(maximum);
    image.convertTo(picture, CV_8U, static_cast<double>(scale), 0.0);
  } else {
    cv::normalize(image, picture, 255.0, 0.0, cv::NORM_INF, CV_8U);
  }
  const int channels = picture.channels();
  if (mode == PictureMode::kGrey) {
    if (channels == 3) {
      cv::cvtColor(picture, picture, cv::COLOR_BGR2GRAY);
    } else if (channels != 1) {
      picture = FirstChannel(picture);
    }
  } else {
    if (channels == 1) {
      cv::cvtColor(picture, picture, cv::COLOR_GRAY2BGR);
    } else if (channels != 3) {
      cv::cvtColor(FirstChannel(picture), picture, cv::COLOR_GRAY2BGR);
    }
  }
  return picture;
}

double SensorMaximum(int cam_type) {
  const int bits = cam_type % 100;
  if (bits <= 0) return 0.0;
  return std::ldexp(1.0, bits) - 1.0;
}

bool WritePicture(const std::string& fullname, const cv::Mat& picture) {
  return WritePictureFile(fullname, picture);
}

}  // namespace aimhue
