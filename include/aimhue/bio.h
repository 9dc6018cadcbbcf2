// BIO: stateless matrix and name-list files.
//
//  - Binary matrix file: the byte 'L' and one matrix block (rows, cols, type
//    code, channels as 32-bit little-endian integers, then the channel
//    planes one after another, each row-major). A 2 x 2 CV_8UC3 matrix is
//    1 + 16 + 12 = 29 bytes.
//  - Text matrix file: decimal numbers separated by any white space, row
//    after row; the caller supplies the size.
//  - Name list: text, one name per line.
//
// Each function logs its name on the information channel on entry and
// returns false only when the file cannot be opened (after logging
// "BIO::<Function> -- Failed to Open file. fullname = <name>"), for
// LoadTxtToMat when the size is invalid, and when the work runs out of
// memory ("BIO::<Function>--Error :: exception: <what>", outputs
// unchanged). The readers open only regular files (links are followed): a
// directory, a FIFO or a device is refused as a file that cannot be opened,
// and no reader reads more than the file's size. Damaged contents do not
// give false: they leave the output unchanged or partly filled as
// documented, and log an error line.
#ifndef AIMHUE_BIO_H_
#define AIMHUE_BIO_H_

#include <aimhue/export.h>

#include <string>
#include <vector>

#include <opencv2/core.hpp>

namespace aimhue {
namespace BIO {

// Writes 'L' and `mat`'s matrix block with its element type unchanged,
// replacing the file. An empty matrix is stored as four zero integers.
AIMHUE_EXPORT bool SaveMatToBin(const std::string& fullname, const cv::Mat& mat);

// Reads a binary matrix file into `mat`. A first byte other than 'L' leaves
// `mat` unchanged and still returns true (the mark only selects whether to
// read). A block with rows or cols < 1 gives an empty matrix. A block whose
// planes are cut short or whose channel count is impossible leaves `mat`
// unchanged, logs "BIO::LoadBinToMat -- Error data in file." and returns
// true.
AIMHUE_EXPORT bool LoadBinToMat(const std::string& fullname, cv::Mat& mat);

// Reads size[1] (height) rows of size[0] (width) numbers into a new CV_32FC1
// matrix in `mat`. Elements the file does not supply (it ends early or holds
// something that is not a number) are 0; surplus numbers are ignored.
// A null `size` or a width or height < 1 logs
// "BIO::LoadTxtToMat--Error :: invalid size." and returns false with `mat`
// unchanged.
AIMHUE_EXPORT bool LoadTxtToMat(const std::string& fullname, const int size[2], cv::Mat& mat);

// Appends every line of the file to `names`, as read and including empty
// lines; the vector is not cleared first. A last line without a line end is
// still appended. A carriage return before a line end is kept.
AIMHUE_EXPORT bool ReadFullNameListTxt(const std::string& fullname,
                                       std::vector<std::string>& names);

}  // namespace BIO
}  // namespace aimhue

#endif  // AIMHUE_BIO_H_
