// Feeds arbitrary bytes to Shot::FromBuffer. A content that loads must write
// back to bytes that load again to the same content. A stored image has
// 2-byte samples, so the content can grow only when the loaded planes had
// 1-byte samples: twice the input and the header of an empty image suffice.
#include <aimhue/shot.h>

#include "fuzz/fuzz_support.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  aimhue::fuzz::RequireStableReload<aimhue::Shot>(data, size, 2 * size + 64);
  return 0;
}
