// The source side of ByteReader: a window for small reads, direct reads for
// large ones.
#include "capture/byte_stream.h"

#include <algorithm>

namespace aimhue {
namespace {

// Large enough that the scalars of a header cost one read, small enough to
// stay in the cache; reads at least this long bypass the window.
constexpr size_t kWindowBytes = size_t{1} << 16;

}  // namespace

ByteReader::ByteReader(ByteSource& source, uint64_t size)
    : window_(nullptr),
      windowSize_(0),
      size_(static_cast<size_t>(std::min<uint64_t>(size, SIZE_MAX))),
      source_(&source),
      windowBytes_(std::make_unique<char[]>(kWindowBytes)) {}

bool ByteReader::FillFromSource(char* out, size_t count) {
  while (count > 0) {
    const size_t got = source_->Read(out, count);
    if (got == 0) return false;
    out += got;
    count -= got;
  }
  return true;
}

bool ByteReader::ReadThroughSource(char* out, size_t count) {
  // Only a source has more bytes than its window; memory never gets here.
  if (source_ == nullptr) return false;
  const size_t inWindow = windowSize_ - windowOffset_;
  if (inWindow != 0) std::memcpy(out, window_ + windowOffset_, inWindow);
  out += inWindow;
  count -= inWindow;
  offset_ += inWindow;
  windowOffset_ = windowSize_;
  if (count >= kWindowBytes) {
    if (!FillFromSource(out, count)) return Fail();
    offset_ += count;
    return true;
  }
  const size_t fill = std::min(kWindowBytes, size_ - offset_);
  if (!FillFromSource(windowBytes_.get(), fill)) return Fail();
  window_ = windowBytes_.get();
  windowSize_ = fill;
  std::memcpy(out, window_, count);
  windowOffset_ = count;
  offset_ += count;
  return true;
}

}  // namespace aimhue
