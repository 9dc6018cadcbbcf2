// BImage::ReadOrvoRaw: headerless raw dumps of little-endian 16-bit samples.
#include <aimhue/bimage.h>
#include <aimhue/plume_log.h>

#include <omp.h>

#include <algorithm>
#include <cstdint>

#include "capture/regular_file.h"
#include "common/exception_guard.h"

namespace aimhue {
namespace {

constexpr bool kHostIsLittleEndian = __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__;
constexpr int kRows120016 = 2838;
constexpr int kCols120016 = 4250;
constexpr int kRows320012 = 4852;
constexpr int kCols320012 = 6464;

cv::Mat ReadRawSamples(const std::string& fullname, int rows, int cols) {
  RegularFile file;
  if (!file.Open(fullname)) {
    PlumeLogError("BImage::ReadOrvoRaw -- Open file failure, fullname = %s", fullname.c_str());
    return cv::Mat();
  }
  // rows and cols are ints, so their product with 2 fits in 64 bits.
  const int64_t expected = static_cast<int64_t>(rows) * cols * 2;
  if (rows < 1 || cols < 1 || file.size() != static_cast<uint64_t>(expected)) {
    PlumeLogError("BImage::ReadOrvoRaw -- Check file size, fullname = %s", fullname.c_str());
    return cv::Mat();
  }
  // The bytes are read straight into the matrix's memory and each row is
  // then turned into samples in place: sample c of a row reads bytes 2c and
  // 2c+1 of the same row only, so no separate buffer is needed.
  cv::Mat result(rows, cols, CV_16UC1);
  if (!file.ReadExactly(result.data, static_cast<uint64_t>(expected))) {
    PlumeLogError("BImage::ReadOrvoRaw -- Check file size, fullname = %s", fullname.c_str());
    return cv::Mat();
  }

  omp_set_num_threads(std::max(1, omp_get_num_procs() - 1));
#pragma omp parallel for schedule(static)
  for (int r = 0; r < rows; ++r) {
    // Sample = low byte + 256 * high byte. On a little-endian host (which the
    // library's formats require) the bytes as read already are the samples.
    if constexpr (!kHostIsLittleEndian) {
      uint16_t* samples = result.ptr<uint16_t>(r);
      const uint8_t* bytes = reinterpret_cast<const uint8_t*>(samples);
      for (int c = 0; c < cols; ++c) {
        const unsigned low = bytes[2 * c];
        const unsigned high = bytes[2 * c + 1];
        samples[c] = static_cast<uint16_t>(low | high << 8);
      }
    }
  }
  return result;
}

}  // namespace

cv::Mat BImage::ReadOrvoRaw(const std::string& fullname, int rows, int cols) {
  return GuardExceptionsOr("BImage::ReadOrvoRaw", cv::Mat(),
                           [&] { return ReadRawSamples(fullname, rows, cols); });
}

cv::Mat BImage::ReadOrvoRaw120016(const std::string& fullname) {
  return ReadOrvoRaw(fullname, kRows120016, kCols120016);
}

cv::Mat BImage::ReadOrvoRaw320012(const std::string& fullname) {
  return ReadOrvoRaw(fullname, kRows320012, kCols320012);
}

}  // namespace aimhue
