// Feeds arbitrary bytes to LedMeter::FromBuffer. A content that loads must
// write back to bytes that load again to the same content, never longer than
// the bytes it came from (duplicate and unknown records are dropped, blocks
// keep their length).
#include <aimhue/led_meter.h>

#include "fuzz/fuzz_support.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  aimhue::fuzz::RequireStableReload<aimhue::LedMeter>(data, size, size);
  return 0;
}
