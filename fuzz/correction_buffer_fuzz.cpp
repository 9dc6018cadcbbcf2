// Feeds arbitrary bytes to Correction::FromBuffer. A content that loads must
// write back to bytes that load again to the same content, with counts that
// account for every LED once.
#include <aimhue/correction.h>
#include <aimhue/status.h>

#include <cstddef>
#include <cstdint>
#include <string>

#include "fuzz/fuzz_support.h"

namespace {

// A loaded record's content is never longer than the bytes it came from.
std::string Content(const aimhue::Correction& record, size_t capacity) {
  uint64_t size = capacity;
  std::string buffer(capacity, '\0');
  aimhue::fuzz::Require(record.ToBuffer(buffer.data(), &size) == aimhue::kOk);
  buffer.resize(size);
  uint64_t reported = 0;
  if (record.GetBufferSize(&reported) == aimhue::kOk) aimhue::fuzz::Require(reported == size);
  return buffer;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  aimhue::fuzz::SilenceLog();
  aimhue::Correction record;
  if (record.FromBuffer(reinterpret_cast<const char*>(data), size) != aimhue::kOk) return 0;
  const aimhue::CorrectionCounts& counts = record.counts;
  aimhue::fuzz::Require(counts.corrected + counts.dead + counts.notFinite + counts.singular >=
                        static_cast<int64_t>(record.flags.total()));
  const std::string content = Content(record, size);
  aimhue::Correction again;
  aimhue::fuzz::Require(again.FromBuffer(content.data(), content.size()) == aimhue::kOk);
  aimhue::fuzz::Require(Content(again, content.size()) == content);
  return 0;
}
