// Shared by the fuzz targets: the library's log is silenced so that the
// fuzzer's output stays readable and logging costs nothing.
#ifndef AIMHUE_FUZZ_FUZZ_SUPPORT_H_
#define AIMHUE_FUZZ_FUZZ_SUPPORT_H_

#include <aimhue/plume_log.h>

#include <cstdlib>

namespace aimhue::fuzz {

inline void DiscardLine(int, const char*, void*) {}

inline void SilenceLog() {
  static const bool silenced = [] {
    PlumeLogSetSink(&DiscardLine, nullptr);
    return true;
  }();
  (void)silenced;
}

// A property of the code under test does not hold: stop with a crash that
// the fuzzer records.
inline void Require(bool condition) {
  if (!condition) std::abort();
}

}  // namespace aimhue::fuzz

#endif  // AIMHUE_FUZZ_FUZZ_SUPPORT_H_
