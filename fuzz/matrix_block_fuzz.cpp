// Feeds arbitrary bytes to the matrix block reader. A block that reads must
// write a block that reads back to the same bytes.
#include <cstddef>
#include <cstdint>
#include <string>

#include "capture/matrix_block.h"
#include "fuzz/fuzz_support.h"

namespace {

std::string Write(const cv::Mat& mat) {
  std::string bytes;
  aimhue::ByteWriter out(bytes);
  aimhue::WriteMatrixBlock(mat, out);
  aimhue::fuzz::Require(bytes.size() == aimhue::MatrixBlockSize(mat));
  return bytes;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  aimhue::fuzz::SilenceLog();
  aimhue::ByteReader in(reinterpret_cast<const char*>(data), size);
  cv::Mat mat;
  if (!aimhue::ReadMatrixBlock(in, mat)) return 0;
  const std::string written = Write(mat);
  aimhue::ByteReader again(written.data(), written.size());
  cv::Mat reread;
  aimhue::fuzz::Require(aimhue::ReadMatrixBlock(again, reread));
  aimhue::fuzz::Require(again.Remaining() == 0);
  aimhue::fuzz::Require(Write(reread) == written);
  return 0;
}
