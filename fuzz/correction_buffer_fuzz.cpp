// Feeds arbitrary bytes to Correction::FromBuffer. A content that loads must
// write back to bytes (never more than it came from) that load again to the
// same content, with counts that account for every LED once.
#include <aimhue/correction.h>

#include "fuzz/fuzz_support.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  aimhue::fuzz::RequireStableReload<aimhue::Correction>(data, size, size);
  aimhue::fuzz::SilenceLog();
  aimhue::Correction record;
  if (record.FromBuffer(reinterpret_cast<const char*>(data), size) != aimhue::kOk) return 0;
  const aimhue::CorrectionCounts& counts = record.counts;
  aimhue::fuzz::Require(counts.corrected + counts.dead + counts.notFinite + counts.singular >=
                        static_cast<int64_t>(record.flags.total()));
  return 0;
}
