// The four public operations every streamed format offers (Save, Load,
// ToBuffer, FromBuffer), written once around a format's own Write and Parse:
// each logs `who` at info level, runs its work under the exception guard and
// applies the file-name, open-failure and caller's-buffer rules of
// file_format.h.
#ifndef AIMHUE_SRC_CAPTURE_FORMAT_OPERATIONS_H_
#define AIMHUE_SRC_CAPTURE_FORMAT_OPERATIONS_H_

#include <aimhue/plume_log.h>
#include <aimhue/status.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>

#include "capture/byte_stream.h"
#include "capture/file_format.h"
#include "common/exception_guard.h"

namespace aimhue {

// Save: write(writer) straight into the file `fullname`, which must end in
// `extension`.
template <typename Write>
int SaveFormat(const char* who, const std::string& fullname, const char* extension, Write&& write) {
  PlumeLogInfo("%s", who);
  return GuardExceptions(
      who, [&] { return SaveFormatStream(who, fullname, extension, std::forward<Write>(write)); });
}

// Load: parse(reader) over the file `fullname`, which must end in
// `extension`; parse's status is returned.
template <typename Parse>
int LoadFormat(const char* who, const std::string& fullname, const char* extension, Parse&& parse) {
  PlumeLogInfo("%s", who);
  return GuardExceptions(
      who, [&] { return LoadFormatStream(who, fullname, extension, std::forward<Parse>(parse)); });
}

// ToBuffer: `needed` bytes of write(writer) into the caller's buffer, when
// it holds them (CheckOutputBuffer); `*size` is then set to `needed`.
template <typename Write>
int WriteFormatBuffer(const char* who, char* buffer, uint64_t* size, uint64_t needed,
                      Write&& write) {
  PlumeLogInfo("%s", who);
  const int status = CheckOutputBuffer(buffer, size, needed);
  if (status != kOk) return status;
  return GuardExceptions(who, [&] {
    ByteWriter out(buffer, static_cast<size_t>(needed));
    write(out);
    *size = needed;
    return static_cast<int>(kOk);
  });
}

// FromBuffer: parse(reader) over `size` bytes of the caller's buffer; a null
// buffer gives 1.
template <typename Parse>
int ReadFormatBuffer(const char* who, const char* buffer, uint64_t size, Parse&& parse) {
  PlumeLogInfo("%s", who);
  if (buffer == nullptr) return kNullInput;
  return GuardExceptions(who, [&] {
    ByteReader in(buffer, static_cast<size_t>(size));
    return parse(in);
  });
}

}  // namespace aimhue

#endif  // AIMHUE_SRC_CAPTURE_FORMAT_OPERATIONS_H_
