// Feeds arbitrary bytes to the DNG decoder behind BImage::ReadRggbDng and
// BImage::ReadDngToup. A decoded image must be CV_16UC1 and hold no more
// samples than the input has pairs of bytes.
#include <cstddef>
#include <cstdint>
#include <cstdio>

#include "capture/image_decoders.h"
#include "fuzz/fuzz_support.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  aimhue::fuzz::SilenceLog();
  for (const aimhue::DngStripOffset layout :
       {aimhue::DngStripOffset::kArray, aimhue::DngStripOffset::kDirect}) {
    const cv::Mat image = aimhue::DecodeDng(data, size, layout, "fuzz", "input");
    if (image.empty()) continue;
    aimhue::fuzz::Require(image.type() == CV_16UC1);
    aimhue::fuzz::Require(image.total() <= size / 2);
  }
  return 0;
}
