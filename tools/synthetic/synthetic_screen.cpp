#include "synthetic/synthetic_screen.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <vector>

namespace aimhue::synthetic {
namespace {

// Independent random streams: every random value is a hash of the seed, a
// stream and an index, so the screen does not depend on the order in which
// it is generated.
enum Stream : uint64_t {
  kLedX = 1,
  kLedY,
  kLedLuminance,
  kModuleX,
  kModuleY,
  kModuleLuminance,
  kOutlierPosition,
  kOutlierPrimary,
  kOutlierAngle,
  kDeadPosition,
};

uint64_t Mix(uint64_t z) {
  z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
  z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
  return z ^ (z >> 31);
}

class Random {
 public:
  Random(uint64_t seed, uint64_t primary, Stream stream)
      : key_(Mix(seed ^ Mix(primary * 0x9E3779B97F4A7C15ull + stream))) {}

  uint64_t Bits(uint64_t index) const { return Mix(key_ + index * 0x9E3779B97F4A7C15ull); }

  // An approximately standard-normal deviate: the sum of the four 16-bit
  // parts of one random word, centred and scaled to unit variance (a
  // bounded, bell-shaped distribution, ample for synthetic data and far
  // cheaper than exact normal draws).
  float Normal(uint64_t index) const {
    const uint64_t bits = Bits(index);
    const uint64_t sum = (bits & 0xFFFF) + ((bits >> 16) & 0xFFFF) + ((bits >> 32) & 0xFFFF) +
                         (bits >> 48);
    constexpr float kCentre = 2.0f * 65535.0f;
    constexpr float kScale = 37837.23f;  // 65536 x sqrt(4 / 12)
    return (static_cast<float>(sum) - kCentre) / kScale;
  }

  // Uniform in [0, 1).
  double Uniform(uint64_t index) const {
    return static_cast<double>(Bits(index) >> 11) * (1.0 / 9007199254740992.0);
  }

