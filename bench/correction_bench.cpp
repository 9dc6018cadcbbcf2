// CalcCorrection on a synthetic 3840 x 2160 screen, beside a baseline that
// streams the same nine input planes and writes every output plane the
// correction writes (coefficients, flags, gain, both difference planes)
// once, into buffers allocated in the same way. The ratio of the two
// per-LED times says how far the per-LED arithmetic stays from the memory
// traffic it cannot avoid.
#include <benchmark/benchmark.h>

#include <aimhue/correction.h>

#include <cstdio>
#include <map>
#include <memory>
#include <string>

#include "per_led_ratio.h"
#include "synthetic/synthetic_screen.h"

namespace {

using aimhue::bench::SetPerLed;
using aimhue::synthetic::ScreenMeters;

constexpr aimhue::TargetLxy kTargets[4] = {{250.0f, 0.675f, 0.305f},
                                           {750.0f, 0.18f, 0.70f},
                                           {65.0f, 0.145f, 0.062f},
                                           {1065.0f, 0.3127f, 0.329f}};

const ScreenMeters& MetersOf(int cols, int rows) {
  static std::map<std::pair<int, int>, std::unique_ptr<ScreenMeters>> screens;
  std::unique_ptr<ScreenMeters>& meters = screens[{cols, rows}];
  if (!meters) {
    aimhue::synthetic::ScreenOptions options;
    options.cols = cols;
    options.rows = rows;
    meters = std::make_unique<ScreenMeters>(aimhue::synthetic::GenerateMeters(options));
  }
  return *meters;
}

struct Triples {
  const aimhue::LedMeter* meters[3][3];
  explicit Triples(const ScreenMeters& screen) {
    for (int e = 0; e < 3; ++e)
      for (int c = 0; c < 3; ++c) meters[e][c] = &screen[e][c];
  }
};

void BM_CalcCorrection(benchmark::State& state) {
  const int cols = static_cast<int>(state.range(0));
  const int rows = static_cast<int>(state.range(1));
  const Triples in(MetersOf(cols, rows));
  aimhue::CorrectionSettings settings;
  settings.bits = static_cast<int>(state.range(2));
  for (auto _ : state) {
    aimhue::Correction result;
    const int status = aimhue::CalcCorrection(kTargets, in.meters[0], in.meters[1], in.meters[2],
                                              settings, &result);
    benchmark::DoNotOptimize(status);
    benchmark::DoNotOptimize(result.coeff.data);
    state.counters["dimmed"] = static_cast<double>(result.counts.dimmed);
  }
  SetPerLed(state, static_cast<int64_t>(cols) * rows);
}

// The memory baseline: every input word read once, row by row with the nine
// planes side by side, and every output word the correction produces
// written once into freshly allocated planes.
void BM_StreamPlanes(benchmark::State& state) {
  const int cols = static_cast<int>(state.range(0));
  const int rows = static_cast<int>(state.range(1));
  const Triples in(MetersOf(cols, rows));
  for (auto _ : state) {
    aimhue::Correction result;
    result.coeff.create(rows, cols, CV_32FC(9));
    result.flags.create(rows, cols, CV_8UC1);
    result.gain.create(rows, cols, CV_32FC1);
    result.deltaEBefore.create(rows, cols, CV_32FC4);
    result.deltaEAfter.create(rows, cols, CV_32FC4);
    for (int row = 0; row < rows; ++row) {
      const float* values[9];
      for (int i = 0; i < 9; ++i) values[i] = in.meters[i / 3][i % 3]->chroma.ptr<float>(row);
      float* coeff = result.coeff.ptr<float>(row);
      uint8_t* flags = result.flags.ptr<uint8_t>(row);
      float* gain = result.gain.ptr<float>(row);
      float* before = result.deltaEBefore.ptr<float>(row);
      float* after = result.deltaEAfter.ptr<float>(row);
      for (int col = 0; col < cols; ++col) {
        float sum = 0.0f;
        for (int i = 0; i < 9; ++i) {
          coeff[9 * col + i] = values[i][col];
          sum += values[i][col];
        }
        flags[col] = static_cast<uint8_t>(sum > 0.0f);
        gain[col] = sum;
        for (int i = 0; i < 4; ++i) before[4 * col + i] = after[4 * col + i] = values[i][col];
      }
    }
    benchmark::DoNotOptimize(result.coeff.data);
  }
  SetPerLed(state, static_cast<int64_t>(cols) * rows);
}

BENCHMARK(BM_StreamPlanes)->Args({3840, 2160})->Unit(benchmark::kMillisecond);
BENCHMARK(BM_CalcCorrection)
    ->ArgNames({"cols", "rows", "bits"})
    ->Args({3840, 2160, 0})
    ->Args({3840, 2160, 12})
    ->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
  return aimhue::bench::RunWithRatios(argc, argv, "BM_StreamPlanes", "BM_CalcCorrection");
}
