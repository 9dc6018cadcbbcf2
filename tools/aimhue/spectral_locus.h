// The CIE 1931 2-degree standard observer's spectral chromaticities: the
// horseshoe outline of all colours a person can see, drawn behind the gamut
// plot.
#ifndef AIMHUE_TOOLS_SPECTRAL_LOCUS_H_
#define AIMHUE_TOOLS_SPECTRAL_LOCUS_H_

#include <vector>

namespace aimhue {
namespace tool {

// One point of the locus: a wavelength and its chromaticity.
struct SpectralPoint {
  int nanometres;
  float x;
  float y;
};

// 380 to 700 nm in 5 nm steps, in order of wavelength. Beyond 700 nm the
// chromaticity stays at the last point to four decimals; the straight line
// from 700 nm back to 380 nm closes the locus (the line of purples).
const std::vector<SpectralPoint>& SpectralLocus();

// A reference colour gamut: the chromaticities of its red, green and blue
// primaries and of its white.
struct ReferenceGamut {
  const char* name;
  float red[2];
  float green[2];
  float blue[2];
  float white[2];
};

// Rec.709, DCI-P3 and BT.2020, in order of size.
const std::vector<ReferenceGamut>& ReferenceGamuts();

}  // namespace tool
}  // namespace aimhue

#endif  // AIMHUE_TOOLS_SPECTRAL_LOCUS_H_
