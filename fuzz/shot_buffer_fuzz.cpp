// Feeds arbitrary bytes to Shot::FromBuffer. A content that loads must write
// back to bytes that load again to the same content.
#include <aimhue/shot.h>
#include <aimhue/status.h>

#include <cstddef>
#include <cstdint>
#include <string>

#include "fuzz/fuzz_support.h"

namespace {

std::string Content(const aimhue::Shot& shot) {
  size_t needed = 0;
  // GetBufferSize refuses an empty image; ToBuffer writes it all the same.
  const bool sized = shot.GetBufferSize(&needed) == aimhue::kOk;
  // A stored image has 2-byte samples, so the content can grow only when the
  // loaded planes had 1-byte samples: twice the input is always enough.
  std::string buffer(sized ? needed : 64 * 1024, '\0');
  size_t size = buffer.size();
  aimhue::fuzz::Require(shot.ToBuffer(buffer.data(), &size) == aimhue::kOk);
  if (sized) aimhue::fuzz::Require(size == needed);
  buffer.resize(size);
  return buffer;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  aimhue::fuzz::SilenceLog();
  aimhue::Shot shot;
  if (shot.FromBuffer(reinterpret_cast<const char*>(data), size) != aimhue::kOk) return 0;
  const std::string content = Content(shot);
  aimhue::Shot again;
  aimhue::fuzz::Require(again.FromBuffer(content.data(), content.size()) == aimhue::kOk);
  aimhue::fuzz::Require(Content(again) == content);
  return 0;
}
