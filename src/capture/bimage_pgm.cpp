// BImage::ReadPgm: 16-bit binary PGM files without comment lines.
#include <aimhue/bimage.h>

#include <cstdio>
#include <iostream>
#include <sstream>

#include "capture/file_format.h"
#include "capture/image_decoders.h"
#include "common/exception_guard.h"

namespace aimhue {
namespace {

// Reads one line (without its line end) from data[*position, size); false at
// the end of the data.
bool NextLine(const uint8_t* data, size_t size, size_t* position, std::string* line) {
  if (*position >= size) return false;
  const size_t start = *position;
  size_t end = start;
  while (end < size && data[end] != '\n') ++end;
  line->assign(reinterpret_cast<const char*>(data) + start, end - start);
  *position = end < size ? end + 1 : end;
  return true;
}

}  // namespace

bool DecodePgm(const uint8_t* data, size_t size, cv::Mat& image) {
  size_t position = 0;
  std::string line;
  if (!NextLine(data, size, &position, &line) || line != "P5") {
    std::cerr << "Version error" << std::endl;
    return false;
  }
  // The third line holds the maximum sample value, which is not used.
  int width = -1;
  int height = -1;
  std::string size_line;
  std::string maximum_line;
  bool header_read =
      NextLine(data, size, &position, &size_line) && NextLine(data, size, &position, &maximum_line);
  if (header_read) {
    std::istringstream size_stream(size_line);
    header_read = static_cast<bool>(size_stream >> width >> height);
  }
  if (!header_read || width < 0 || height < 0) {
    std::cerr << "Header error" << std::endl;
    return false;
  }
  // Both sides are below 2^31, so the product fits in 64 bits.
  const uint64_t sample_count = static_cast<uint64_t>(width) * static_cast<uint64_t>(height);
  if (sample_count > (size - position) / 2) {
    std::cerr << "Size error" << std::endl;
    return false;
  }
  cv::Mat result(height, width, CV_16UC1);
  const uint8_t* source = data + position;
  for (int r = 0; r < height; ++r) {
    uint16_t* row = result.ptr<uint16_t>(r);
    for (int c = 0; c < width; ++c, source += 2) {
      row[c] = static_cast<uint16_t>(256 * source[0] + source[1]);
    }
  }
  image = result;
  return true;
}

bool BImage::ReadPgm(const std::string& fullname, cv::Mat& image) {
  return GuardExceptionsOr("BImage::ReadPgm", false, [&] {
    std::string bytes;
    if (!ReadWholeFile(fullname, bytes)) {
      std::cout << "Open file failure, fullname = " << fullname << std::endl;
      return false;
    }
    return DecodePgm(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size(), image);
  });
}

}  // namespace aimhue
