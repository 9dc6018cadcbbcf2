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

  // Checks the three meters and fills `out` with x = X / S, y = Y / S and
  // L = Y, where S = (X + Y) + Z element by element in 32-bit floats. An LED
  // whose sum is zero gets the IEEE quotient (0 / 0 is NaN); dead LEDs are
  // not looked at. The roles are taken by position (X meter first, Y second,
  // Z third); the check only makes the types distinct.
  //
  // Checks: the three meters with kCheckForCombine (present, chroma not
  // empty, valid type, same chroma size, pairwise different types, same
  // colour). A colour-4 primary may pass a null Z meter: then only (X, Y)
  // are checked and Z is taken as zero.
  //
  // Statuses: 0; 1 with "ChromaLxy::Combine-- meter_x meter_y  meter_z all
  // Nullptr" when all three are null; the check's status and message (1, 9
  // or 12); 6 with "ChromaLxy::Combine--Error :: chroma is not a plane of
  // 32-bit floats" when a chroma plane is not a two-dimensional,
  // single-channel 32-bit float plane.
  // A null meter_x beside another meter fails the check with 1 and
  // "LedMeter::Check--Error in LedMeter input is nullptr". `out` is
  // unchanged on any failure.
  static int Combine(ChromaLxy& out, const LedMeter* meter_x, const LedMeter* meter_y,
                     const LedMeter* meter_z);

  // Combine's checks alone, their log lines under `name`.
  static int Check(const char* name, const LedMeter* meter_x, const LedMeter* meter_y,
                   const LedMeter* meter_z);

  // Combine into planes of the set's own: L is a copy of the Y plane, so
  // that the meters may change or go afterwards.
  static int CombineOwned(ChromaLxy& out, const LedMeter* meter_x, const LedMeter* meter_y,
                          const LedMeter* meter_z);

  // Combine taking the meters' value planes over: when each of the three
  // meters alone holds its continuous chroma plane, x and y are written
  // over the X and Z planes and the Y plane becomes L, with nothing
  // allocated; otherwise (a plane shared with another matrix, rows with
  // gaps, no Z meter) the result is CombineOwned's. The results are the
  // same bits either way. On success the three meters' chroma planes are
  // empty; on failure the meters are unchanged.
  static int CombineTaking(ChromaLxy& out, LedMeter* meter_x, LedMeter* meter_y,
                           LedMeter* meter_z);
};

// The three tristimulus planes X, Y, Z of one primary, all shared with the
// meters (in the colour-4 case without a Z meter, Z is a new zero plane).
struct ChromaXYZ {
  cv::Mat X;
  cv::Mat Y;
  cv::Mat Z;

  // The checks, statuses and messages of ChromaLxy::Combine, under the name
  // "ChromaXYZ::Combine"; on success `out` shares the three chroma planes.
  static int Combine(ChromaXYZ& out, const LedMeter* meter_x, const LedMeter* meter_y,
                     const LedMeter* meter_z);
};

// True when any of the set's three planes has no data or no elements.
bool IsEmpty(const ChromaLxy& set);

}  // namespace aimhue

#endif  // AIMHUE_SRC_METER_CHROMA_LXY_H_
