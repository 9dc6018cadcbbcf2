// Picture files and encoded pictures (PNG, TIFF, JPEG, BMP, ..., the format
// chosen by the file name's extension) through OpenCV's image codecs.
//
// The codecs are loaded when a picture is first read, encoded or written,
// not when a program starts: on a typical Linux system they bring a hundred
// further libraries with them (geodata, video and document formats), whose
// loading would add about a fifth of a second to the start of every program
// that links aimhue, whether it ever touches a picture or not. Once loaded
// they stay for the life of the process. A program that cannot load them
// gets false or an empty matrix from these functions and one error line
// ("PictureFiles--Error :: ...") the first time.
#ifndef AIMHUE_PICTURE_FILES_H_
#define AIMHUE_PICTURE_FILES_H_

#include <aimhue/export.h>

#include <cstdint>
#include <string>
#include <vector>

#include <opencv2/core.hpp>

namespace aimhue {

// Writes `picture` to `fullname` as cv::imwrite does, with its `params`.
// False when the codecs are missing or refuse it (an unknown extension, a
// type the format cannot hold, a file that cannot be written).
AIMHUE_EXPORT bool WritePictureFile(const std::string& fullname, const cv::Mat& picture,
                                    const std::vector<int>& params = {});

// Encodes `picture` into `bytes` as cv::imencode does (`extension` such as
// ".png"). False, with `bytes` unchanged, when the codecs are missing or
// refuse it.
AIMHUE_EXPORT bool EncodePicture(const std::string& extension, const cv::Mat& picture,
                                 std::vector<uint8_t>& bytes,
                                 const std::vector<int>& params = {});

// Reads a picture file as cv::imread does with `flags` (cv::ImreadModes).
// An empty matrix when the codecs are missing or the file is not a picture
// they can read.
AIMHUE_EXPORT cv::Mat ReadPictureFile(const std::string& fullname, int flags);

}  // namespace aimhue

#endif  // AIMHUE_PICTURE_FILES_H_
