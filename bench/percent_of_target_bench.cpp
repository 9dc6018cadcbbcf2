// The coverage count on full screens, beside a baseline that only streams
// the same six chromaticity planes through memory. The count reads exactly
// those bytes once, so the ratio of the two per-LED times says how far the
// arithmetic stays from the memory traffic.
#include <benchmark/benchmark.h>

#include <array>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>

#include <opencv2/core.hpp>

#include "engine/percent_of_target.h"
#include "per_led_ratio.h"
#include "meter/chroma_lxy.h"

namespace {

using aimhue::bench::SetPerLed;
using aimhue::ChromaLxy;

// A screen of LEDs whose red, green and blue chromaticities scatter a few
// thousandths around typical LED primaries, and targets a little inside.
struct Screen {
  ChromaLxy red;
  ChromaLxy green;
  ChromaLxy blue;
  std::array<float, 12> targets;
};

ChromaLxy ScatteredSet(int rows, int cols, float x, float y, cv::RNG& random) {
  ChromaLxy set;
  set.L = cv::Mat(rows, cols, CV_32F, cv::Scalar(100.0f));
  set.x.create(rows, cols, CV_32F);
  set.y.create(rows, cols, CV_32F);
  random.fill(set.x, cv::RNG::NORMAL, x, 0.003);
  random.fill(set.y, cv::RNG::NORMAL, y, 0.003);
  return set;
}

const Screen& ScreenOf(int cols, int rows) {
  static std::map<std::pair<int, int>, std::unique_ptr<Screen>> screens;
  std::unique_ptr<Screen>& screen = screens[{cols, rows}];
  if (!screen) {
    cv::RNG random(static_cast<uint64_t>(cols) * rows);
    screen = std::make_unique<Screen>();
    screen->red = ScatteredSet(rows, cols, 0.69f, 0.30f, random);
    screen->green = ScatteredSet(rows, cols, 0.17f, 0.72f, random);
    screen->blue = ScatteredSet(rows, cols, 0.135f, 0.05f, random);
    screen->targets = {100.0f, 0.675f, 0.305f, 100.0f, 0.18f, 0.70f,
                       100.0f, 0.145f, 0.062f, 300.0f, 0.3127f, 0.329f};
  }
  return *screen;
}

void BM_PercentOfTarget(benchmark::State& state) {
  const int cols = static_cast<int>(state.range(0));
  const int rows = static_cast<int>(state.range(1));
  const Screen& screen = ScreenOf(cols, rows);
  aimhue::Coverage coverage{};
  for (auto _ : state) {
    const int status = aimhue::PercentOfTarget(&screen.red, &screen.green, &screen.blue,
                                               screen.targets.data(), coverage, cv::Mat());
    benchmark::DoNotOptimize(status);
    benchmark::DoNotOptimize(coverage);
  }
  state.counters["coverage_all"] = coverage.all;
  SetPerLed(state, static_cast<int64_t>(cols) * rows);
}

// The memory baseline: a sum over every 32-bit word of the six x and y
// planes, in the order the count reads them (row by row, the six planes
// side by side).
void BM_StreamPlanes(benchmark::State& state) {
  const int cols = static_cast<int>(state.range(0));
  const int rows = static_cast<int>(state.range(1));
  const Screen& screen = ScreenOf(cols, rows);
  const cv::Mat* planes[6] = {&screen.red.x,   &screen.red.y,  &screen.green.x,
                              &screen.green.y, &screen.blue.x, &screen.blue.y};
  for (auto _ : state) {
    uint32_t sum = 0;
    for (int row = 0; row < rows; ++row) {
      const uint32_t* words[6];
      for (int plane = 0; plane < 6; ++plane) words[plane] = planes[plane]->ptr<uint32_t>(row);
      for (int col = 0; col < cols; ++col) {
        sum += words[0][col] + words[1][col] + words[2][col] + words[3][col] + words[4][col] +
               words[5][col];
      }
    }
    benchmark::DoNotOptimize(sum);
  }
  SetPerLed(state, static_cast<int64_t>(cols) * rows);
}

BENCHMARK(BM_StreamPlanes)->Args({1920, 1080})->Args({3840, 2160})->Unit(benchmark::kMillisecond);
BENCHMARK(BM_PercentOfTarget)->Args({1920, 1080})->Args({3840, 2160})->Unit(benchmark::kMillisecond);

// Each instruction set the count is compiled for, on the 1920 x 1080 screen.
void BM_CountKernel(benchmark::State& state) {
  const auto kernel = static_cast<aimhue::CountKernel>(state.range(0));
  if (!aimhue::CountKernelAvailable(kernel)) {
    state.SkipWithError("not available on this processor");
    return;
  }
  const Screen& screen = ScreenOf(1920, 1080);
  aimhue::Coverage coverage{};
  for (auto _ : state) {
    const int status = aimhue::PercentOfTargetOn(kernel, &screen.red, &screen.green, &screen.blue,
                                                 screen.targets.data(), coverage, cv::Mat());
    benchmark::DoNotOptimize(status);
    benchmark::DoNotOptimize(coverage);
  }
  SetPerLed(state, 1920 * 1080);
}

BENCHMARK(BM_CountKernel)
    ->ArgName("kernel")
    ->Arg(static_cast<int>(aimhue::CountKernel::kPortable))
    ->Arg(static_cast<int>(aimhue::CountKernel::kAvx2))
    ->Arg(static_cast<int>(aimhue::CountKernel::kAvx512))
    ->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
  return aimhue::bench::RunWithRatios(argc, argv, "BM_StreamPlanes", "BM_PercentOfTarget");
}
