// Coverage tuning: moves the red, green and blue targets along straight
// lines through the triangle's centre until the measured coverage reaches
// the wanted coverage held in percentCalcChroma.
#include <aimhue/status.h>

#include <cmath>

#include "engine/aimhue.h"
#include "engine/coverage_inputs.h"
#include "engine/percent_of_target.h"

namespace aimhue {
namespace {

constexpr uint32_t kTuneAll = 0;
constexpr uint32_t kTuneEach = 1;
constexpr float kFineStep = 0.0005f;
// A primary whose own coverage is at least this is never drawn further in.
constexpr float kCoverageFloor = 0.99f;

// The |v| of the tuning rules, taken in 64-bit and stored back as 32-bit.
float Magnitude(float v) { return static_cast<float>(std::fabs(static_cast<double>(v))); }

// One primary's tuning line: y = slope * x + offset, slope = a * k.
struct TuneLine {
  float slope;
  float offset;
};

// Red and blue step in x and take y from their line; green steps in y and
// takes x from its line.
void StepX(TargetLxy& point, const TuneLine& line, float dx) {
  point.x += dx;
  point.y = line.slope * point.x + line.offset;
}

void StepY(TargetLxy& point, const TuneLine& line, float dy) {
  point.y += dy;
  point.x = (point.y - line.offset) / line.slope;
}

bool IsLineMatrix(const cv::Mat& lines) {
  return lines.dims == 2 && lines.rows == 3 && lines.cols == 2 && lines.type() == CV_32FC1;
}

}  // namespace

int Aimhue::TuneCoverage(const cv::Mat& mask, const ChromaLxy* red, const ChromaLxy* green,
                         const ChromaLxy* blue, const cv::Mat& lines) {
  const int inputs = CheckCoverageInputs(red, green, blue, mask);
  if (inputs != kOk) return inputs;
  if (!IsLineMatrix(lines)) return kOutOfRange;

  TuneLine line[kPrimaryCount];
  for (int primary = kRedTarget; primary <= kBlueTarget; ++primary) {
    line[primary] = {lines.at<float>(primary, 0) * lineSlopeK[primary], lines.at<float>(primary, 1)};
  }
  const float mR = line[kRedTarget].slope;
  const float mG = line[kGreenTarget].slope;
  const float mB = line[kBlueTarget].slope;
  // x steps that move 0.01 along the red line and 0.005 along the blue one,
  // and a y step that moves 0.01 along the green line.
  const float dR = std::sqrt(0.0001f / (mR * mR + 1.0f));
  const float dG = Magnitude(0.01f * mG / std::sqrt(mG * mG + 1.0f));
  const float dB = std::sqrt(0.000025f / (mB * mB + 1.0f));
  const Fractions wanted = percentCalcChroma;

  // The inputs are checked above, so every count below succeeds.
  auto measure = [&](const cv::Mat& countMask) {
    Coverage coverage;
    PercentOfTarget(red, green, blue, TargetFloats(target), coverage, countMask);
    return coverage;
  };
  auto keep = [&](const Coverage& coverage) {
    percentCalcChroma = {coverage.red, coverage.green, coverage.blue, coverage.all};
  };

  if (tuneMode == kTuneAll) {
    for (int round = 0; round < maxIter; ++round) {
      const Coverage coverage = measure(mask);
      const float error = coverage.all - wanted[3];
      if (Magnitude(error) <= percentTol) {
        keep(coverage);
        return kOk;
      }
      if (error > percentTol) {
        StepX(target[kRedTarget], line[kRedTarget], kFineStep);
        StepY(target[kGreenTarget], line[kGreenTarget], kFineStep);
        StepX(target[kBlueTarget], line[kBlueTarget], -kFineStep);
      } else {
        if (coverage.red < kCoverageFloor) StepX(target[kRedTarget], line[kRedTarget], -dR);
        if (coverage.green < kCoverageFloor) StepY(target[kGreenTarget], line[kGreenTarget], -dG);
        if (coverage.blue < kCoverageFloor) StepX(target[kBlueTarget], line[kBlueTarget], dB);
      }
    }
  } else if (tuneMode == kTuneEach) {
    for (int round = 0; round < maxIter; ++round) {
      const Coverage coverage = measure(mask);
      const float errorR = coverage.red - wanted[kRedTarget];
      const float errorG = coverage.green - wanted[kGreenTarget];
      const float errorB = coverage.blue - wanted[kBlueTarget];
      if (Magnitude(errorR) <= percentTol && Magnitude(errorG) <= percentTol &&
          Magnitude(errorB) <= percentTol) {
        keep(coverage);
        return kOk;
      }
      if (errorR > percentTol) {
        StepX(target[kRedTarget], line[kRedTarget], kFineStep);
      } else if (coverage.red < kCoverageFloor) {
        StepX(target[kRedTarget], line[kRedTarget], -dR);
      }
      if (errorG > percentTol) {
        StepY(target[kGreenTarget], line[kGreenTarget], kFineStep);
      } else if (coverage.green < kCoverageFloor) {
        StepY(target[kGreenTarget], line[kGreenTarget], -dG);
      }
      if (errorB > percentTol) {
        StepX(target[kBlueTarget], line[kBlueTarget], -kFineStep);
      } else if (coverage.blue < kCoverageFloor) {
        StepX(target[kBlueTarget], line[kBlueTarget], dB);
      }
    }
  }

  // Not converged, or no rounds at all: report the coverage of every LED.
  keep(measure(cv::Mat()));
  return kTuneNotConverged;
}

void Aimhue::BuildTuneLines(const TargetBlock& targets, cv::Mat& lines) const {
  const double xr = targets[kRedTarget].x;
  const double yr = targets[kRedTarget].y;
  const double xg = targets[kGreenTarget].x;
  const double yg = targets[kGreenTarget].y;
  const double xb = targets[kBlueTarget].x;
  const double yb = targets[kBlueTarget].y;

  const double a = std::sqrt((xg - xb) * (xg - xb) + (yg - yb) * (yg - yb));
  const double b = std::sqrt((xb - xr) * (xb - xr) + (yb - yr) * (yb - yr));
  const double c = std::sqrt((xg - xr) * (xg - xr) + (yg - yr) * (yg - yr));
  const double twiceD = 2.0 * (xr * (yg - yb) + xg * (yb - yr) + xb * (yr - yg));
  const double rr = xr * xr + yr * yr;
  const double gg = xg * xg + yg * yg;
  const double bb = xb * xb + yb * yb;
  // Circumcentre, then the shift to the centre point P. A degenerate
  // triangle (D = 0) gives non-finite values, stored as they come.
  const double ux = (rr * (yg - yb) + gg * (yb - yr) + bb * (yr - yg)) / twiceD;
  const double uy = (rr * (xb - xg) + gg * (xr - xb) + bb * (xg - xr)) / twiceD;
  const double px = ux - (a * c * (yb - yr) + a * b * (yr - yg) + b * c * (yg - yb)) / twiceD;
  const double py = uy + (a * c * (xb - xr) + a * b * (xr - xg) + b * c * (xg - xb)) / twiceD;

  lines.create(3, 2, CV_32F);
  for (int primary = kRedTarget; primary <= kBlueTarget; ++primary) {
    const double x = targets[primary].x;
    const double y = targets[primary].y;
    const double slope = (py - y) / (px - x);
    const double offset = y - slope * static_cast<double>(lineSlopeK[primary]) * x;
    lines.at<float>(primary, 0) = static_cast<float>(slope);
    lines.at<float>(primary, 1) = static_cast<float>(offset);
  }
}

}  // namespace aimhue
