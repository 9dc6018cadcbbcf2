// Bounded byte streams shared by every file and buffer format of the
// library: a reader that never reads outside its bytes, over a caller's
// memory or straight from a file, and a writer that appends to a byte
// string, fills a caller's buffer or streams to a file.
//
// Scalars are encoded little-endian byte by byte, whatever the host. Matrix
// samples are copied in the host's own layout, which the formats define as
// little-endian; the check below keeps the library from being built where
// that would silently differ.
#ifndef AIMHUE_SRC_CAPTURE_BYTE_STREAM_H_
#define AIMHUE_SRC_CAPTURE_BYTE_STREAM_H_

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>

#if defined(__BYTE_ORDER__) && __BYTE_ORDER__ != __ORDER_LITTLE_ENDIAN__
#error "aimhue's file formats copy matrix samples as little-endian host memory"
#endif

namespace aimhue {

// Where a ByteReader's bytes come from when they are not in memory.
class ByteSource {
 public:
  virtual ~ByteSource() = default;
  // Reads up to `count` bytes into `out` and returns how many it read; 0 at
  // the end of the data or on an error.
  virtual size_t Read(void* out, size_t count) = 0;
};

// Where a ByteWriter's bytes go when they do not go to memory.
class ByteSink {
 public:
  virtual ~ByteSink() = default;
  // Writes all `count` bytes; false when they could not all be written.
  virtual bool Write(const void* data, size_t count) = 0;
};

// Counts the bytes written to it: the length of a content without producing
// it.
class ByteCounter final : public ByteSink {
 public:
  bool Write(const void*, size_t count) override {
    count_ += count;
    return true;
  }
  uint64_t Count() const noexcept { return count_; }

 private:
  uint64_t count_ = 0;
};

// Reads `size` bytes, from memory or from a source. Every read is all or
// nothing: when fewer bytes remain than asked for, it returns false and
// consumes nothing. A source that delivers fewer bytes than it declared (a
// file cut while it is read) fails the read that meets the gap and every
// read after it, just as memory that ends there would have.
class ByteReader {
 public:
  ByteReader(const char* data, size_t size) noexcept
      : window_(data), windowSize_(size), size_(size) {}

  // `size` bytes from `source`. Scalars come through a small window; a
  // large read goes straight from the source into its destination, so the
  // bytes of a matrix are copied once.
  ByteReader(ByteSource& source, uint64_t size);

  size_t Remaining() const noexcept { return failed_ ? 0 : size_ - offset_; }
  size_t Offset() const noexcept { return offset_; }

  bool ReadBytes(void* out, size_t count) {
    if (count > Remaining()) return false;
    if (count <= windowSize_ - windowOffset_) {
      if (count != 0) std::memcpy(out, window_ + windowOffset_, count);
      windowOffset_ += count;
      offset_ += count;
      return true;
    }
    return ReadThroughSource(static_cast<char*>(out), count);
  }

  bool ReadU8(uint8_t& value) { return ReadBytes(&value, 1); }

  bool ReadU32(uint32_t& value) {
    unsigned char bytes[4];
    if (!ReadBytes(bytes, sizeof bytes)) return false;
    value = static_cast<uint32_t>(bytes[0]) | static_cast<uint32_t>(bytes[1]) << 8 |
            static_cast<uint32_t>(bytes[2]) << 16 | static_cast<uint32_t>(bytes[3]) << 24;
    return true;
  }

  bool ReadI32(int32_t& value) {
    uint32_t bits;
    if (!ReadU32(bits)) return false;
    std::memcpy(&value, &bits, sizeof value);
    return true;
  }

  // The float's 32 bits as stored, byte for byte (NaN payloads included).
  bool ReadF32(float& value) {
    uint32_t bits;
    if (!ReadU32(bits)) return false;
    std::memcpy(&value, &bits, sizeof value);
    return true;
  }

 private:
  bool ReadThroughSource(char* out, size_t count);
  bool FillFromSource(char* out, size_t count);
  bool Fail() noexcept {
    failed_ = true;
    return false;
  }

  const char* window_;
  size_t windowSize_;
  size_t windowOffset_ = 0;
  size_t size_;
  size_t offset_ = 0;
  bool failed_ = false;
  ByteSource* source_ = nullptr;
  std::unique_ptr<char[]> windowBytes_;  // the window of a source
};

// Writes to a byte string (appending), a caller's buffer of fixed capacity,
// or a sink. Writing stops at the first failure (a full buffer, a sink that
// refused bytes); Failed() tells.
class ByteWriter {
 public:
  explicit ByteWriter(std::string& out) noexcept : string_(&out) {}
  ByteWriter(char* buffer, size_t capacity) noexcept : buffer_(buffer), capacity_(capacity) {}
  explicit ByteWriter(ByteSink& sink) noexcept : sink_(&sink) {}

  bool Failed() const noexcept { return failed_; }
  uint64_t Written() const noexcept { return written_; }

  void WriteBytes(const void* data, size_t count) {
    if (failed_ || count == 0) return;
    if (string_ != nullptr) {
      string_->append(static_cast<const char*>(data), count);
    } else if (sink_ != nullptr) {
      failed_ = !sink_->Write(data, count);
    } else if (count <= capacity_ - written_) {
      std::memcpy(buffer_ + written_, data, count);
    } else {
      failed_ = true;
    }
    if (!failed_) written_ += count;
  }

  void WriteU8(uint8_t value) { WriteBytes(&value, 1); }

  void WriteU32(uint32_t value) {
    const unsigned char bytes[4] = {
        static_cast<unsigned char>(value & 0xFFu), static_cast<unsigned char>(value >> 8 & 0xFFu),
        static_cast<unsigned char>(value >> 16 & 0xFFu),
        static_cast<unsigned char>(value >> 24 & 0xFFu)};
    WriteBytes(bytes, sizeof bytes);
  }

  void WriteI32(int32_t value) {
    uint32_t bits;
    std::memcpy(&bits, &value, sizeof bits);
    WriteU32(bits);
  }

  void WriteF32(float value) {
    uint32_t bits;
    std::memcpy(&bits, &value, sizeof bits);
    WriteU32(bits);
  }

 private:
  std::string* string_ = nullptr;
  char* buffer_ = nullptr;
  size_t capacity_ = 0;
  ByteSink* sink_ = nullptr;
  uint64_t written_ = 0;
  bool failed_ = false;
};

}  // namespace aimhue

#endif  // AIMHUE_SRC_CAPTURE_BYTE_STREAM_H_
