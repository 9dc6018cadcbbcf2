#include "engine/subsample.h"

#include <array>
#include <cmath>

#include "meter/chroma_lxy.h"

namespace aimhue {

SubsampleStride SubsampleStrideFor(int64_t ledCount) {
  const double leds = static_cast<double>(ledCount);
  const int32_t step = static_cast<int32_t>(std::ceil(leds / static_cast<double>(kMaxWorkingLeds)));
  const int32_t count = static_cast<int32_t>(std::ceil(leds / static_cast<double>(step)));
  return SubsampleStride{step, count};
}

void Subsample(const ChromaLxy& red, const ChromaLxy& green, const ChromaLxy& blue,
               ChromaLxy& redOut, ChromaLxy& greenOut, ChromaLxy& blueOut) {
  const int rows = red.L.rows;
  const int cols = red.L.cols;
  // The LED count is formed in 64 bits: identical to the 32-bit product for
  // every screen that has fewer than 2^31 LEDs, and it cannot overflow.
  const int64_t ledCount = static_cast<int64_t>(rows) * cols;
  const SubsampleStride stride = SubsampleStrideFor(ledCount);

  const std::array<const cv::Mat*, 9> inputs = {&red.L,   &red.x,   &red.y,
                                                &green.L, &green.x, &green.y,
                                                &blue.L,  &blue.x,  &blue.y};
  const std::array<cv::Mat*, 9> outputs = {&redOut.L,   &redOut.x,   &redOut.y,
                                           &greenOut.L, &greenOut.x, &greenOut.y,
                                           &blueOut.L,  &blueOut.x,  &blueOut.y};
  if (stride.step == 1) {
    for (size_t plane = 0; plane < inputs.size(); ++plane) *outputs[plane] = *inputs[plane];
    return;
  }

  std::array<float*, 9> targets;
  for (size_t plane = 0; plane < outputs.size(); ++plane) {
    *outputs[plane] = cv::Mat(stride.count, 1, CV_32FC1);
    targets[plane] = outputs[plane]->ptr<float>();
  }
  const double columns = static_cast<double>(cols);
  int64_t taken = 0;
  for (int64_t led = 0; led < ledCount; led += stride.step, ++taken) {
    const int row = static_cast<int>(std::floor(static_cast<double>(led) / columns));
    const int col = static_cast<int>(led - static_cast<int64_t>(cols) * row);
    for (size_t plane = 0; plane < inputs.size(); ++plane) {
      targets[plane][taken] = inputs[plane]->ptr<float>(row)[col];
    }
  }
}

}  // namespace aimhue
