// Per-LED correction of a screen: checks, then two passes over the planes.
//
// The first pass runs the skip tests and the solve of every LED, keeps each
// LED's clipped coefficients in its own result slots and its largest row sum
// in a compact vector; the quantile and the "before" medians are selections
// over that vector. The second pass reads the coefficients back, scales,
// dims, rounds, and predicts.
#include <aimhue/correction.h>

#include <aimhue/colorimetry.h>
#include <aimhue/led_meter.h>
#include <aimhue/plume_log.h>
#include <aimhue/status.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <vector>

#include "common/exception_guard.h"
#include "common/float_plane.h"
#include "engine/correction_led.h"

namespace aimhue {
namespace {

constexpr char kWho[] = "CalcCorrection";
constexpr int kMinBits = 8;
constexpr int kMaxBits = 16;
constexpr int kCoeffChannels = 9;
constexpr int kDeltaEChannels = 4;  // red, green, blue, white

int Refuse(int status, const char* text) {
  PlumeLogError("%s--Error :: %s", kWho, text);
  return status;
}

// The nine meters in measured-matrix order: meters[3 * row + column] is
// component `row` (X, Y, Z) of emitter `column` (red, green, blue).
struct MeterGrid {
  const LedMeter* meters[9];
};

int CheckMeters(const TargetLxy targets[4], const LedMeter* const* triples[3],
                const Correction* out, MeterGrid& grid) {
  if (targets == nullptr || out == nullptr) return Refuse(kNullInput, "input is nullptr");
  for (int emitter = 0; emitter < 3; ++emitter) {
    if (triples[emitter] == nullptr) return Refuse(kNullInput, "meter triple is nullptr");
    for (int component = 0; component < 3; ++component) {
      const LedMeter* meter = triples[emitter][component];
      if (meter == nullptr) return Refuse(kNullInput, "meter is nullptr");
      grid.meters[3 * component + emitter] = meter;
    }
  }
  for (const LedMeter* meter : grid.meters) {
    if (meter->chroma.empty()) return Refuse(kEmptyPlane, "chroma plane is empty");
  }
  const cv::Size size = grid.meters[0]->chroma.size();
  for (const LedMeter* meter : grid.meters) {
    if (meter->chroma.dims != 2 || meter->chroma.type() != CV_32FC1 ||
        meter->chroma.size() != size) {
      return Refuse(kOutOfRange, "chroma planes differ in size or are not 32-bit float");
    }
    if (!meter->state.empty() &&
        (meter->state.dims != 2 || meter->state.type() != CV_8UC1 || meter->state.size() != size)) {
      return Refuse(kOutOfRange, "state plane differs from chroma in size or is not 8-bit");
    }
  }
  return kOk;
}

int CheckTargets(const TargetLxy targets[4]) {
  for (int j = 0; j < 3; ++j) {
    const TargetLxy& target = targets[j];
    if (!std::isfinite(target.L) || !std::isfinite(target.x) || !std::isfinite(target.y) ||
        !(target.L > 0.0f) || !(target.y > 0.0f)) {
      return Refuse(kOutOfRange, "target needs finite values, L > 0 and y > 0");
    }
  }
  if (IsSingular(TargetMatrix(targets))) {
    return Refuse(kOutOfRange, "target primaries are linearly dependent");
  }
  return kOk;
}

int CheckSettings(const CorrectionSettings& settings) {
  // Written so that a NaN quantile fails.
  if (!(settings.quantile > 0.0f && settings.quantile <= 1.0f)) {
    return Refuse(kOutOfRange, "quantile not in (0, 1]");
  }
  if (settings.mode != CorrectionMode::Chroma && settings.mode != CorrectionMode::Brightness) {
    return Refuse(kOutOfRange, "unknown correction mode");
  }
  if (settings.bits != 0 && (settings.bits < kMinBits || settings.bits > kMaxBits)) {
    return Refuse(kOutOfRange, "bits not 0 or 8..16");
  }
  return kOk;
}

// Row pointers of the nine value planes and the non-empty state planes.
struct RowInputs {
  const float* values[9];
  const uint8_t* states[9];
  int stateCount = 0;

