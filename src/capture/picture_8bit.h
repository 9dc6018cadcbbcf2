// The 8-bit picture conversion shared by the shot and meter picture exports,
// and the guarded picture writer.
#ifndef AIMHUE_SRC_CAPTURE_PICTURE_8BIT_H_
#define AIMHUE_SRC_CAPTURE_PICTURE_8BIT_H_

#include <string>

#include <opencv2/core.hpp>

namespace aimhue {

enum class PictureMode { kGrey, kColour };

// Converts `image` (any depth, any channel count) to 8 bits. With a known
// `maximum` (> 0) the scale is 255 / maximum computed in single precision,
// with rounding and saturation; with maximum <= 0 (unknown) the image is
// normalised so that its largest magnitude becomes 255. Grey mode then
// reduces three channels to one (BGR to grey); colour mode turns one channel
// into three equal ones. Other channel counts use channel 0.
cv::Mat ConvertTo8Bit(const cv::Mat& image, double maximum, PictureMode mode);

// The largest sample of a sensor whose camera type carries its bit depth in
// its last two decimal digits (4095 for 320012); 0 (unknown) when those
// digits give no positive depth.
double SensorMaximum(int cam_type);

// Writes `picture` with WritePictureFile (OpenCV's imwrite); false when the
// write is refused, including an extension that no encoder knows.
bool WritePicture(const std::string& fullname, const cv::Mat& picture);

}  // namespace aimhue

#endif  // AIMHUE_SRC_CAPTURE_PICTURE_8BIT_H_
