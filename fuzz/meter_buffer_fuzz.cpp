// Feeds arbitrary bytes to LedMeter::FromBuffer. A content that loads must
// write back to bytes that load again to the same content.
#include <aimhue/led_meter.h>
#include <aimhue/status.h>

#include <cstddef>
#include <cstdint>
#include <string>

#include "fuzz/fuzz_support.h"

namespace {

// A meter's content is never longer than the bytes it was loaded from
// (duplicate and unknown records are dropped, blocks keep their length).
std::string Content(const aimhue::LedMeter& meter, size_t capacity) {
  uint64_t size = capacity;
  std::string buffer(capacity, '\0');
  aimhue::fuzz::Require(meter.ToBuffer(buffer.data(), &size) == aimhue::kOk);
  buffer.resize(size);
  uint64_t reported = 0;
  if (meter.GetBufferSize(&reported) == aimhue::kOk) aimhue::fuzz::Require(reported == size);
  return buffer;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  aimhue::fuzz::SilenceLog();
  aimhue::LedMeter meter;
  if (meter.FromBuffer(reinterpret_cast<const char*>(data), size) != aimhue::kOk) return 0;
  const std::string content = Content(meter, size);
  aimhue::LedMeter again;
  aimhue::fuzz::Require(again.FromBuffer(content.data(), content.size()) == aimhue::kOk);
  aimhue::fuzz::Require(Content(again, content.size()) == content);
  return 0;
}
