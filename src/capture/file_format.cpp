// The shared file conventions: extension, header, whole-file reading and
// writing, and the caller's-buffer rule.
#include "capture/file_format.h"

#include <aimhue/plume_log.h>
#include <aimhue/status.h>

#include <cstdint>
#include <cstring>

#include "capture/regular_file.h"

namespace aimhue {

bool HasExtension(const std::string& fullname, const std::string& extension) {
  return fullname.size() > extension.size() &&
         fullname.compare(fullname.size() - extension.size(), extension.size(), extension) == 0;
}

int CheckExtension(const char* who, const std::string& fullname, const char* extension) {
  if (HasExtension(fullname, extension)) return kOk;
  PlumeLogError("%s--Error :: ext filename mismatch.", who);
  return kBadExtension;
}

void WriteHeader(ByteWriter& out, uint32_t version) {
  out.WriteU8(static_cast<uint8_t>(kByteOrderMark));
  out.WriteU32(version);
}

int ReadHeader(const char* who, ByteReader& in, uint32_t version) {
  uint8_t mark = 0;
  if (!in.ReadU8(mark) || mark != static_cast<uint8_t>(kByteOrderMark)) {
    PlumeLogError("%s -- Error file endianness.", who);
    return kBadByteOrderMark;
  }
  uint32_t stored = 0;
  if (!in.ReadU32(stored) || stored != version) {
    PlumeLogError("%s -- Error version in file.", who);
    return kBadVersion;
  }
  return kOk;
}

int DataError(const char* who) {
  PlumeLogError("%s -- Error data in file.", who);
  return kBadVersion;
}

void LogOpenFailure(const char* who, const std::string& fullname) {
  PlumeLogError("%s -- Failed to Open file. fullname = %s", who, fullname.c_str());
}

bool ReadWholeFile(const std::string& fullname, std::string& bytes) {
  return ReadRegularFile(fullname, bytes);
}

bool WriteWholeFile(const std::string& fullname, const std::string& bytes) {
  FileSink file;
  if (!file.Open(fullname)) return false;
  file.Write(bytes.data(), bytes.size());
  file.Close();
  return true;
}

int ReadFormatFile(const char* who, const std::string& fullname, std::string& bytes) {
  if (ReadWholeFile(fullname, bytes)) return kOk;
  LogOpenFailure(who, fullname);
  return kOpenReadFailed;
}

int WriteFormatFile(const char* who, const std::string& fullname, const std::string& bytes) {
  if (WriteWholeFile(fullname, bytes)) return kOk;
  LogOpenFailure(who, fullname);
  return kOpenWriteFailed;
}

int CheckOutputBuffer(const char* buffer, const uint64_t* size, uint64_t needed) {
  if (buffer == nullptr || size == nullptr) return kNullInput;
  if (*size < needed) return kBufferTooSmall;
  return kOk;
}

int CopyToOutputBuffer(const std::string& content, char* buffer, uint64_t* size) {
  const int status = CheckOutputBuffer(buffer, size, content.size());
  if (status != kOk) return status;
  std::memcpy(buffer, content.data(), content.size());
  *size = content.size();
  return kOk;
}

}  // namespace aimhue
