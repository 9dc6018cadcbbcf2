// The matrix block, written and read over the library's byte streams.
#include "capture/matrix_block.h"

#include <vector>

namespace aimhue {
namespace {

constexpr size_t kSampleSizes[8] = {1, 1, 2, 2, 4, 4, 8, 2};
constexpr size_t kHeaderBytes = 16;

bool HasPlanes(const cv::Mat& mat) {
  return !mat.empty() && mat.dims <= 2 && mat.rows >= 1 && mat.cols >= 1;
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
  std::vector<cv::Mat> planes;
  cv::split(mat, planes);
  for (const cv::Mat& plane : planes) WritePlane(plane, out);
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
  const size_t planeBytes = static_cast<size_t>(samplesPerPlane) * SampleSize(depth);

  if (channels == 1) {
    cv::Mat plane(rows, cols, CV_MAKETYPE(depth, 1));
    in.ReadBytes(plane.data, planeBytes);
    mat = plane;
    return true;
  }
  std::vector<cv::Mat> planes(static_cast<size_t>(channels));
  for (cv::Mat& plane : planes) {
    plane.create(rows, cols, CV_MAKETYPE(depth, 1));
    in.ReadBytes(plane.data, planeBytes);
  }
  cv::Mat merged;
  cv::merge(planes, merged);
  mat = merged;
  return true;
}

}  // namespace aimhue
