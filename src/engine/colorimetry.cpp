// CIELAB, CIEDE2000 and the daylight locus, in double precision.
#include <aimhue/colorimetry.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>

#include "engine/colorimetry_literal.h"

namespace aimhue {
namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr double kDegree = kPi / 180.0;  // one degree in radians
constexpr double kRadian = 180.0 / kPi;  // one radian in degrees

// CIE 15 constants in their exact rational forms.
constexpr double kLabEpsilon = 216.0 / 24389.0;
constexpr double kLabKappa = 24389.0 / 27.0;

// Cosines and sines of the fixed angles in T (30, 6 and 63 degrees).
// Literals rather than computed statics, so no initialisation order matters.
constexpr double kCos30 = 0.8660254037844387;
constexpr double kSin30 = 0.5;
constexpr double kCos6 = 0.9945218953682733;
constexpr double kSin6 = 0.10452846326765347;
constexpr double kCos63 = 0.4539904997395468;
constexpr double kSin63 = 0.8910065241883678;

// 25^7, the chroma at which the CIEDE2000 a* rescaling is half applied.
constexpr double kChromaPivot7 = 6103515625.0;

constexpr double kDaylightMin = 4000.0;
constexpr double kDaylightSplit = 7000.0;
constexpr double kDaylightMax = 25000.0;

double Pow7(double v) {
  const double v2 = v * v;
  const double v3 = v2 * v;
  return v3 * v3 * v;
}

// The cube root of t > 0: a first guess from the exponent bits, then three
// Halley steps (each triples the correct digits: about 5 %, then 1e-4,
// 1e-12 and the last bit). Several times faster than the library's cbrt,
// which matters because the correction takes 24 cube roots per LED.
double CubeRoot(double t) {
  uint64_t bits;
  std::memcpy(&bits, &t, sizeof bits);
  bits = bits / 3 + 0x2A9F7893782DA1CEull;  // thirds the biased exponent
  double r;
  std::memcpy(&r, &bits, sizeof r);
  for (int step = 0; step < 3; ++step) {
    const double r3 = r * r * r;
    r = r * (r3 + 2.0 * t) / (2.0 * r3 + t);
  }
  return r;
}

// Beyond this the Halley steps' r^3 could overflow; no measured ratio gets
// there, but an infinity must still give an infinity.
constexpr double kCubeRootLimit = 1e300;

double LabF(double t) {
  if (!(t > kLabEpsilon)) return (kLabKappa * t + 16.0) / 116.0;
  return t < kCubeRootLimit ? CubeRoot(t) : std::cbrt(t);
}

// Hue angle in degrees in [0, 360); 0 for a neutral colour.
double HueDegrees(double b, double a) {
  if (a == 0.0 && b == 0.0) return 0.0;
  double h = std::atan2(b, a) * kRadian;
  if (h < 0.0) h += 360.0;
  return h;
}

// The rotation angle d-theta in degrees at the mean hue `hueMean` (degrees).
double RotationDegrees(double hueMean) {
  const double hueOffset = (hueMean - 275.0) / 25.0;
  return 30.0 * std::exp(-hueOffset * hueOffset);
}

// Equations (15) to (22): the weighting functions and the rotation term
// applied to dL', dC' and dH', given the mean lightness and chroma, the
// cosine and sine of the mean hue and the rotation angle in degrees.
double Weighted(double deltaL, double deltaC, double deltaHBig, double lightnessMean,
                double chromaMeanP, double cos1, double sin1, double deltaTheta) {
  // T's four cosines from one sine and cosine of the mean hue, by the
  // multiple-angle and angle-sum identities.
  const double cos2 = 2.0 * cos1 * cos1 - 1.0;
  const double sin2 = 2.0 * sin1 * cos1;
  const double cos3 = cos1 * cos2 - sin1 * sin2;
  const double sin3 = sin1 * cos2 + cos1 * sin2;
  const double cos4 = 2.0 * cos2 * cos2 - 1.0;
  const double sin4 = 2.0 * sin2 * cos2;
  const double t = 1.0 - 0.17 * (cos1 * kCos30 + sin1 * kSin30) + 0.24 * cos2 +
                   0.32 * (cos3 * kCos6 - sin3 * kSin6) - 0.20 * (cos4 * kCos63 + sin4 * kSin63);
  const double chromaMeanP7 = Pow7(chromaMeanP);
  const double rc = 2.0 * std::sqrt(chromaMeanP7 / (chromaMeanP7 + kChromaPivot7));
  const double lightnessOffset2 = (lightnessMean - 50.0) * (lightnessMean - 50.0);
  const double sl = 1.0 + 0.015 * lightnessOffset2 / std::sqrt(20.0 + lightnessOffset2);
  const double sc = 1.0 + 0.045 * chromaMeanP;
  const double sh = 1.0 + 0.015 * chromaMeanP * t;
  const double rt = deltaTheta == 0.0 ? 0.0 : -std::sin(2.0 * deltaTheta * kDegree) * rc;

  const double termL = deltaL / sl;
  const double termC = deltaC / sc;
  const double termH = deltaHBig / sh;
  return std::sqrt(termL * termL + termC * termC + termH * termH + rt * termC * termH);
}

// The scale (1 + G) of a* for the mean chroma of the two colours.
double AScale(double a1, double b1, double a2, double b2) {
  const double chromaMean = (std::sqrt(a1 * a1 + b1 * b1) + std::sqrt(a2 * a2 + b2 * b2)) / 2.0;
  const double chromaMean7 = Pow7(chromaMean);
  return 1.0 + 0.5 * (1.0 - std::sqrt(chromaMean7 / (chromaMean7 + kChromaPivot7)));
}

// The first steps of both versions: L* and b* as given, a* scaled by
// (1 + G) and the chroma C' of the scaled (a*, b*), of each colour.
struct PrimedPair {
  double L1, b1, a1p, c1p;
  double L2, b2, a2p, c2p;
};

PrimedPair Prime(const cv::Vec3d& lab1, const cv::Vec3d& lab2) {
  const double a1 = lab1[1], b1 = lab1[2];
  const double a2 = lab2[1], b2 = lab2[2];
  const double aScale = AScale(a1, b1, a2, b2);
  const double a1p = aScale * a1;
  const double a2p = aScale * a2;
  return {lab1[0], b1, a1p, std::sqrt(a1p * a1p + b1 * b1),
          lab2[0], b2, a2p, std::sqrt(a2p * a2p + b2 * b2)};
}

}  // namespace

