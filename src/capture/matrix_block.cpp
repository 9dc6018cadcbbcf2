// The matrix block, written and read over the library's byte streams.
#include "capture/matrix_block.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include "common/float_plane.h"

namespace aimhue {
namespace {

constexpr size_t kSampleSizes[8] = {1, 1, 2, 2, 4, 4, 8, 2};
constexpr size_t kHeaderBytes = 16;
// Samples of one channel moved at a time between a multi-channel matrix and
// its stored planes; a small buffer instead of a whole plane per channel.
constexpr size_t kStagingBytes = size_t{1} << 16;

// Moves `count` samples of `Size` bytes between a packed run and every
// `stride`-th sample of an interleaved row.
template <size_t Size>
void MoveSamples(const char* from, size_t fromStride, char* to, size_t toStride, size_t count) {
  for (size_t k = 0; k < count; ++k) std::memcpy(to + k * toStride, from + k * fromStride, Size);
}

void MoveSamples(size_t sampleSize, const char* from, size_t fromStride, char* to,
                 size_t toStride, size_t count) {
  switch (sampleSize) {
    case 1:
      return MoveSamples<1>(from, fromStride, to, toStride, count);
    case 2:
      return MoveSamples<2>(from, fromStride, to, toStride, count);
    case 4:
      return MoveSamples<4>(from, fromStride, to, toStride, count);
    default:
      return MoveSamples<8>(from, fromStride, to, toStride, count);
  }
}

bool HasPlanes(const cv::Mat& mat) {
  return !mat.empty() && mat.dims <= 2 && mat.rows >= 1 && mat.cols >= 1;
}

// Writes channel `channel` of a multi-channel matrix as one stored plane,
// gathered a run at a time.
void WriteChannel(const cv::Mat& mat, int channel, ByteWriter& out) {
  const size_t sampleSize = SampleSize(mat.depth());
  const size_t pixelSize = mat.elemSize();
  const size_t runSamples = kStagingBytes / sampleSize;
  std::vector<char> staging(kStagingBytes);
  for (int row = 0; row < mat.rows; ++row) {
    const char* pixels = reinterpret_cast<const char*>(mat.ptr(row)) + channel * sampleSize;
    for (size_t done = 0; done < static_cast<size_t>(mat.cols);) {
      const size_t run = std::min(runSamples, static_cast<size_t>(mat.cols) - done);
      MoveSamples(sampleSize, pixels + done * pixelSize, pixelSize, staging.data(), sampleSize,
                  run);
      out.WriteBytes(staging.data(), run * sampleSize);
      done += run;
    }
  }
}

void WritePlane(const cv::Mat& plane, ByteWriter& out) {
  const size_t rowBytes = static_cast<size_t>(plane.cols) * plane.elemSize();
  if (plane.isContinuous()) {
    out.WriteBytes(plane.data, rowBytes * static_cast<size_t>(plane.rows));
    return;
  }
  for (int row = 0; row < plane.rows; ++row) out.WriteBytes(plane.ptr(row), rowBytes);
}

}  // namespace

size_t SampleSize(int depth) { return kSampleSizes[depth & 7]; }

uint64_t MatrixBlockSize(const cv::Mat& mat) {
  if (!HasPlanes(mat)) return kHeaderBytes;
  return kHeaderBytes + static_cast<uint64_t>(mat.total()) * mat.elemSize();
}

void WriteMatrixBlock(const cv::Mat& mat, ByteWriter& out) {
  if (mat.empty() || mat.dims > 2) {
    for (int field = 0; field < 4; ++field) out.WriteI32(0);
    return;
  }
  out.WriteI32(mat.rows);
  out.WriteI32(mat.cols);
  out.WriteI32(mat.type());
  out.WriteI32(mat.channels());
  if (!HasPlanes(mat)) return;
  if (mat.channels() == 1) {
    WritePlane(mat, out);
    return;
  }
  for (int channel = 0; channel < mat.channels(); ++channel) WriteChannel(mat, channel, out);
}

bool ReadMatrixBlock(ByteReader& in, cv::Mat& mat) {
  int32_t rows = 0;
  int32_t cols = 0;
  int32_t type = 0;
  int32_t channels = 0;
  if (!in.ReadI32(rows) || !in.ReadI32(cols) || !in.ReadI32(type) || !in.ReadI32(channels)) {
    return false;
  }
  if (rows < 1 || cols < 1) {
    mat = cv::Mat();
    return true;
  }
  if (channels < 1 || channels > CV_CN_MAX) return false;
  const int depth = type & 7;
  // rows * cols < 2^62 cannot overflow; the plane bytes are compared by
  // division so that the product with the sample size never has to exist.
  const uint64_t samplesPerPlane = static_cast<uint64_t>(rows) * static_cast<uint64_t>(cols);
  const uint64_t bytesPerSample = static_cast<uint64_t>(channels) * SampleSize(depth);
  if (samplesPerPlane > in.Remaining() / bytesPerSample) return false;

  // The matrix is allocated once at its final size and the planes are read
  // into it: a single channel straight into place, several a run at a time
  // through a small buffer into their interleaved places.
  cv::Mat loaded = NewPlane(rows, cols, CV_MAKETYPE(depth, channels));
  if (channels == 1) {
    if (!in.ReadBytes(loaded.data, static_cast<size_t>(samplesPerPlane) * SampleSize(depth))) {
      return false;
    }
    mat = loaded;
    return true;
  }
  const size_t sampleSize = SampleSize(depth);
  const size_t pixelSize = loaded.elemSize();
  const size_t runSamples = kStagingBytes / sampleSize;
  std::vector<char> staging(kStagingBytes);
  for (int channel = 0; channel < channels; ++channel) {
    char* samples = reinterpret_cast<char*>(loaded.data) + channel * sampleSize;
    for (uint64_t done = 0; done < samplesPerPlane;) {
      const size_t run = static_cast<size_t>(std::min<uint64_t>(runSamples, samplesPerPlane - done));
      if (!in.ReadBytes(staging.data(), run * sampleSize)) return false;
      MoveSamples(sampleSize, staging.data(), sampleSize, samples + done * pixelSize, pixelSize,
                  run);
      done += run;
    }
  }
  mat = loaded;
  return true;
}

}  // namespace aimhue
