// Text and the neutral colours shared by the tool's pictures (the gamut plot
// and the correction map), so that both read alike.
#ifndef AIMHUE_TOOLS_PICTURE_TEXT_H_
#define AIMHUE_TOOLS_PICTURE_TEXT_H_

#include <string>

#include <opencv2/core.hpp>

namespace aimhue {
namespace tool {

// Colours, OpenCV's blue-green-red order.
const cv::Scalar kPictureInk(40, 40, 40);
const cv::Scalar kPictureFrame(150, 150, 150);

// Anti-aliased text in the pictures' one font, its baseline starting at
// `origin`.
void PictureText(cv::Mat& image, const std::string& text, cv::Point origin, double size,
                 const cv::Scalar& colour, int thickness = 1);

// The width in pixels of `text` drawn by PictureText at thickness 1.
int PictureTextWidth(const std::string& text, double size);

}  // namespace tool
}  // namespace aimhue

#endif  // AIMHUE_TOOLS_PICTURE_TEXT_H_
