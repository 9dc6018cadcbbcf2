// The byte-level parsers behind the BImage file readers. They take the whole
// file content, so that tests and fuzz targets can drive them from memory.
#ifndef AIMHUE_SRC_CAPTURE_IMAGE_DECODERS_H_
#define AIMHUE_SRC_CAPTURE_IMAGE_DECODERS_H_

#include <cstddef>
#include <cstdint>
#include <string>

#include <opencv2/core.hpp>

namespace aimhue {

// How the value of the strip-offsets tag leads to the pixel data.
enum class DngStripOffset {
  kArray,   // the value points at an array of offsets; its first element is the data position
  kDirect,  // the value is the data position; the image is flipped upside down
};

// Decodes a DNG/TIFF held in `data`. `reader` ("BImage::ReadRggbDng") and
// `fullname` name the caller in messages. An empty matrix means failure.
cv::Mat DecodeDng(const uint8_t* data, size_t size, DngStripOffset layout, const char* reader,
                  const std::string& fullname);

// Decodes a 16-bit binary PGM held in `data` into `image`; false (image
// untouched) on failure, after one line on standard error.
bool DecodePgm(const uint8_t* data, size_t size, cv::Mat& image);

}  // namespace aimhue

#endif  // AIMHUE_SRC_CAPTURE_IMAGE_DECODERS_H_
