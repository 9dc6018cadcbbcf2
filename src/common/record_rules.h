// Rules shared by the records that carry descriptive sub-records (LedMeter,
// Shot): the partition validity test, the lit-LED count of a pattern and the
// create-or-overwrite store.
#ifndef AIMHUE_SRC_COMMON_RECORD_RULES_H_
#define AIMHUE_SRC_COMMON_RECORD_RULES_H_

#include <aimhue/records.h>

#include <cstdint>
#include <memory>

namespace aimhue {

// True when the screen is positive and the rectangle x, y, w, h (w, h > 0)
// lies inside it. The far edges are computed in 64 bits so that a huge
// width cannot wrap round into the screen.
inline bool PartitionFitsScreen(const Partition& value) {
  return value.screen_w > 0 && value.screen_h > 0 && value.w > 0 && value.h > 0 &&
         value.x >= 0 && value.x < value.screen_w && value.y >= 0 && value.y < value.screen_h &&
         static_cast<int64_t>(value.x) + value.w - 1 < value.screen_w &&
         static_cast<int64_t>(value.y) + value.h - 1 < value.screen_h;
}

// The number of indices i in [0, extent) with i mod interval == loc: the
// lit LEDs of a pattern along one side of a partition. interval >= 1.
inline int32_t LitLedCount(int32_t extent, int32_t interval, int32_t loc) {
  return extent / interval + (loc < extent % interval ? 1 : 0);
}

// Copies `value` into `*slot`, creating the record on first use.
template <typename Record>
void StoreRecord(std::unique_ptr<Record>& slot, const Record& value) {
  if (slot == nullptr) {
    slot = std::make_unique<Record>(value);
  } else {
    *slot = value;
  }
}

}  // namespace aimhue

#endif  // AIMHUE_SRC_COMMON_RECORD_RULES_H_