// Sharma, Wu and Dalal (2005), equations (2) to (22).
double CieDe2000Literal(const cv::Vec3d& lab1, const cv::Vec3d& lab2) {
  const PrimedPair pair = Prime(lab1, lab2);
  const double L1 = pair.L1, b1 = pair.b1, a1p = pair.a1p, c1p = pair.c1p;
  const double L2 = pair.L2, b2 = pair.b2, a2p = pair.a2p, c2p = pair.c2p;
  const double h1p = HueDegrees(b1, a1p);
  const double h2p = HueDegrees(b2, a2p);

  const double deltaL = L2 - L1;
  const double deltaC = c2p - c1p;
  const bool neutral = c1p * c2p == 0.0;
  double deltaH = 0.0;
  if (!neutral) {
    deltaH = h2p - h1p;
    if (deltaH > 180.0) {
      deltaH -= 360.0;
    } else if (deltaH < -180.0) {
      deltaH += 360.0;
    }
  }
  const double deltaHBig = 2.0 * std::sqrt(c1p * c2p) * std::sin(deltaH * kDegree / 2.0);

  double hueMean = h1p + h2p;
  if (!neutral) {
    // The paper's branch order: an exact 180 degree gap takes the plain mean.
    if (std::fabs(h1p - h2p) <= 180.0) {
      hueMean = (h1p + h2p) / 2.0;
    } else if (h1p + h2p < 360.0) {
      hueMean = (h1p + h2p + 360.0) / 2.0;
    } else {
      hueMean = (h1p + h2p - 360.0) / 2.0;
    }
  }
  return Weighted(deltaL, deltaC, deltaHBig, (L1 + L2) / 2.0, (c1p + c2p) / 2.0,
                  std::cos(hueMean * kDegree), std::sin(hueMean * kDegree),
                  RotationDegrees(hueMean));
}

