// RegularFile: POSIX open, fstat and read, so that the file type is checked
// on the very file that is read (a name checked first and opened later could
// have been replaced in between).
#include "capture/regular_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

namespace aimhue {
namespace {

// The most one read() call transfers on Linux.
constexpr uint64_t kLargestRead = 0x7ffff000;

}  // namespace

RegularFile::~RegularFile() {
  if (descriptor_ >= 0) ::close(descriptor_);
}

bool RegularFile::Open(const std::string& fullname) {
  if (descriptor_ >= 0) return false;
  // Non-blocking so that opening a FIFO returns at once instead of waiting
  // for a writer; the file is refused below before anything is read.
  const int descriptor = ::open(fullname.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  if (descriptor < 0) return false;
  struct stat status {};
  if (::fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode) || status.st_size < 0) {
    ::close(descriptor);
    return false;
  }
  const int flags = ::fcntl(descriptor, F_GETFL);
  if (flags >= 0) ::fcntl(descriptor, F_SETFL, flags & ~O_NONBLOCK);
  descriptor_ = descriptor;
  size_ = static_cast<uint64_t>(status.st_size);
  position_ = 0;
  return true;
}

int64_t RegularFile::ReadUpTo(void* into, uint64_t count) {
  if (descriptor_ < 0) return -1;
  count = std::min(count, size_ - position_);
  char* target = static_cast<char*>(into);
  uint64_t done = 0;
  while (done < count) {
    const ssize_t got = ::read(descriptor_, target + done, std::min(count - done, kLargestRead));
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) return -1;
    if (got == 0) break;  // the file shrank since it was opened
    done += static_cast<uint64_t>(got);
  }
  position_ += done;
  return static_cast<int64_t>(done);
}

bool ReadRegularFile(const std::string& fullname, std::string& bytes) {
  RegularFile file;
  if (!file.Open(fullname)) return false;
  std::string content(file.size(), '\0');
  const int64_t got = file.ReadUpTo(content.data(), content.size());
  if (got < 0) return false;
  content.resize(static_cast<size_t>(got));
  bytes.swap(content);
  return true;
}

}  // namespace aimhue
