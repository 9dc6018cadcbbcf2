// The matrix block: how every file and buffer format of the library stores
// a matrix.
//
// Layout (32-bit signed little-endian integers, then the samples):
//   rows, cols, type code (flags & 0xfff), channels,
//   then `channels` planes one after another (channel 0 first), each
//   rows x cols samples row-major in the depth's little-endian form
//   (sample sizes 1, 1, 2, 2, 4, 4, 8, 2 bytes for depths 0 to 7).
// An empty matrix is four zero integers and no planes; no planes follow
// either when rows x cols < 1.
#ifndef AIMHUE_SRC_CAPTURE_MATRIX_BLOCK_H_
#define AIMHUE_SRC_CAPTURE_MATRIX_BLOCK_H_

#include <cstdint>

#include <opencv2/core.hpp>

#include "capture/byte_stream.h"

namespace aimhue {

// Bytes of one sample of an OpenCV depth code (the low three bits of a type
// code): 1, 1, 2, 2, 4, 4, 8, 2 for depths 0 to 7.
size_t SampleSize(int depth);

// The length in bytes of `mat`'s block, without producing it.
uint64_t MatrixBlockSize(const cv::Mat& mat);

// Writes `mat`'s block, its element type unchanged. The planes of a
// multi-channel matrix are gathered a run at a time (no whole-plane copy); a
// non-continuous matrix is written row by row. A matrix of more than two dimensions is not
// representable and is written as an empty one.
void WriteMatrixBlock(const cv::Mat& mat, ByteWriter& out);

// Reads one block into `mat`. rows < 1 or cols < 1 gives an empty matrix and
// no planes are read. Otherwise the result has the depth of the type code
// (type & 7) and `channels` channels; the type code's own channel bits are
// not used.
// Returns false, leaving `mat` unchanged, when the header is incomplete, the
// channel count is outside 1..CV_CN_MAX, or the declared planes need more
// bytes than remain; the size check runs before anything is allocated, so a
// hostile header cannot make the reader allocate more than the data holds.
// The matrix is allocated once at its final size and the samples are read
// into place. A file reader whose file turns out shorter than its declared
// size (cut while it is read) also returns false with `mat` unchanged.
bool ReadMatrixBlock(ByteReader& in, cv::Mat& mat);

}  // namespace aimhue

#endif  // AIMHUE_SRC_CAPTURE_MATRIX_BLOCK_H_
