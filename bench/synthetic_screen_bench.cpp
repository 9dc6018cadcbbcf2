// The synthetic screen generator on 1920 x 1080 and 3840 x 2160 screens,
// beside the baseline of filling the same planes (three values per LED and
// primary) with std::normal_distribution draws.
#include <benchmark/benchmark.h>

#include <random>

#include "synthetic/synthetic_screen.h"

namespace aimhue::synthetic {
namespace {

ScreenOptions Screen(const benchmark::State& state) {
  ScreenOptions options;
  options.cols = static_cast<int>(state.range(0));
  options.rows = static_cast<int>(state.range(1));
  return options;
}

void BM_GeneratePlanes(benchmark::State& state) {
  const ScreenOptions options = Screen(state);
  for (auto _ : state) {
    ScreenPlanes planes = GeneratePlanes(options);
    benchmark::DoNotOptimize(planes[2].y.data);
  }
}

void BM_GenerateMeters(benchmark::State& state) {
  const ScreenOptions options = Screen(state);
  for (auto _ : state) {
    ScreenMeters meters = GenerateMeters(options);
    benchmark::DoNotOptimize(meters[2][2].chroma.data);
  }
}

void BM_NormalDistributionPlanes(benchmark::State& state) {
  const ScreenOptions options = Screen(state);
  std::mt19937_64 random(options.seed);
  std::normal_distribution<float> normal(0.0f, 1.0f);
  for (auto _ : state) {
    for (int plane = 0; plane < 9; ++plane) {
      cv::Mat values(options.rows, options.cols, CV_32FC1);
      for (int i = 0; i < options.rows * options.cols; ++i) values.at<float>(i) = normal(random);
      benchmark::DoNotOptimize(values.data);
    }
  }
}

#define SCREEN_SIZES Args({1920, 1080})->Args({3840, 2160})->Unit(benchmark::kMillisecond)
BENCHMARK(BM_GeneratePlanes)->SCREEN_SIZES;
BENCHMARK(BM_GenerateMeters)->SCREEN_SIZES;
BENCHMARK(BM_NormalDistributionPlanes)->SCREEN_SIZES;

}  // namespace
}  // namespace aimhue::synthetic

BENCHMARK_MAIN();
