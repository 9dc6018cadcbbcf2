// Feeds arbitrary bytes to the PGM decoder behind BImage::ReadPgm. A decoded
// image must be CV_16UC1 and hold no more samples than the input has pairs
// of bytes; a refused input must leave the image untouched.
#include <cstddef>
#include <cstdint>

#include "capture/image_decoders.h"
#include "fuzz/fuzz_support.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  aimhue::fuzz::SilenceLog();
  const cv::Mat untouched(1, 1, CV_8UC1);
  cv::Mat image = untouched;
  if (!aimhue::DecodePgm(data, size, image)) {
    aimhue::fuzz::Require(image.data == untouched.data);
    return 0;
  }
  aimhue::fuzz::Require(image.type() == CV_16UC1);
  aimhue::fuzz::Require(image.total() <= size / 2);
  return 0;
}
