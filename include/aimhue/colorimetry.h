// Colour maths that hosts and the tool share with the correction: CIELAB,
// the CIEDE2000 colour difference and the CIE daylight locus. Every function
// works in double precision, never throws and never logs.
#ifndef AIMHUE_COLORIMETRY_H_
#define AIMHUE_COLORIMETRY_H_

#include <aimhue/export.h>

#include <opencv2/core.hpp>

namespace aimhue {

// CIEDE2000 colour difference between two CIELAB colours (L*, a*, b*), with
// the parametric factors kL = kC = kH = 1.
// Reference: G. Sharma, W. Wu, E. N. Dalal, Color Res. Appl. 30 (2005) 21-30.
//
// Hue angles are computed in degrees in [0, 360) as the paper does; a colour
// with C' = 0 has hue 0. Where the two hues lie exactly 180 degrees apart the
// paper's branch order decides (|h1' - h2'| <= 180 takes the plain mean), so
// the result is symmetric in its arguments. A NaN in either colour gives NaN.
AIMHUE_EXPORT double CieDe2000(const cv::Vec3d& lab1, const cv::Vec3d& lab2);

// CIE 1976 L*a*b* of the tristimulus values `xyz` relative to the reference
// white `whiteXyz` (its Y scales the result, so any luminance unit works).
// Reference: CIE 15:2004 Colorimetry, with epsilon = 216/24389 and
// kappa = 24389/27 (the exact forms of 0.008856 and 903.3).
//
// Below epsilon the linear segment f(t) = (kappa t + 16) / 116 is used, so
// negative ratios (noise) give finite results. A white with a zero or
// non-finite component gives non-finite results; no check is made.
AIMHUE_EXPORT cv::Vec3d XyzToLab(const cv::Vec3d& xyz, const cv::Vec3d& whiteXyz);

// The CIE 1931 chromaticity (x, y) of the CIE daylight locus at the
// correlated colour temperature `kelvin`.
// Reference: CIE 15:2004 Colorimetry, daylight chromaticity polynomials.
//
// Defined for 4000 K <= kelvin <= 25000 K; outside that range, and for NaN,
// both coordinates are NaN, so that a caller cannot take an extrapolated
// point for a daylight. The standard illuminant D65 lies near 6504 K on this
// locus, so 6500 K is close to D65 but not the same point.
AIMHUE_EXPORT cv::Vec2d DaylightXy(double kelvin);

}  // namespace aimhue

#endif  // AIMHUE_COLORIMETRY_H_