 private:
  uint64_t key_;
};

bool Valid(const ScreenOptions& options) {
  return options.rows >= 1 && options.cols >= 1 && options.moduleRows >= 1 &&
         options.moduleCols >= 1;
}

void FillPrimary(const ScreenOptions& options, int primary, PrimaryPlanes& planes) {
  const PrimaryOptions& typical = options.primaries[primary];
  const Random ledX(options.seed, primary, kLedX);
  const Random ledY(options.seed, primary, kLedY);
  const Random ledLuminance(options.seed, primary, kLedLuminance);
  const Random moduleX(options.seed, primary, kModuleX);
  const Random moduleY(options.seed, primary, kModuleY);
  const Random moduleLuminance(options.seed, primary, kModuleLuminance);
  const int moduleColumns = (options.cols + options.moduleCols - 1) / options.moduleCols;
  const int moduleRows = (options.rows + options.moduleRows - 1) / options.moduleRows;
  const float minimumLuminance = 0.1f * typical.luminance;
  // Each panel's offsets, drawn once.
  const size_t modules = static_cast<size_t>(moduleRows) * moduleColumns;
  std::vector<float> offsetX(modules);
  std::vector<float> offsetY(modules);
  std::vector<float> offsetLuminance(modules);
  for (size_t module = 0; module < modules; ++module) {
    offsetX[module] = options.moduleSpread * moduleX.Normal(module);
    offsetY[module] = options.moduleSpread * moduleY.Normal(module);
    offsetLuminance[module] = options.moduleLuminanceSpread * moduleLuminance.Normal(module);
  }

  for (int row = 0; row < options.rows; ++row) {
    float* luminance = planes.luminance.ptr<float>(row);
    float* x = planes.x.ptr<float>(row);
    float* y = planes.y.ptr<float>(row);
    const uint64_t moduleRow = static_cast<uint64_t>(row / options.moduleRows);
    for (int col = 0; col < options.cols; ++col) {
      const uint64_t module = moduleRow * moduleColumns + col / options.moduleCols;
      const uint64_t led = static_cast<uint64_t>(row) * options.cols + col;
      x[col] = typical.x + offsetX[module] + options.ledSpread * ledX.Normal(led);
      y[col] = typical.y + offsetY[module] + options.ledSpread * ledY.Normal(led);
      const float factor =
          1.0f + offsetLuminance[module] + options.ledLuminanceSpread * ledLuminance.Normal(led);
      luminance[col] = std::max(minimumLuminance, typical.luminance * factor);
    }
  }
}

}  // namespace

ScreenPlanes GeneratePlanes(const ScreenOptions& options) {
  ScreenPlanes planes;
  if (!Valid(options)) {
    for (PrimaryPlanes& primary : planes) {
      primary = PrimaryPlanes{cv::Mat(0, 0, CV_32FC1), cv::Mat(0, 0, CV_32FC1),
                              cv::Mat(0, 0, CV_32FC1)};
    }
    return planes;
  }
  for (int primary = 0; primary < 3; ++primary) {
    PrimaryPlanes& out = planes[primary];
    out.luminance.create(options.rows, options.cols, CV_32FC1);
    out.x.create(options.rows, options.cols, CV_32FC1);
    out.y.create(options.rows, options.cols, CV_32FC1);
    FillPrimary(options, primary, out);
  }

  const uint64_t leds = static_cast<uint64_t>(options.rows) * options.cols;
  const Random outlierPosition(options.seed, 0, kOutlierPosition);
  const Random outlierPrimary(options.seed, 0, kOutlierPrimary);
  const Random outlierAngle(options.seed, 0, kOutlierAngle);
  constexpr double kTwoPi = 6.283185307179586;
  for (int outlier = 0; outlier < options.outlierCount; ++outlier) {
    const uint64_t led = outlierPosition.Bits(outlier) % leds;
    PrimaryPlanes& primary = planes[outlierPrimary.Bits(outlier) % 3];
    const double angle = kTwoPi * outlierAngle.Uniform(outlier);
    const int row = static_cast<int>(led / options.cols);
    const int col = static_cast<int>(led % options.cols);
    primary.x.at<float>(row, col) += options.outlierDistance * static_cast<float>(std::cos(angle));
    primary.y.at<float>(row, col) += options.outlierDistance * static_cast<float>(std::sin(angle));
  }

  const Random deadPosition(options.seed, 0, kDeadPosition);
  const float nan = std::numeric_limits<float>::quiet_NaN();
  for (int dead = 0; dead < options.deadCount; ++dead) {
    const uint64_t led = deadPosition.Bits(dead) % leds;
    const int row = static_cast<int>(led / options.cols);
    const int col = static_cast<int>(led % options.cols);
    for (PrimaryPlanes& primary : planes) {
      primary.luminance.at<float>(row, col) = 0.0f;
      primary.x.at<float>(row, col) = nan;
      primary.y.at<float>(row, col) = nan;
    }
  }
  return planes;
}

ScreenMeters MetersFromPlanes(const ScreenOptions& options, const ScreenPlanes& planes) {
  constexpr uint32_t kColors[3] = {kRedColor, kGreenColor, kBlueColor};
  constexpr uint32_t kTypes[3] = {CIE_X, CIE_Y, CIE_Z};
  ScreenMeters meters;
  for (int primary = 0; primary < 3; ++primary) {
    const PrimaryPlanes& source = planes[primary];
    const int rows = source.luminance.rows;
    const int cols = source.luminance.cols;
    cv::Mat tristimulusX(rows, cols, CV_32FC1);
    cv::Mat tristimulusZ(rows, cols, CV_32FC1);
    for (int row = 0; row < rows; ++row) {
      const float* luminance = source.luminance.ptr<float>(row);
      const float* x = source.x.ptr<float>(row);
      const float* y = source.y.ptr<float>(row);
      float* outX = tristimulusX.ptr<float>(row);
      float* outZ = tristimulusZ.ptr<float>(row);
      for (int col = 0; col < cols; ++col) {
        const bool dead = luminance[col] == 0.0f;
        outX[col] = dead ? 0.0f : x[col] / y[col] * luminance[col];
        outZ[col] = dead ? 0.0f : (1.0f - x[col] - y[col]) / y[col] * luminance[col];
      }
    }
    const cv::Mat chroma[3] = {tristimulusX, source.luminance, tristimulusZ};
    for (int axis = 0; axis < 3; ++axis) {
      LedMeter& meter = meters[primary][axis];
      meter.color = kColors[primary];
      meter.type = kTypes[axis];
      meter.chroma = chroma[axis];
      meter.state = cv::Mat::zeros(rows, cols, CV_8UC1);
      // The records are valid by construction, so they are stored directly
      // rather than through the logging setters.
      meter.partition = std::make_unique<Partition>(Partition{0, 0, cols, rows, cols, rows});
      meter.led_panel = std::make_unique<LedPanel>(
          LedPanel{0, 0, 0, options.moduleCols, options.moduleRows, options.pixelPitch});
    }
  }
  return meters;
}

ScreenMeters GenerateMeters(const ScreenOptions& options) {
  return MetersFromPlanes(options, GeneratePlanes(options));
}

}  // namespace aimhue::synthetic
