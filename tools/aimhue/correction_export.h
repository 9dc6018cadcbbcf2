// The planes of a correction as single-channel TIFF images that any image
// tool reads: the nine coefficient planes, the gain and the flags.
//
// Float coefficients (bits 0) give 32-bit float images holding the stored
// values. Fixed-point coefficients (bits 8..16) give 16-bit unsigned images
// holding the integers n a controller loads (full scale 2^bits - 1); the gain
// is then written on the same full scale, rounded to the nearest integer,
// and the flags as their bit values.
#ifndef AIMHUE_TOOLS_CORRECTION_EXPORT_H_
#define AIMHUE_TOOLS_CORRECTION_EXPORT_H_

#include <aimhue/correction.h>

#include <string>
#include <vector>

#include <opencv2/core.hpp>

namespace aimhue {
namespace tool {

struct ExportPlane {
  std::string name;  // file name inside the export directory
  cv::Mat image;     // CV_32FC1 or CV_16UC1
};

// coefficient_<emitter>_for_<input>.tiff for emitter and input red, green,
// blue (channel 3 emitter + input of the coefficients), gain.tiff and
// flags.tiff, in that order.
std::vector<ExportPlane> CorrectionExportPlanes(const Correction& correction);

}  // namespace tool
}  // namespace aimhue

#endif  // AIMHUE_TOOLS_CORRECTION_EXPORT_H_
