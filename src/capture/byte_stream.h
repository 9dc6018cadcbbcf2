// Bounded byte streams shared by every file and buffer format of the
// library: a reader over a caller's bytes that never reads outside them, and
// a writer that appends to a byte string.
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
#include <string>

#if defined(__BYTE_ORDER__) && __BYTE_ORDER__ != __ORDER_LITTLE_ENDIAN__
#error "aimhue's file formats copy matrix samples as little-endian host memory"
#endif

namespace aimhue {

// Reads from `size` bytes at `data`. Every read is all or nothing: when
// fewer bytes remain than asked for, it returns false and consumes nothing.
class ByteReader {
 public:
  ByteReader(const char* data, size_t size) noexcept : data_(data), size_(size) {}

  size_t Remaining() const noexcept { return size_ - offset_; }
  size_t Offset() const noexcept { return offset_; }

  bool ReadBytes(void* out, size_t count) noexcept {
    if (count > Remaining()) return false;
    if (count != 0) std::memcpy(out, data_ + offset_, count);
    offset_ += count;
    return true;
  }

  bool ReadU8(uint8_t& value) noexcept { return ReadBytes(&value, 1); }

  bool ReadU32(uint32_t& value) noexcept {
    unsigned char bytes[4];
    if (!ReadBytes(bytes, sizeof bytes)) return false;
    value = static_cast<uint32_t>(bytes[0]) | static_cast<uint32_t>(bytes[1]) << 8 |
            static_cast<uint32_t>(bytes[2]) << 16 | static_cast<uint32_t>(bytes[3]) << 24;
    return true;
  }

  bool ReadI32(int32_t& value) noexcept {
    uint32_t bits;
    if (!ReadU32(bits)) return false;
    std::memcpy(&value, &bits, sizeof value);
    return true;
  }

  // The float's 32 bits as stored, byte for byte (NaN payloads included).
  bool ReadF32(float& value) noexcept {
    uint32_t bits;
    if (!ReadU32(bits)) return false;
    std::memcpy(&value, &bits, sizeof value);
    return true;
  }

 private:
  const char* data_;
  size_t size_;
  size_t offset_ = 0;
};

// Appends to a byte string owned by the caller.
class ByteWriter {
 public:
  explicit ByteWriter(std::string& out) noexcept : out_(out) {}

  void WriteBytes(const void* data, size_t count) {
    out_.append(static_cast<const char*>(data), count);
  }

  void WriteU8(uint8_t value) { out_.push_back(static_cast<char>(value)); }

  void WriteU32(uint32_t value) {
    const char bytes[4] = {static_cast<char>(value & 0xFFu), static_cast<char>(value >> 8 & 0xFFu),
                           static_cast<char>(value >> 16 & 0xFFu),
                           static_cast<char>(value >> 24 & 0xFFu)};
    out_.append(bytes, sizeof bytes);
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
  std::string& out_;
};

}  // namespace aimhue

#endif  // AIMHUE_SRC_CAPTURE_BYTE_STREAM_H_
