// File sinks over POSIX descriptors.
#include "capture/file_stream.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

namespace aimhue {
namespace {

constexpr size_t kSinkBufferBytes = size_t{1} << 16;
// Linux transfers at most this much per write call.
constexpr size_t kMaxTransfer = 0x7ffff000;

}  // namespace

FileSink::~FileSink() { Close(); }

bool FileSink::Open(const std::string& fullname) {
  if (descriptor_ >= 0) return false;
  // Not blocking in open: a FIFO that nobody reads would otherwise hold the
  // caller forever; it is refused (ENXIO) instead. Writes block as usual.
  descriptor_ =
      ::open(fullname.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NONBLOCK, 0666);
  if (descriptor_ < 0) return false;
  const int flags = ::fcntl(descriptor_, F_GETFL);
  if (flags < 0 || ::fcntl(descriptor_, F_SETFL, flags & ~O_NONBLOCK) < 0) {
    ::close(descriptor_);
    descriptor_ = -1;
    return false;
  }
  buffer_.reserve(kSinkBufferBytes);
  return true;
}

bool FileSink::WriteAll(const char* data, size_t count) {
  while (count > 0) {
    const ssize_t put = ::write(descriptor_, data, std::min(count, kMaxTransfer));
    if (put < 0 && errno == EINTR) continue;
    if (put <= 0) return false;
    data += put;
    count -= static_cast<size_t>(put);
  }
  return true;
}

bool FileSink::Flush() {
  if (!buffer_.empty() && !failed_) failed_ = !WriteAll(buffer_.data(), buffer_.size());
  buffer_.clear();
  return !failed_;
}

bool FileSink::Write(const void* data, size_t count) {
  if (descriptor_ < 0 || failed_) return false;
  const char* bytes = static_cast<const char*>(data);
  if (buffer_.size() + count <= kSinkBufferBytes) {
    buffer_.insert(buffer_.end(), bytes, bytes + count);
    return true;
  }
  if (!Flush()) return false;
  if (count < kSinkBufferBytes) {
    buffer_.insert(buffer_.end(), bytes, bytes + count);
    return true;
  }
  failed_ = !WriteAll(bytes, count);
  return !failed_;
}

bool FileSink::Close() {
  if (descriptor_ < 0) return !failed_;
  Flush();
  if (::close(descriptor_) != 0) failed_ = true;
  descriptor_ = -1;
  return !failed_;
}

}  // namespace aimhue