// The same quantities with at most one trigonometric call instead of five.
// With P = C1' C2', D = a1' a2' + b1 b2 = P cos(dh') and X = a1' b2 - b1 a2'
// = P sin(dh'), dH' = 2 sqrt(P) sin(dh' / 2) equals X sqrt(2 / (P + D))
// where the hues are at most 90 degrees apart (no cancellation for small
// differences) and sign(X) sqrt(2 (P - D)) beyond. The mean hue bisects the
// shorter arc between the hues: T takes its cosine and sine from a vector
// along that bisector, and one atan2 gives the degrees that the rotation
// term's exponential needs. A mean hue in the first quadrant is at least 185
// degrees from the rotation's centre at 275, where the rotation term is below
// 1e-23 of the sum it is added to and cannot change its rounding, so it is 0
// there without any call. With one neutral colour dH' is 0 and the mean hue
// is the other's. Two neutral colours and exactly opposite hues go to the
// literal version, whose conventions decide them. The two versions agree to
// rounding (about 1e-12 of the difference).
double CieDe2000(const cv::Vec3d& lab1, const cv::Vec3d& lab2) {
  const PrimedPair pair = Prime(lab1, lab2);
  const double L1 = pair.L1, b1 = pair.b1, a1p = pair.a1p, c1p = pair.c1p;
  const double L2 = pair.L2, b2 = pair.b2, a2p = pair.a2p, c2p = pair.c2p;
  const double chromaProduct = c1p * c2p;
  const double dot = a1p * a2p + b1 * b2;
  const double cross = a1p * b2 - b1 * a2p;

  double deltaHBig = 0.0;
  double bisectorA;
  double bisectorB;
  if (chromaProduct == 0.0) {
    // A chroma that is 0 with a* or b* not (underflow) has a hue of its own.
    const bool bothNeutral = c1p == 0.0 && c2p == 0.0;
    const bool exactZero = c1p == 0.0 ? a1p == 0.0 && b1 == 0.0 : a2p == 0.0 && b2 == 0.0;
    if (bothNeutral || !exactZero) return CieDe2000Literal(lab1, lab2);
    bisectorA = c1p == 0.0 ? a2p : a1p;
    bisectorB = c1p == 0.0 ? b2 : b1;
  } else {
    if (cross == 0.0 && dot < 0.0) return CieDe2000Literal(lab1, lab2);
    deltaHBig = dot >= 0.0 ? cross * std::sqrt(2.0 / (chromaProduct + dot))
                           : std::copysign(std::sqrt(2.0 * (chromaProduct - dot)), cross);
    // The sum of the unit hue vectors, or, for hues more than 90 degrees
    // apart where that sum cancels, their difference turned by a quarter
    // turn towards it.
    const double inverse1 = 1.0 / c1p;
    const double inverse2 = 1.0 / c2p;
    const double unit1A = a1p * inverse1, unit1B = b1 * inverse1;
    const double unit2A = a2p * inverse2, unit2B = b2 * inverse2;
    const double turn = std::copysign(1.0, cross);
    bisectorA = dot >= 0.0 ? unit1A + unit2A : turn * (unit2B - unit1B);
    bisectorB = dot >= 0.0 ? unit1B + unit2B : turn * (unit1A - unit2A);
  }
  const double inverseNorm = 1.0 / std::sqrt(bisectorA * bisectorA + bisectorB * bisectorB);
  double deltaTheta = 0.0;
  if (!(bisectorA >= 0.0 && bisectorB >= 0.0)) {
    double hueMean = std::atan2(bisectorB, bisectorA) * kRadian;
    if (hueMean < 0.0) hueMean += 360.0;
    deltaTheta = RotationDegrees(hueMean);
  }
  return Weighted(L2 - L1, c2p - c1p, deltaHBig, (L1 + L2) / 2.0, (c1p + c2p) / 2.0,
                  bisectorA * inverseNorm, bisectorB * inverseNorm, deltaTheta);
}

// CIE 15:2004, CIELAB with epsilon 216/24389 and kappa 24389/27.
cv::Vec3d XyzToLab(const cv::Vec3d& xyz, const cv::Vec3d& whiteXyz) {
  const double fx = LabF(xyz[0] / whiteXyz[0]);
  const double fy = LabF(xyz[1] / whiteXyz[1]);
  const double fz = LabF(xyz[2] / whiteXyz[2]);
  return {116.0 * fy - 16.0, 500.0 * (fx - fy), 200.0 * (fy - fz)};
}

// CIE 15:2004, the daylight locus polynomials in 1/T.
cv::Vec2d DaylightXy(double kelvin) {
  // Written so that NaN fails too.
  if (!(kelvin >= kDaylightMin && kelvin <= kDaylightMax)) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    return {nan, nan};
  }
  const double t = 1.0 / kelvin;
  const double t2 = t * t;
  const double t3 = t2 * t;
  const double x = kelvin <= kDaylightSplit
                       ? -4.6070e9 * t3 + 2.9678e6 * t2 + 0.09911e3 * t + 0.244063
                       : -2.0064e9 * t3 + 1.9018e6 * t2 + 0.24748e3 * t + 0.237040;
  const double y = -3.000 * x * x + 2.870 * x - 0.275;
  return {x, y};
}

}  // namespace aimhue
