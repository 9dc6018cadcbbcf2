// Percentiles, shares and uniformity of a correction.
#include "correction_statistics.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace aimhue {
namespace tool {
namespace {

constexpr float kNotAvailable = std::numeric_limits<float>::quiet_NaN();

std::size_t RankIndex(std::size_t count, double q) {
  const double rank = std::ceil(q * static_cast<double>(count));
  if (!(rank >= 1.0)) return 0;
  return std::min(count, static_cast<std::size_t>(rank)) - 1;
}

}  // namespace

float NearestRank(const std::vector<float>& sorted, double q) {
  return sorted[RankIndex(sorted.size(), q)];
}

Percentiles FinitePercentiles(std::vector<float>& values) {
  values.erase(std::remove_if(values.begin(), values.end(),
                              [](float value) { return !std::isfinite(value); }),
               values.end());
  Percentiles result;
  result.count = static_cast<int64_t>(values.size());
  if (values.empty()) {
    result.p50 = result.p95 = result.p99 = result.max = kNotAvailable;
    return result;
  }
  // A selection per rank instead of a sort: each narrows the range of the
  // next lower rank, so the whole costs a few passes over the values.
  const std::size_t n = values.size();
  const std::size_t i99 = RankIndex(n, 0.99);
  const std::size_t i95 = RankIndex(n, 0.95);
  const std::size_t i50 = RankIndex(n, 0.50);
  result.max = *std::max_element(values.begin(), values.end());
  std::nth_element(values.begin(), values.begin() + static_cast<std::ptrdiff_t>(i99), values.end());
  result.p99 = values[i99];
  std::nth_element(values.begin(), values.begin() + static_cast<std::ptrdiff_t>(i95),
                   values.begin() + static_cast<std::ptrdiff_t>(i99));
  result.p95 = values[i95];
  std::nth_element(values.begin(), values.begin() + static_cast<std::ptrdiff_t>(i50),
                   values.begin() + static_cast<std::ptrdiff_t>(i95));
  result.p50 = values[i50];
  return result;
}

Uniformity LuminanceUniformity(const std::vector<double>& values) {
  double low = std::numeric_limits<double>::infinity();
  double high = -std::numeric_limits<double>::infinity();
  double sum = 0.0;
  int64_t count = 0;
  for (const double value : values) {
    if (!std::isfinite(value)) continue;
    low = std::min(low, value);
    high = std::max(high, value);
    sum += value;
    ++count;
  }
  Uniformity result;
  if (count == 0) {
    result.mean = result.minOverMax = result.relativeStdDev = kNotAvailable;
    return result;
  }
  result.mean = sum / static_cast<double>(count);
  double squares = 0.0;  // about the mean, in a second pass: no cancellation
  for (const double value : values) {
    if (std::isfinite(value)) squares += (value - result.mean) * (value - result.mean);
  }
  result.minOverMax = high > 0.0 ? low / high : kNotAvailable;
  result.relativeStdDev = std::sqrt(squares / static_cast<double>(count)) / result.mean;
  return result;
}

std::vector<float> DifferenceChannel(const cv::Mat& differences, int channel) {
  std::vector<float> values;
  values.reserve(differences.total());
  for (int r = 0; r < differences.rows; ++r) {
    const cv::Vec4f* row = differences.ptr<cv::Vec4f>(r);
    for (int c = 0; c < differences.cols; ++c) {
      if (std::isfinite(row[c][channel])) values.push_back(row[c][channel]);
    }
  }
  return values;
}

void WhiteLuminances(const Correction& correction, const Meters& meters,
                     std::vector<double>* before, std::vector<double>* after) {
  const cv::Mat& coeff = correction.coeff;
  before->clear();
  after->clear();
  before->reserve(coeff.total());
  after->reserve(coeff.total());
  for (int r = 0; r < coeff.rows; ++r) {
    const float* c = coeff.ptr<float>(r);
    const uint8_t* flags = correction.flags.ptr<uint8_t>(r);
    const float* emitterY[3] = {meters[0][1].chroma.ptr<float>(r),
                                meters[1][1].chroma.ptr<float>(r),
                                meters[2][1].chroma.ptr<float>(r)};
    for (int col = 0; col < coeff.cols; ++col, c += 9) {
      if ((flags[col] & kCorrectionSkipped) != 0) continue;
      double own = 0.0;
      double corrected = 0.0;
      for (int k = 0; k < 3; ++k) {
        const double y = static_cast<double>(emitterY[k][col]);
        own += y;
        // Emitter k's drive for white is its row sum over the three inputs.
        corrected += y * (static_cast<double>(c[3 * k]) + static_cast<double>(c[3 * k + 1]) +
                          static_cast<double>(c[3 * k + 2]));
      }
      before->push_back(own);
      after->push_back(corrected);
    }
  }
}

CorrectionSummary SummariseCorrection(const Correction& correction, const Meters& meters) {
  CorrectionSummary summary;
  for (int channel = 0; channel < kDifferenceChannels; ++channel) {
    std::vector<float> values = DifferenceChannel(correction.deltaEBefore, channel);
    summary.before[channel] = FinitePercentiles(values);
    values = DifferenceChannel(correction.deltaEAfter, channel);
    if (channel == kDifferenceChannels - 1 && !values.empty()) {
      const auto within = [&values](float limit) {
        return static_cast<double>(std::count_if(values.begin(), values.end(),
                                                 [limit](float v) { return v <= limit; })) /
               static_cast<double>(values.size());
      };
      summary.shareWithin1 = within(1.0f);
      summary.shareWithin2 = within(2.0f);
    }
    summary.after[channel] = FinitePercentiles(values);
  }
  std::vector<double> before;
  std::vector<double> after;
  WhiteLuminances(correction, meters, &before, &after);
  summary.whiteBefore = LuminanceUniformity(before);
  summary.whiteAfter = LuminanceUniformity(after);
  for (int p = 0; p < 3; ++p) summary.whiteLuminance += static_cast<double>(correction.targets[p].L);
  return summary;
}

}  // namespace tool
}  // namespace aimhue