  RowInputs(const MeterGrid& grid, int row) {
    for (int i = 0; i < 9; ++i) {
      values[i] = grid.meters[i]->chroma.ptr<float>(row);
      if (!grid.meters[i]->state.empty())
        states[stateCount++] = grid.meters[i]->state.ptr<uint8_t>(row);
    }
  }

  Matrix3 Measured(int col) const {
    Matrix3 m;
    for (int i = 0; i < 9; ++i) m[i] = static_cast<double>(values[i][col]);
    return m;
  }

  bool StateDead(int col) const {
    for (int i = 0; i < stateCount; ++i) {
      if ((states[i][col] & 1u) != 0) return true;
    }
    return false;
  }
};

// The median of `values` (reordered); an even count gives the mean of the
// two middle values.
double Median(std::vector<double>& values) {
  const size_t half = values.size() / 2;
  std::nth_element(values.begin(), values.begin() + half, values.end());
  const double upper = values[half];
  if (values.size() % 2 == 1) return upper;
  const double lower = *std::max_element(values.begin(), values.begin() + half);
  return (lower + upper) / 2.0;
}

// The component-wise medians over the LEDs not skipped: of each emitter's
// X, Y, Z (columns 0..2) and of the LEDs' whites M (1, 1, 1) (column 3).
// `scratch` holds one double per LED not skipped.
void Medians(const MeterGrid& grid, const cv::Mat& flags, std::vector<double>& scratch,
             cv::Vec3d medians[4]) {
  for (int column = 0; column < 4; ++column) {
    for (int component = 0; component < 3; ++component) {
      scratch.clear();
      for (int row = 0; row < flags.rows; ++row) {
        const RowInputs in(grid, row);
        const uint8_t* flagRow = flags.ptr<uint8_t>(row);
        const float* const* rowValues = &in.values[3 * component];
        for (int col = 0; col < flags.cols; ++col) {
          if ((flagRow[col] & kCorrectionSkipped) != 0) continue;
          scratch.push_back(column < 3 ? static_cast<double>(rowValues[column][col])
                                       : static_cast<double>(rowValues[0][col]) +
                                             static_cast<double>(rowValues[1][col]) +
                                             static_cast<double>(rowValues[2][col]));
        }
      }
      medians[column][component] = Median(scratch);
    }
  }
}

cv::Vec3d Column(const Matrix3& m, int column) { return {m[column], m[3 + column], m[6 + column]}; }

cv::Vec3d RowSums(const Matrix3& m) {
  return {m[0] + m[1] + m[2], m[3] + m[4] + m[5], m[6] + m[7] + m[8]};
}

// The CIELAB references of one side of the comparison: a white and the
// Lab of red, green, blue and white relative to it.
struct LabReference {
  cv::Vec3d white;
  cv::Vec3d lab[4];

  LabReference(const cv::Vec3d primaries[3], const cv::Vec3d& referenceWhite)
      : white(referenceWhite) {
    for (int j = 0; j < 3; ++j) lab[j] = XyzToLab(primaries[j], white);
    lab[3] = XyzToLab(white, white);
  }

  // The four differences of an LED whose primaries are the columns of `m`.
  void Differences(const Matrix3& m, float* out) const {
    for (int j = 0; j < 3; ++j) {
      out[j] = static_cast<float>(CieDe2000(XyzToLab(Column(m, j), white), lab[j]));
    }
    out[3] = static_cast<float>(CieDe2000(XyzToLab(RowSums(m), white), lab[3]));
  }
};

Matrix3 Product(const Matrix3& a, const Matrix3& b) {
  Matrix3 p;
  for (int r = 0; r < 3; ++r) {
    for (int c = 0; c < 3; ++c) {
      p[3 * r + c] = a[3 * r] * b[c] + a[3 * r + 1] * b[3 + c] + a[3 * r + 2] * b[6 + c];
    }
  }
  return p;
}

// The result planes of one row.
struct RowOutputs {
  uint8_t* flags;
  float* coeff;
  float* gain;
  float* before;
  float* after;

  RowOutputs(Correction& result, int row)
      : flags(result.flags.ptr<uint8_t>(row)),
        coeff(result.coeff.ptr<float>(row)),
        gain(result.gain.ptr<float>(row)),
        before(result.deltaEBefore.ptr<float>(row)),
        after(result.deltaEAfter.ptr<float>(row)) {}

