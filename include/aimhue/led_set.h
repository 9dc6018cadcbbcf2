// The per-LED result of one capture, as handed to LedMeter::Add.
#ifndef AIMHUE_LED_SET_H_
#define AIMHUE_LED_SET_H_

#include <opencv2/core.hpp>

namespace aimhue {

struct LedSet {
  cv::Mat state;  // 8-bit, one byte per lit LED
  cv::Mat data;   // positions (two 32-bit channels) or values (32-bit float)
};

}  // namespace aimhue

#endif  // AIMHUE_LED_SET_H_
