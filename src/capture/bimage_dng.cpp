// BImage::ReadRggbDng and BImage::ReadDngToup: the first image directory of
// a DNG/TIFF file and one contiguous block of 16-bit samples.
#include <aimhue/bimage.h>
#include <aimhue/plume_log.h>

#include <cstdio>

#include "capture/file_format.h"
#include "capture/image_decoders.h"
#include "common/exception_guard.h"

namespace aimhue {
namespace {

constexpr uint16_t kTiffMagic = 42;
constexpr size_t kHeaderSize = 8;
constexpr size_t kEntrySize = 12;
constexpr uint16_t kTagImageWidth = 256;
constexpr uint16_t kTagImageLength = 257;
constexpr uint16_t kTagStripOffsets = 273;
constexpr uint16_t kFieldTypeShort = 3;
constexpr uint64_t kMaxSide = 0x7fffffff;  // a matrix side is an int

// Reads fixed-width unsigned integers in one byte order; every caller has
// checked that the bytes lie inside the data.
struct ByteOrder {
  bool little;
  uint16_t U16(const uint8_t* p) const {
    return little ? static_cast<uint16_t>(p[0] | p[1] << 8)
                  : static_cast<uint16_t>(p[0] << 8 | p[1]);
  }
  uint32_t U32(const uint8_t* p) const {
    const uint32_t b0 = p[0], b1 = p[1], b2 = p[2], b3 = p[3];
    return little ? (b0 | b1 << 8 | b2 << 16 | b3 << 24) : (b0 << 24 | b1 << 16 | b2 << 8 | b3);
  }
};

// True when `length` bytes starting at `offset` lie inside `size` bytes.
bool Fits(uint64_t offset, uint64_t length, uint64_t size) {
  return offset <= size && length <= size - offset;
}

void ReportNotDng() { std::fputs("        Error :: file not dng image \n", stdout); }

}  // namespace

cv::Mat DecodeDng(const uint8_t* data, size_t size, DngStripOffset layout, const char* reader,
                  const std::string& fullname) {
  if (size < kHeaderSize) {
    ReportNotDng();
    return cv::Mat();
  }
  const bool little_samples = data[0] == 'I' && data[1] == 'I';
  // The header and directory are little-endian in the files this reader was
  // made for, whatever the byte-order field says; a standard big-endian TIFF
  // is recognised by its magic number and read big-endian throughout.
  ByteOrder header{true};
  if (header.U16(data + 2) != kTiffMagic) {
    const ByteOrder big{false};
    if (data[0] == 'M' && data[1] == 'M' && big.U16(data + 2) == kTiffMagic) {
      header = big;
    } else {
      ReportNotDng();
      return cv::Mat();
    }
  }
  const ByteOrder samples{little_samples};

  const uint64_t directory = header.U32(data + 4);
  if (!Fits(directory, 2, size)) {
    PlumeLogError("%s -- Error directory offset past the end of file. fullname = %s", reader,
                  fullname.c_str());
    return cv::Mat();
  }
  const uint64_t entry_count = header.U16(data + directory);
  if (!Fits(directory + 2, entry_count * kEntrySize, size)) {
    PlumeLogError("%s -- Error directory entries past the end of file. fullname = %s", reader,
                  fullname.c_str());
    return cv::Mat();
  }
  uint64_t width = 0;
  uint64_t length = 0;
  uint64_t strip_offsets = 0;
  bool has_width = false, has_length = false, has_strips = false;
  for (uint64_t i = 0; i < entry_count; ++i) {
    const uint8_t* entry = data + directory + 2 + i * kEntrySize;
    const uint16_t tag = header.U16(entry);
    // A 16-bit value sits in the first two bytes of the value field; read
    // as 32 bits it is only right when the directory is little-endian.
    const bool short_value = !header.little && header.U16(entry + 2) == kFieldTypeShort;
    const uint64_t value = short_value ? header.U16(entry + 8) : header.U32(entry + 8);
    if (tag == kTagImageWidth) {
      width = value;
      has_width = true;
    } else if (tag == kTagImageLength) {
      length = value;
      has_length = true;
    } else if (tag == kTagStripOffsets) {
      strip_offsets = value;
      has_strips = true;
    }
  }
  if (!has_width || !has_length || !has_strips) {
    PlumeLogError("%s -- Error missing width, length or strip offsets. fullname = %s", reader,
                  fullname.c_str());
    return cv::Mat();
  }

  uint64_t data_position = strip_offsets;
  if (layout == DngStripOffset::kArray) {
    if (!Fits(strip_offsets, 4, size)) {
      PlumeLogError("%s -- Error strip offsets past the end of file. fullname = %s", reader,
                    fullname.c_str());
      return cv::Mat();
    }
    data_position = header.U32(data + strip_offsets);
  }
  // width and length are below 2^32, so their product cannot overflow; the
  // sample count is compared with what remains before anything is allocated.
  const uint64_t sample_count = width * length;
  if (data_position > size || sample_count > (size - data_position) / 2) {
    PlumeLogError("%s -- Error pixel data past the end of file. fullname = %s", reader,
                  fullname.c_str());
    return cv::Mat();
  }
  if (sample_count == 0 || width > kMaxSide || length > kMaxSide) {
    PlumeLogError("%s -- Error image size. fullname = %s", reader, fullname.c_str());
    return cv::Mat();
  }

  const int rows = static_cast<int>(length);
  const int cols = static_cast<int>(width);
  cv::Mat result(rows, cols, CV_16UC1);
  const uint8_t* source = data + data_position;
  for (int r = 0; r < rows; ++r) {
    const int destination_row = layout == DngStripOffset::kDirect ? rows - 1 - r : r;
    uint16_t* row = result.ptr<uint16_t>(destination_row);
    for (int c = 0; c < cols; ++c, source += 2) row[c] = samples.U16(source);
  }
  return result;
}

namespace {

// Both readers parse the whole file from memory.
cv::Mat ReadDngFile(const std::string& fullname, DngStripOffset layout, const char* reader) {
  return GuardExceptionsOr(reader, cv::Mat(), [&] {
    std::string bytes;
    if (!ReadWholeFile(fullname, bytes)) {
      LogOpenFailure(reader, fullname);
      return cv::Mat();
    }
    return DecodeDng(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size(), layout, reader,
                     fullname);
  });
}

}  // namespace

cv::Mat BImage::ReadRggbDng(const std::string& fullname) {
  return ReadDngFile(fullname, DngStripOffset::kArray, "BImage::ReadRggbDng");
}

cv::Mat BImage::ReadDngToup(const std::string& fullname) {
  return ReadDngFile(fullname, DngStripOffset::kDirect, "BImage::ReadDngToup");
}

}  // namespace aimhue
