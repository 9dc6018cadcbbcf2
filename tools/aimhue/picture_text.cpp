// Text of the tool's pictures.
#include "picture_text.h"

#include <opencv2/imgproc.hpp>

namespace aimhue {
namespace tool {
namespace {

constexpr int kFont = cv::FONT_HERSHEY_SIMPLEX;

}  // namespace

void PictureText(cv::Mat& image, const std::string& text, cv::Point origin, double size,
                 const cv::Scalar& colour, int thickness) {
  cv::putText(image, text, origin, kFont, size, colour, thickness, cv::LINE_AA);
}

int PictureTextWidth(const std::string& text, double size) {
  int unused = 0;
  return cv::getTextSize(text, kFont, size, 1, &unused).width;
}

}  // namespace tool
}  // namespace aimhue
