// Facts about shot types used by several shot operations.
#ifndef AIMHUE_SRC_CAPTURE_SHOT_TYPES_H_
#define AIMHUE_SRC_CAPTURE_SHOT_TYPES_H_

#include <aimhue/records.h>

#include <cstdint>

namespace aimhue {

// The types whose image has one channel: one CIE plane or one camera channel.
inline bool IsSingleChannelType(uint32_t type) {
  return type == CIE_X || type == CIE_Y || type == CIE_Z || type == CAM_R || type == CAM_G ||
         type == CAM_B;
}

}  // namespace aimhue

#endif  // AIMHUE_SRC_CAPTURE_SHOT_TYPES_H_
