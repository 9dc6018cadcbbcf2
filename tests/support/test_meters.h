// Meters for tests: complete records whose planes hold one value.
#ifndef AIMHUE_TESTS_SUPPORT_TEST_METERS_H_
#define AIMHUE_TESTS_SUPPORT_TEST_METERS_H_

#include <aimhue/led_meter.h>

#include <cstdint>

namespace aimhue::testing {

// A meter of `type` and `color` with a partition, a layer, and rows x cols
// planes: chroma filled with `value`, pos and state zero.
inline LedMeter MakeMeter(uint32_t type, uint32_t color, int rows = 2, int cols = 3,
                          float value = 1.0f) {
  LedMeter meter;
  meter.type = type;
  meter.color = color;
  meter.partition = std::make_unique<Partition>(Partition{0, 0, cols, rows, cols, rows});
  meter.layer = std::make_unique<Layer>(Layer{0, 1.0f, 255});
  meter.chroma = cv::Mat(rows, cols, CV_32FC1, cv::Scalar(value));
  meter.pos = cv::Mat::zeros(rows, cols, CV_32FC2);
  meter.state = cv::Mat::zeros(rows, cols, CV_8UC1);
  return meter;
}

}  // namespace aimhue::testing

#endif  // AIMHUE_TESTS_SUPPORT_TEST_METERS_H_
