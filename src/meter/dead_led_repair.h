// Repair of dead LEDs: each LED whose state byte has bit 0 set takes the
// median of its 3 x 3 neighbourhood of the value plane, border replicated,
// dead neighbours included, all medians taken from the plane as it was
// before the repair. The result equals the whole-plane 3 x 3 median filter
// of OpenCV (medianBlur) at the dead LEDs bit for bit, but the work is in
// proportion to the dead LEDs: one pass over the state plane finds them and
// only their neighbourhoods are sorted.
#ifndef AIMHUE_SRC_METER_DEAD_LED_REPAIR_H_
#define AIMHUE_SRC_METER_DEAD_LED_REPAIR_H_

#include <aimhue/dead_leds.h>

#include <cstdint>

#include <opencv2/core.hpp>

namespace aimhue {

// `state` is CV_8UC1 and `values` CV_32FC1 of the same size (the caller
// checks). Returns the number of LEDs repaired.
int64_t RepairDeadLeds(const cv::Mat& state, cv::Mat& values);

}  // namespace aimhue

#endif  // AIMHUE_SRC_METER_DEAD_LED_REPAIR_H_
