// BImage: stateless readers that turn camera files into OpenCV matrices of
// unsigned 16-bit sensor samples (CV_16UC1, still mosaiced). None of them
// interprets colour; demosaicing is Shot::SetImageColor's.
//
// Every reader reports failure by an empty matrix (or false) after one
// message. Only regular files are read (links are followed): a directory, a
// FIFO or a device fails as a file that cannot be opened, without waiting.
// Declared sizes are checked against the bytes the file holds before
// anything is allocated, and nothing is read outside the file. Memory
// exhausted on the way is a failure too, logged as
// "BImage::<Reader>--Error :: exception: <what>".
#ifndef AIMHUE_BIMAGE_H_
#define AIMHUE_BIMAGE_H_

#include <aimhue/export.h>

#include <string>

#include <opencv2/core.hpp>

namespace aimhue {

// Camera types with a fixed raw geometry (the value of Device::cam_type).
enum CameraType : int {
  kCamera120016 = 120016,  // 2838 rows x 4250 columns, 16-bit
  kCamera320012 = 320012,  // 4852 rows x 6464 columns, 12-bit
};

class AIMHUE_EXPORT BImage {
 public:
  // A headerless dump of rows x cols little-endian 16-bit samples. The file
  // size must be exactly rows * cols * 2 bytes ("BImage::ReadOrvoRaw --
  // Check file size, fullname = %s" otherwise). The conversion runs as an
  // OpenMP loop over rows and sets the process-wide OpenMP thread count to
  // the number of processors minus one, but at least one; that setting
  // stays in force for every later parallel region of the process.
  static cv::Mat ReadOrvoRaw(const std::string& fullname, int rows, int cols);
  // ReadOrvoRaw with the geometry of camera 120016 (2838 x 4250).
  static cv::Mat ReadOrvoRaw120016(const std::string& fullname);
  // ReadOrvoRaw with the geometry of camera 320012 (4852 x 6464).
  static cv::Mat ReadOrvoRaw320012(const std::string& fullname);

  // DNG/TIFF files: the header and the first directory only. Tags 256
  // (width), 257 (length) and 273 (strip offsets) are used; the pixel data is
  // one contiguous block of width x length 16-bit samples, little-endian
  // when the file starts "II", big-endian otherwise. The header and the
  // directory are read little-endian whatever the byte order says; a file
  // starting "MM" whose magic number reads 42 only big-endian (a standard
  // big-endian TIFF) has its header and directory read big-endian too, with
  // the field type of a 16-bit value honoured. A magic number other than 42
  // writes "        Error :: file not dng image " on standard output.
  // Missing tags, offsets past the end of the file and pixel data that the
  // file does not hold give an empty result after an error log line.
  //
  // ReadRggbDng: the strip-offsets value points at an array of offsets whose
  // first element is the data position.
  static cv::Mat ReadRggbDng(const std::string& fullname);
  // ReadDngToup: the strip-offsets value is the data position itself; the
  // image is flipped upside down.
  static cv::Mat ReadDngToup(const std::string& fullname);

  // A 16-bit binary PGM: first line exactly "P5", second line width and
  // height, third line the maximum value (not used), no comment lines, then
  // height x width big-endian samples. On failure `image` is untouched: an
  // unopenable file writes "Open file failure, fullname = <name>" on standard
  // output; a wrong first line "Version error", an unreadable size line
  // "Header error" and missing samples "Size error" on standard error. A
  // width or height of 0 gives true and an empty image.
  static bool ReadPgm(const std::string& fullname, cv::Mat& image);
};

}  // namespace aimhue

#endif  // AIMHUE_BIMAGE_H_
