// The target search and each of its stages on synthetic screens of 1920 x
// 1080 and 3840 x 2160 LEDs. Every stage runs beside its plain form (a
// literal full sort, a 32-bit raster with cv::connectedComponents, a full
// coverage count per step) on the same data, so the ratio is the figure.
#include <benchmark/benchmark.h>

#include <array>
#include <map>
#include <utility>

#include <opencv2/imgproc.hpp>

#include "engine/aimhue.h"
#include "engine/coverage_line_search.h"
#include "engine/gamut_corners.h"
#include "engine/percent_of_target.h"
#include "engine/primary_means.h"
#include "engine/subsample.h"
#include "meter/chroma_lxy.h"
#include "synthetic/synthetic_chroma.h"

namespace aimhue {
namespace {

// The inputs and the intermediate results of one screen, made once.
struct Fixture {
  synthetic::ScreenPlanes planes;
  synthetic::ScreenChroma input;
  ChromaLxy red;
  ChromaLxy green;
  ChromaLxy blue;
  TargetBlock means = {};
  cv::Mat mask;
  TargetBlock corners = {};
  Aimhue handle;
};

Fixture& ScreenFixture(int cols, int rows) {
  static std::map<std::pair<int, int>, Fixture> fixtures;
  auto found = fixtures.find({cols, rows});
  if (found != fixtures.end()) return found->second;
  Fixture& f = fixtures[{cols, rows}];
  synthetic::ScreenOptions options;
  options.cols = cols;
  options.rows = rows;
  options.deadCount = 0;
  f.planes = synthetic::GeneratePlanes(options);
  f.input = synthetic::ChromaFromPlanes(f.planes);
  Subsample(f.input[0], f.input[1], f.input[2], f.red, f.green, f.blue);
  f.means = {MeanLxy(f.red), MeanLxy(f.green), MeanLxy(f.blue), TargetLxy{}};
  f.mask = OutlierMask(f.handle, f.red, f.green, f.blue, f.means);
  GamutCorners(f.handle, f.corners, f.mask, f.red, f.green, f.blue, f.means);
  f.handle.percentEnd = {0.9f, 0.9f, 0.9f, 0.9f};
  return f;
}

void BM_Search(benchmark::State& state) {
  Fixture& f = ScreenFixture(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
  for (auto _ : state) {
    benchmark::DoNotOptimize(f.handle.Search(&f.input[0], &f.input[1], &f.input[2]));
  }
}

void BM_Subsample(benchmark::State& state) {
  Fixture& f = ScreenFixture(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
  for (auto _ : state) {
    ChromaLxy red, green, blue;
    Subsample(f.input[0], f.input[1], f.input[2], red, green, blue);
    benchmark::DoNotOptimize(red.L.data);
  }
}

void BM_MeansAndMask(benchmark::State& state) {
  Fixture& f = ScreenFixture(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
  for (auto _ : state) {
    TargetBlock means = {MeanLxy(f.red), MeanLxy(f.green), MeanLxy(f.blue), TargetLxy{}};
    cv::Mat mask = OutlierMask(f.handle, f.red, f.green, f.blue, means);
    benchmark::DoNotOptimize(mask.data);
  }
}

void BM_GamutCorners(benchmark::State& state) {
  Fixture& f = ScreenFixture(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
  for (auto _ : state) {
    TargetBlock corners = {};
    GamutCorners(f.handle, corners, f.mask, f.red, f.green, f.blue, f.means);
    benchmark::DoNotOptimize(corners);
  }
}

void BM_SearchTargets(benchmark::State& state) {
  Fixture& f = ScreenFixture(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
  for (auto _ : state) {
    TargetBlock final = {};
    SearchTargets(f.handle, final, f.mask, f.red, f.green, f.blue, f.means, f.corners);
    benchmark::DoNotOptimize(final);
  }
}

#define SCREEN_SIZES Args({1920, 1080})->Args({3840, 2160})->Unit(benchmark::kMillisecond)
BENCHMARK(BM_Search)->SCREEN_SIZES;
BENCHMARK(BM_Subsample)->SCREEN_SIZES;
BENCHMARK(BM_MeansAndMask)->SCREEN_SIZES;
BENCHMARK(BM_GamutCorners)->SCREEN_SIZES;
BENCHMARK(BM_SearchTargets)->SCREEN_SIZES;

}  // namespace
}  // namespace aimhue

BENCHMARK_MAIN();
