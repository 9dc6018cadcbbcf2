// Shared by the fuzz targets: the library's log, and the messages some
// readers print to the standard streams, are silenced so that the fuzzer's
// output stays readable and printing costs nothing (a flushed line per
// input slowed the PGM target to a few hundred inputs a second). The
// fuzzer and the sanitizers report through stdio and the raw descriptor,
// which stay as they are.
#ifndef AIMHUE_FUZZ_FUZZ_SUPPORT_H_
#define AIMHUE_FUZZ_FUZZ_SUPPORT_H_

#include <aimhue/plume_log.h>
#include <aimhue/status.h>

#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <string>

namespace aimhue::fuzz {

inline void DiscardLine(int, const char*, void*) {}

inline void SilenceLog() {
  static const bool silenced = [] {
    PlumeLogSetSink(&DiscardLine, nullptr);
    std::cout.rdbuf(nullptr);
    std::cerr.rdbuf(nullptr);
    return true;
  }();
  (void)silenced;
}

// A property of the code under test does not hold: stop with a crash that
// the fuzzer records.
inline void Require(bool condition) {
  if (!condition) std::abort();
}

// The content `record` writes, which must fit in `limit` bytes; when
// GetBufferSize answers, it must name exactly the size written.
template <typename Record>
std::string WrittenContent(const Record& record, size_t limit) {
  uint64_t needed = 0;
  const bool sized = record.GetBufferSize(&needed) == kOk;
  std::string buffer(limit, '\0');
  uint64_t size = buffer.size();
  Require(record.ToBuffer(buffer.data(), &size) == kOk);
  Require(!sized || size == needed);
  buffer.resize(size);
  return buffer;
}

// A record that loads from `data` writes content of at most `limit` bytes
// that loads again and writes the very same content.
template <typename Record>
void RequireStableReload(const uint8_t* data, size_t size, size_t limit) {
  SilenceLog();
  Record record;
  if (record.FromBuffer(reinterpret_cast<const char*>(data), size) != kOk) return;
  const std::string content = WrittenContent(record, limit);
  Record again;
  Require(again.FromBuffer(content.data(), content.size()) == kOk);
  Require(WrittenContent(again, content.size()) == content);
}

}  // namespace aimhue::fuzz

#endif  // AIMHUE_FUZZ_FUZZ_SUPPORT_H_
