// Files as byte sources and sinks for the library's formats.
//
// A FileSource reads a regular file from its start and takes its size once,
// when it opens it: a file that grows while it is read is read to that
// size, and one that shrinks ends early, so both look to a reader like a
// file that was cut (a ByteReader then fails as it does at the end of
// memory). A FileSink writes through a buffer of its own, so the scalars of
// a header cost no system call each and large blocks go straight to the
// file.
#ifndef AIMHUE_SRC_CAPTURE_FILE_STREAM_H_
#define AIMHUE_SRC_CAPTURE_FILE_STREAM_H_

#include <cstdint>
#include <string>
#include <vector>

#include "capture/byte_stream.h"

namespace aimhue {

class FileSource final : public ByteSource {
 public:
  FileSource() = default;
  FileSource(const FileSource&) = delete;
  FileSource& operator=(const FileSource&) = delete;
  ~FileSource() override;

  // False when the file cannot be opened or is not a regular file: a
  // directory holds no data, a FIFO could block forever and a device such
  // as /dev/zero would never end.
  bool Open(const std::string& fullname);
  // The size when the file was opened.
  uint64_t Size() const noexcept { return size_; }
  size_t Read(void* out, size_t count) override;

 private:
  int descriptor_ = -1;
  uint64_t size_ = 0;
};

class FileSink final : public ByteSink {
 public:
  FileSink() = default;
  FileSink(const FileSink&) = delete;
  FileSink& operator=(const FileSink&) = delete;
  // Closes the file (after the buffered bytes) if Close was not called.
  ~FileSink() override;

  // Creates the file or truncates it; false when it cannot be opened for
  // writing.
  bool Open(const std::string& fullname);
  bool Write(const void* data, size_t count) override;
  // Writes the buffered bytes and closes; false when any write or the
  // close failed.
  bool Close();

 private:
  bool Flush();
  bool WriteAll(const char* data, size_t count);

  int descriptor_ = -1;
  std::vector<char> buffer_;
  bool failed_ = false;
};

}  // namespace aimhue

#endif  // AIMHUE_SRC_CAPTURE_FILE_STREAM_H_
