// Luminance/chromaticity and tristimulus planes of one primary, combined
// from its X, Y and Z meters.
#ifndef AIMHUE_SRC_METER_CHROMA_LXY_H_
#define AIMHUE_SRC_METER_CHROMA_LXY_H_

#include <opencv2/core.hpp>

namespace aimhue {

class LedMeter;

// Three co-registered 32-bit float planes, one element per LED: L (the Y
// tristimulus plane, shared with the Y meter), x and y (CIE 1931
// chromaticity, new matrices).
struct ChromaLxy {
  cv::Mat L;
  cv::Mat x;
  cv::Mat y;

  // Checks the three meters (flags kCheckForCombine) and fills `out`; the
  // roles are taken by position: X meter first, Y second, Z third. A colour-4
  // primary may pass a null Z meter (Z is then zero). Status 1 when all
  // three are null, otherwise the check's status; `out` is unchanged on
  // failure.
  static int Combine(ChromaLxy& out, const LedMeter* meter_x, const LedMeter* meter_y,
                     const LedMeter* meter_z);
};

// The three tristimulus planes X, Y, Z of one primary, all shared with the
// meters (in the colour-4 case without a Z meter, Z is a new zero plane).
struct ChromaXYZ {
  cv::Mat X;
  cv::Mat Y;
  cv::Mat Z;

  static int Combine(ChromaXYZ& out, const LedMeter* meter_x, const LedMeter* meter_y,
                     const LedMeter* meter_z);
};

// True when any of the set's three planes has no data or no elements.
bool IsEmpty(const ChromaLxy& set);

}  // namespace aimhue

#endif  // AIMHUE_SRC_METER_CHROMA_LXY_H_
