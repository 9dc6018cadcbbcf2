// The white point: luminance gains that mix the red, green and blue targets
// into a wanted white chromaticity.
#include <aimhue/plume_log.h>
#include <aimhue/status.h>

#include <array>

#include <opencv2/core.hpp>

#include "engine/aimhue.h"

namespace aimhue {
namespace {

// A primary's tristimulus values. A primary without positive luminance
// contributes nothing: X = Y = Z = 0.
struct Tristimulus {
  float X = 0.0f;
  float Y = 0.0f;
  float Z = 0.0f;
};

Tristimulus ToTristimulus(const TargetLxy& primary) {
  Tristimulus t;
  if (primary.L > 0.0f) {
    const float k = primary.L / primary.y;
    t.X = k * primary.x;
    t.Y = primary.L;
    t.Z = (1.0f - primary.x - primary.y) * k;
  }
  return t;
}

}  // namespace

int Aimhue::CalcWhite(float scale, const TargetLxy* white, bool uncapped) {
  PlumeLogInfo("Aimhue::CalcWhite");
  if (scale > 1.0f || 0.0f >= scale) return kOutOfRange;
  if (white == nullptr) return kNullInput;

  target[kBlueTarget].L *= scale;
  target[kGreenTarget].L *= scale;
  target[kRedTarget].L *= scale;
  const float luminanceSum = target[kGreenTarget].L + target[kRedTarget].L + target[kBlueTarget].L;
  const float wx = white->x;
  const float wy = white->y;

  // Columns red, green, blue. Row 0 keeps the summed luminance; rows 1 and
  // 2 force the mixture's x and y onto the wanted white.
  cv::Mat system(3, 3, CV_64F);
  for (int primary = kRedTarget; primary <= kBlueTarget; ++primary) {
    const Tristimulus t = ToTristimulus(target[primary]);
    const float sum = t.Y + t.X + t.Z;
    const float a = sum * wx - t.X;
    const float b = sum * wy - t.Y;
    system.at<double>(0, primary) = static_cast<double>(t.Y);
    system.at<double>(1, primary) = static_cast<double>(a);
    system.at<double>(2, primary) = static_cast<double>(b);
  }
  const cv::Mat rightHand = (cv::Mat_<double>(3, 1) << static_cast<double>(luminanceSum), 0.0, 0.0);
  // The inverse is formed first: LU leaves a zero inverse for a singular
  // system, and so zero gains.
  cv::Mat inverse;
  cv::invert(system, inverse, cv::DECOMP_LU);
  const cv::Mat gains = inverse * rightHand;
  std::array<double, 3> gain = {gains.at<double>(kRedTarget), gains.at<double>(kGreenTarget),
                                gains.at<double>(kBlueTarget)};

  if (!uncapped) {
    double largest = gain[kRedTarget];
    if (gain[kGreenTarget] > largest) largest = gain[kGreenTarget];
    if (gain[kBlueTarget] > largest) largest = gain[kBlueTarget];
    const double cap = static_cast<double>(whiteScale);
    const double factor = largest > cap ? cap / largest : 1.0;
    for (double& g : gain) g *= factor;
  }

  for (int primary = kRedTarget; primary <= kBlueTarget; ++primary) {
    target[primary].L = static_cast<float>(static_cast<double>(target[primary].L) * gain[primary]);
  }
  target[kWhiteTarget].L = target[kGreenTarget].L + target[kRedTarget].L + target[kBlueTarget].L;
  target[kWhiteTarget].x = wx;
  target[kWhiteTarget].y = wy;
  return kOk;
}

}  // namespace aimhue
