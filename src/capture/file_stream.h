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
#include "capture/regular_file.h"

namespace aimhue {

// A RegularFile as a ByteReader's source.
class FileSource final : public ByteSource {
 public:
  // False when the file cannot be opened or is not a regular file (see
  // RegularFile::Open).
  bool Open(const std::string& fullname) { return file_.Open(fullname); }
  // The size when the file was opened.
  uint64_t Size() const noexcept { return file_.size(); }
  size_t Read(void* out, size_t count) override {
    const int64_t got = file_.ReadUpTo(out, count);
    return got < 0 ? 0 : static_cast<size_t>(got);
  }

 private:
  RegularFile file_;
};

class FileSink final : public ByteSink {
 public:
  FileSink() = default;
  FileSink(const FileSink&) = delete;
  FileSink& operator=(const FileSink&) = delete;
  // Closes the file (after the buffered bytes) if Close was not called.
  ~FileSink() override;

  // Creates the file or truncates it; false when it cannot be opened for
  // writing, and at once for a FIFO that no process reads.
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
