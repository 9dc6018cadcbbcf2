// First stage of the target search: thinning the three primaries to at most
// about kMaxWorkingLeds LEDs by taking every k-th LED in row-major order.
#ifndef AIMHUE_SRC_ENGINE_SUBSAMPLE_H_
#define AIMHUE_SRC_ENGINE_SUBSAMPLE_H_

#include <cstdint>

namespace aimhue {

struct ChromaLxy;

// The number of LEDs the search works on at most.
constexpr int32_t kMaxWorkingLeds = 100000;

// The stride of the subsampling for a screen of `ledCount` LEDs:
// step = ceil(ledCount / 100000.0) and count = ceil(ledCount / step), both
// quotients in double precision. The LEDs taken are 0, step, 2 step, ...;
// `count` of them. A step of 1 means the screen is used as it is.
struct SubsampleStride {
  int32_t step;
  int32_t count;
};
SubsampleStride SubsampleStrideFor(int64_t ledCount);

// Fills the working sets from the red, green and blue inputs. With a step
// of 1 every working plane shares its input plane (no copy, the screen's own
// shape). Otherwise each working plane is a new count x 1 column of 32-bit
// floats holding the LEDs i = 0, step, 2 step, ... < rows x cols of the red L
// plane's shape, LED i at row floor(i / cols) (in double) and column
// i - cols x row; the same LEDs are taken from all nine planes, so one
// working position is one physical LED in every primary.
// Precondition (checked by Aimhue::Search): all nine input planes are
// non-empty single-channel 32-bit float planes of the red L plane's size.
// The output sets are replaced.
void Subsample(const ChromaLxy& red, const ChromaLxy& green, const ChromaLxy& blue,
               ChromaLxy& redOut, ChromaLxy& greenOut, ChromaLxy& blueOut);

}  // namespace aimhue

#endif  // AIMHUE_SRC_ENGINE_SUBSAMPLE_H_