  // Between the passes an LED's unscaled coefficients wait in its own result
  // slots: its coefficients (36 bytes), both differences (16 + 16) and its
  // gain (4) are 72 bytes, exactly nine doubles. So they are kept exactly,
  // without a working copy of the screen; the second pass takes them back
  // before it writes that LED's results.
  void Stash(int col, const Matrix3& c) {
    const char* bytes = reinterpret_cast<const char*>(c.data());
    std::memcpy(coeff + kCoeffChannels * col, bytes, 36);
    std::memcpy(before + kDeltaEChannels * col, bytes + 36, 16);
    std::memcpy(after + kDeltaEChannels * col, bytes + 52, 16);
    std::memcpy(gain + col, bytes + 68, 4);
  }

  void Unstash(int col, Matrix3& c) const {
    char* bytes = reinterpret_cast<char*>(c.data());
    std::memcpy(bytes, coeff + kCoeffChannels * col, 36);
    std::memcpy(bytes + 36, before + kDeltaEChannels * col, 16);
    std::memcpy(bytes + 52, after + kDeltaEChannels * col, 16);
    std::memcpy(bytes + 68, gain + col, 4);
  }
};
static_assert(sizeof(Matrix3) == 4 * (kCoeffChannels + 2 * kDeltaEChannels + 1),
              "an LED's result slots hold its nine coefficients in double");

// Steps 1 to 3: the flags of every LED, its clipped coefficients (stashed),
// and the largest row sums of the LEDs not skipped, in row-major order.
void SolvePass(const MeterGrid& grid, const Matrix3& t, CorrectionMode mode, Correction& result,
               std::vector<double>& rowSums) {
  Matrix3 c;
  for (int row = 0; row < result.flags.rows; ++row) {
    const RowInputs in(grid, row);
    RowOutputs out(result, row);
    for (int col = 0; col < result.flags.cols; ++col) {
      const Matrix3 m = in.Measured(col);
      uint8_t flag = in.StateDead(col) ? uint8_t{kCorrectionDead} : SkipFlag(m);
      if (flag == 0) {
        double rowSumMax = 0.0;
        flag = SolveLed(m, t, mode, c, rowSumMax);
        rowSums.push_back(rowSumMax);
        out.Stash(col, c);
      }
      out.flags[col] = flag;
    }
  }
}

// The scale of step 4 and the row sum above which an LED is dimmed. The
// threshold is max(1, quantile value) rather than the test k r > 1, so that
// the LED at the quantile's rank is never dimmed by rounding.
struct LuminanceScale {
  double k;
  double dimAbove;
};

LuminanceScale QuantileScale(std::vector<double>& rowSums, float quantile) {
  const double n = static_cast<double>(rowSums.size());
  const size_t rank = static_cast<size_t>(std::ceil(static_cast<double>(quantile) * n)) - 1;
  std::nth_element(rowSums.begin(), rowSums.begin() + static_cast<std::ptrdiff_t>(rank),
                   rowSums.end());
  const double value = rowSums[rank];
  return {std::min(1.0, 1.0 / value), std::max(1.0, value)};
}

struct PassSettings {
  Matrix3 t;
  CorrectionMode mode;
  LuminanceScale scale;
  int32_t fullScale;  // 0 for float coefficients
};

// Steps 4 to 8 for every LED: coefficients, gain, flags and differences.
void ApplyPass(const MeterGrid& grid, const PassSettings& pass, const LabReference& before,
               const LabReference& after, Correction& result) {
  constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
  const double full = pass.fullScale;
  Matrix3 c;
  Matrix3 stored;
  std::array<int32_t, 9> levels;
  for (int row = 0; row < result.flags.rows; ++row) {
    const RowInputs in(grid, row);
    RowOutputs out(result, row);
    for (int col = 0; col < result.flags.cols; ++col) {
      float* coeff = out.coeff + kCoeffChannels * col;
      float* deltaBefore = out.before + kDeltaEChannels * col;
      float* deltaAfter = out.after + kDeltaEChannels * col;
      uint8_t flag = out.flags[col];
      if ((flag & kCorrectionSkipped) != 0) {
        std::fill(coeff, coeff + kCoeffChannels, 0.0f);
        out.gain[col] = 0.0f;
        std::fill(deltaBefore, deltaBefore + kDeltaEChannels, kNaN);
        std::fill(deltaAfter, deltaAfter + kDeltaEChannels, kNaN);
        continue;
      }
      const Matrix3 m = in.Measured(col);
      out.Unstash(col, c);
      const double rowSumMax = LargestRowSum(c);
      const bool dimmed = rowSumMax > pass.scale.dimAbove;
      const double scaledRowSum = pass.scale.k * rowSumMax;
      for (double& value : c) {
        value *= pass.scale.k;
        if (dimmed) value /= scaledRowSum;
      }
      out.gain[col] = dimmed ? static_cast<float>(1.0 / scaledRowSum) : 1.0f;
      if (dimmed) flag |= kCorrectionDimmed;
      if (pass.fullScale == 0) {
        for (int i = 0; i < 9; ++i) coeff[i] = static_cast<float>(c[i]);
      } else {
        if (QuantiseRows(c, pass.fullScale, levels)) flag |= kCorrectionRoundingRepaired;
        for (int i = 0; i < 9; ++i) coeff[i] = static_cast<float>(levels[i] / full);
      }
      for (int i = 0; i < 9; ++i) stored[i] = static_cast<double>(coeff[i]);
      out.flags[col] = flag;
      before.Differences(m, deltaBefore);
      after.Differences(Product(m, stored), deltaAfter);
    }
  }
}

int Compute(const TargetLxy targets[4], const MeterGrid& grid, const CorrectionSettings& settings,
            Correction* out) {
  const cv::Size size = grid.meters[0]->chroma.size();
  Correction result;
  result.settings = settings;
  result.flags = NewPlane(size.height, size.width, CV_8UC1);
  result.coeff = NewPlane(size.height, size.width, CV_32FC(kCoeffChannels));
  result.gain = NewPlane(size.height, size.width, CV_32FC1);
  result.deltaEBefore = NewPlane(size.height, size.width, CV_32FC(kDeltaEChannels));
  result.deltaEAfter = NewPlane(size.height, size.width, CV_32FC(kDeltaEChannels));

  PassSettings pass;
  pass.t = TargetMatrix(targets);
  pass.mode = settings.mode;
  pass.fullScale = settings.bits == 0 ? 0 : (int32_t{1} << settings.bits) - 1;

  std::vector<double> scratch;
  scratch.reserve(static_cast<size_t>(size.area()));
  SolvePass(grid, pass.t, settings.mode, result, scratch);
  if (scratch.empty())
    return Refuse(kEmptyInput, "no LED left to correct: all dead, not finite or singular");
  pass.scale = QuantileScale(scratch, settings.quantile);

  cv::Vec3d medians[4];
  Medians(grid, result.flags, scratch, medians);
  std::vector<double>().swap(scratch);
  const LabReference before(medians, medians[3]);

  cv::Vec3d scaledTargets[3];
  for (int j = 0; j < 3; ++j) scaledTargets[j] = Column(pass.t, j) * pass.scale.k;
  const LabReference after(scaledTargets, scaledTargets[0] + scaledTargets[1] + scaledTargets[2]);

  ApplyPass(grid, pass, before, after, result);

  result.scale = static_cast<float>(pass.scale.k);
  for (int j = 0; j < 4; ++j) {
    result.targets[j] = targets[j];
    result.targets[j].L = static_cast<float>(static_cast<double>(targets[j].L) * pass.scale.k);
  }
  result.counts = CountCorrectionFlags(result.flags);
  *out = std::move(result);
  return kOk;
}

}  // namespace

int CalcCorrection(const TargetLxy targets[4], const LedMeter* const red[3],
                   const LedMeter* const green[3], const LedMeter* const blue[3],
                   const CorrectionSettings& settings, Correction* out) {
  PlumeLogInfo(kWho);
  const LedMeter* const* triples[3] = {red, green, blue};
  MeterGrid grid;
  int status = CheckMeters(targets, triples, out, grid);
  if (status == kOk) status = CheckTargets(targets);
  if (status == kOk) status = CheckSettings(settings);
  if (status != kOk) return status;
  return GuardExceptions(kWho, [&] { return Compute(targets, grid, settings, out); });
}

}  // namespace aimhue
