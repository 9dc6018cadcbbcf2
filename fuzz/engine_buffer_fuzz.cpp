// Feeds arbitrary bytes to Aimhue::FromBuffer. An image that loads must
// write back as the same 169 bytes.
#include <aimhue/status.h>

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "engine/aimhue.h"
#include "fuzz/fuzz_support.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  aimhue::fuzz::SilenceLog();
  aimhue::Aimhue engine;
  const char* bytes = reinterpret_cast<const char*>(data);
  if (engine.FromBuffer(bytes, static_cast<int64_t>(size)) != aimhue::kOk) return 0;
  char image[169];
  uint64_t imageSize = sizeof image;
  aimhue::fuzz::Require(engine.ToBuffer(image, &imageSize) == aimhue::kOk);
  aimhue::fuzz::Require(imageSize == sizeof image && size >= sizeof image);
  aimhue::fuzz::Require(std::memcmp(image, bytes, sizeof image) == 0);
  return 0;
}
