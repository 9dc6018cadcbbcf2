// The conventions that every file and buffer format of the library follows
// (".meter", ".aimhue", ".shot"), written once:
//  - a format's files must be named "<something><extension>";
//  - the content starts with the byte-order mark 'L' and a 32-bit version;
//  - files are parsed by the same ByteReader as a caller's buffer, reading
//    straight from the file, so file and buffer loading share every check
//    and a file's matrices are read once, into place;
//  - contents are written straight to a file or a caller's buffer, without
//    an intermediate copy of the whole content;
//  - a caller's output buffer is filled only when it is large enough.
// Messages name the calling operation (`who`, such as "LedMeter::Load").
#ifndef AIMHUE_SRC_CAPTURE_FILE_FORMAT_H_
#define AIMHUE_SRC_CAPTURE_FILE_FORMAT_H_

#include <aimhue/status.h>

#include <cstdint>
#include <string>

#include "capture/byte_stream.h"
#include "capture/file_stream.h"

namespace aimhue {

constexpr char kByteOrderMark = 'L';
constexpr uint32_t kEndTag = 0xFFFFFFFFu;

// True when `fullname` is strictly longer than `extension` and ends in it
// byte for byte (case-sensitive). ".meter" alone is not a ".meter" name.
bool HasExtension(const std::string& fullname, const std::string& extension);

// HasExtension, or logs "<who>--Error :: ext filename mismatch." and
// returns 8.
int CheckExtension(const char* who, const std::string& fullname, const char* extension);

// Appends the mark 'L' and `version`.
void WriteHeader(ByteWriter& out, uint32_t version);

// Reads the mark and the version. A first byte other than 'L' (or no byte at
// all) logs "<who> -- Error file endianness." and returns 10; a version other
// than `version` (or a missing one) logs "<who> -- Error version in file."
// and returns 3.
int ReadHeader(const char* who, ByteReader& in, uint32_t version);

// Logs "<who> -- Error data in file." and returns 3: the content after a
// valid header ends early or contradicts itself.
int DataError(const char* who);

// Logs "<who> -- Failed to Open file. fullname = <fullname>".
void LogOpenFailure(const char* who, const std::string& fullname);

// Reads the whole file into `bytes` (see RegularFile): false when it is not
// a regular file (a directory, a FIFO or a device) or cannot be opened.
// `bytes` is replaced only on success.
bool ReadWholeFile(const std::string& fullname, std::string& bytes);

// Replaces the file's content by `bytes`; false when it cannot be opened.
// Write errors after a successful open are not reported.
bool WriteWholeFile(const std::string& fullname, const std::string& bytes);

// Reads the whole file for a format's Load: an unreadable file logs the
// open failure and returns 2.
int ReadFormatFile(const char* who, const std::string& fullname, std::string& bytes);

// Writes a format's content for its Save: a file that cannot be opened logs
// the open failure and returns 4.
int WriteFormatFile(const char* who, const std::string& fullname, const std::string& bytes);

// The file side of a format's Load: the extension check (8), the whole file
// (2), then parse(data, size), whose status is returned.
template <typename Parse>
int LoadFormatFile(const char* who, const std::string& fullname, const char* extension,
                   Parse&& parse) {
  int status = CheckExtension(who, fullname, extension);
  if (status != kOk) return status;
  std::string bytes;
  status = ReadFormatFile(who, fullname, bytes);
  if (status != kOk) return status;
  return parse(bytes.data(), bytes.size());
}

// The file side of a format's Load, streaming: the extension check (8),
// opening the file (2, with the open failure logged), then parse(reader)
// over a ByteReader that reads the file as it goes; parse's status is
// returned.
template <typename Parse>
int LoadFormatStream(const char* who, const std::string& fullname, const char* extension,
                     Parse&& parse) {
  int status = CheckExtension(who, fullname, extension);
  if (status != kOk) return status;
  FileSource file;
  if (!file.Open(fullname)) {
    LogOpenFailure(who, fullname);
    return kOpenReadFailed;
  }
  ByteReader in(file, file.Size());
  return parse(in);
}

// The file side of a format's Save, streaming: the extension check (8),
// opening the file for writing (4, with the open failure logged), then
// write(writer) straight into the file. Write errors after a successful
// open are not reported, as with WriteWholeFile.
template <typename Write>
int SaveFormatStream(const char* who, const std::string& fullname, const char* extension,
                     Write&& write) {
  const int status = CheckExtension(who, fullname, extension);
  if (status != kOk) return status;
  FileSink file;
  if (!file.Open(fullname)) {
    LogOpenFailure(who, fullname);
    return kOpenWriteFailed;
  }
  ByteWriter out(file);
  write(out);
  file.Close();
  return kOk;
}

// The file side of a format's Save: the extension check (8), then the bytes
// that content() returns into the file (4). Nothing is produced or created
// when the name is refused.
template <typename Content>
int SaveFormatFile(const char* who, const std::string& fullname, const char* extension,
                   Content&& content) {
  const int status = CheckExtension(who, fullname, extension);
  if (status != kOk) return status;
  return WriteFormatFile(who, fullname, content());
}

// The caller's-buffer rule of ToBuffer: null `buffer` or `size` gives 1;
// `*size` < `needed` gives 13 with the buffer and `*size` untouched;
// otherwise 0 (the caller then copies and sets `*size`).
int CheckOutputBuffer(const char* buffer, const uint64_t* size, uint64_t needed);

// Copies `content` to the caller's buffer under the rule above and sets
// `*size` to its length.
int CopyToOutputBuffer(const std::string& content, char* buffer, uint64_t* size);

}  // namespace aimhue

#endif  // AIMHUE_SRC_CAPTURE_FILE_FORMAT_H_
