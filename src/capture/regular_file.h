// Opening a file by name for reading, shared by every reader of the library.
//
// Only regular files are read (symbolic links are followed): a FIFO would
// keep the caller waiting for a writer that may never come, and a device
// such as /dev/zero never ends. The size is taken once the file is open and
// no read goes past it, so a file that grows while it is read cannot make a
// reader loop or allocate without bound.
#ifndef AIMHUE_SRC_CAPTURE_REGULAR_FILE_H_
#define AIMHUE_SRC_CAPTURE_REGULAR_FILE_H_

#include <cstdint>
#include <string>

namespace aimhue {

class RegularFile {
 public:
  RegularFile() = default;
  ~RegularFile();
  RegularFile(const RegularFile&) = delete;
  RegularFile& operator=(const RegularFile&) = delete;

  // Opens `fullname` for reading; false, with nothing open, when it does not
  // exist, cannot be opened, or is not a regular file. Never waits: a FIFO
  // is opened without blocking and then refused.
  bool Open(const std::string& fullname);

  // The file's size in bytes when it was opened.
  uint64_t size() const noexcept { return size_; }

  // Reads up to `count` bytes into `into`, never past the size at opening;
  // returns how many were read (fewer when the file shrank), or -1 when a
  // read fails.
  int64_t ReadUpTo(void* into, uint64_t count);

  // Reads exactly `count` bytes; false when the file holds fewer.
  bool ReadExactly(void* into, uint64_t count) {
    return ReadUpTo(into, count) == static_cast<int64_t>(count);
  }

 private:
  int descriptor_ = -1;
  uint64_t size_ = 0;
  uint64_t position_ = 0;
};

// The whole content of a regular file (at most its size at opening) into
// `bytes`, which is replaced only on success; false as for Open or when a
// read fails.
bool ReadRegularFile(const std::string& fullname, std::string& bytes);

}  // namespace aimhue

#endif  // AIMHUE_SRC_CAPTURE_REGULAR_FILE_H_
