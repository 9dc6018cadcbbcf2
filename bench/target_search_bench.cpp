// The target search and each of its stages on synthetic screens of 1920 x
// 1080 and 3840 x 2160 LEDs. The search and the corner stage also run beside
// their form that counts the LEDs' edges over the whole raster. Every stage
// runs beside its literal form on the same data (a full sort for the
// fences, a 32-bit raster drawn cell by cell with cv::connectedComponents, a
// full coverage count per step; for the subsampling, one plain copy of the
// input planes), so the ratio is the figure that holds on a busy machine.
#include <benchmark/benchmark.h>

#include <array>
#include <cstdlib>
#include <cstring>
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
#include "tests/support/literal_search_stages.h"

namespace aimhue {
namespace {

// The inputs and the intermediate results of one screen, made once.
struct Fixture {
  synthetic::ScreenChroma input;
  ChromaLxy red;
  ChromaLxy green;
  ChromaLxy blue;
  TargetBlock means = {};
  cv::Mat mask;
  TargetBlock corners = {};
  Aimhue handle;
};

// The outlier mask with the literal fence (a full sort per primary).
cv::Mat LiteralOutlierMask(const ChromaLxy& red, const ChromaLxy& green, const ChromaLxy& blue,
                           const TargetBlock& means) {
  const cv::Mat distances[3] = {ChromaDistance(red, means[0]), ChromaDistance(green, means[1]),
                                ChromaDistance(blue, means[2])};
  const float fences[3] = {literal::Fence(distances[0]), literal::Fence(distances[1]),
                           literal::Fence(distances[2])};
  cv::Mat mask(red.L.size(), CV_8UC1, cv::Scalar(255));
  for (int p = 0; p < 3; ++p) mask.setTo(0, distances[p] >= fences[p]);
  return mask;
}

Fixture& ScreenFixture(int cols, int rows) {
  static std::map<std::pair<int, int>, Fixture> fixtures;
  auto found = fixtures.find({cols, rows});
  if (found != fixtures.end()) return found->second;
  Fixture& f = fixtures[{cols, rows}];
  synthetic::ScreenOptions options;
  options.cols = cols;
  options.rows = rows;
  options.deadCount = 0;
  // The inputs a host's search gets: the screen's meters, combined.
  if (synthetic::CombineMeters(synthetic::GenerateMeters(options), f.input) != 0) std::abort();
  Subsample(f.input[0], f.input[1], f.input[2], f.red, f.green, f.blue);
  f.means = {MeanLxy(f.red), MeanLxy(f.green), MeanLxy(f.blue), TargetLxy{}};
  f.mask = OutlierMask(f.handle, f.red, f.green, f.blue, f.means);
  GamutCorners(f.handle, f.corners, f.mask, f.red, f.green, f.blue, f.means);
  // Times nothing whose corners differ from those of counting the whole raster.
  TargetBlock wholeRaster = {};
  cv::Mat region = RegionImage(f.mask, f.red, f.green, f.blue, f.means);
  CornersFromRegion(region, wholeRaster);
  if (std::memcmp(&wholeRaster, &f.corners, sizeof wholeRaster) != 0) std::abort();
  f.handle.percentEnd = {0.9f, 0.9f, 0.9f, 0.9f};
  return f;
}

void BM_Search(benchmark::State& state) {
  Fixture& f = ScreenFixture(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
  for (auto _ : state) {
    benchmark::DoNotOptimize(f.handle.Search(&f.input[0], &f.input[1], &f.input[2]));
  }
}

// The search as it was before the corner stage kept to the seed's reach:
// the same stages, the corners from counting every edge over the whole
// raster. The in-process baseline of BM_Search.
void BM_SearchWholeRasterCorners(benchmark::State& state) {
  Fixture& f = ScreenFixture(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
  for (auto _ : state) {
    ChromaLxy red, green, blue;
    Subsample(f.input[0], f.input[1], f.input[2], red, green, blue);
    const TargetBlock means = {MeanLxy(red), MeanLxy(green), MeanLxy(blue), TargetLxy{}};
    const cv::Mat mask = OutlierMask(f.handle, red, green, blue, means);
    TargetBlock corners = {};
    cv::Mat region = RegionImage(mask, red, green, blue, means);
    CornersFromRegion(region, corners);
    TargetBlock final = {};
    SearchTargets(f.handle, final, mask, red, green, blue, means, corners);
    benchmark::DoNotOptimize(final);
  }
}

// The search with every stage in its literal form.
void BM_SearchLiteral(benchmark::State& state) {
  Fixture& f = ScreenFixture(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
  for (auto _ : state) {
    ChromaLxy red, green, blue;
    Subsample(f.input[0], f.input[1], f.input[2], red, green, blue);
    const TargetBlock means = {MeanLxy(red), MeanLxy(green), MeanLxy(blue), TargetLxy{}};
    const cv::Mat mask = LiteralOutlierMask(red, green, blue, means);
    TargetBlock corners = {};
    literal::GamutCorners(corners, mask, red, green, blue, means);
    TargetBlock final = {};
    literal::SearchTargets(f.handle, final, mask, red, green, blue, means, corners);
    benchmark::DoNotOptimize(final);
  }
}

// Baseline of the subsampling: one plain copy of the nine input planes.
void BM_CopyInputPlanes(benchmark::State& state) {
  Fixture& f = ScreenFixture(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
  for (auto _ : state) {
    for (const ChromaLxy& set : f.input) {
      for (const cv::Mat* plane : {&set.L, &set.x, &set.y}) {
        cv::Mat copy = plane->clone();
        benchmark::DoNotOptimize(copy.data);
      }
    }
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

void BM_MeansAndMaskLiteral(benchmark::State& state) {
  Fixture& f = ScreenFixture(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
  for (auto _ : state) {
    TargetBlock means = {MeanLxy(f.red), MeanLxy(f.green), MeanLxy(f.blue), TargetLxy{}};
    cv::Mat mask = LiteralOutlierMask(f.red, f.green, f.blue, means);
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

// The corner stage counting every edge over the whole raster: the in-process
// baseline for the count that stays inside the seed's reach.
void BM_GamutCornersWholeRaster(benchmark::State& state) {
  Fixture& f = ScreenFixture(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
  for (auto _ : state) {
    TargetBlock corners = {};
    cv::Mat region = RegionImage(f.mask, f.red, f.green, f.blue, f.means);
    CornersFromRegion(region, corners);
    benchmark::DoNotOptimize(corners);
  }
}

void BM_GamutCornersLiteral(benchmark::State& state) {
  Fixture& f = ScreenFixture(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
  for (auto _ : state) {
    TargetBlock corners = {};
    literal::GamutCorners(corners, f.mask, f.red, f.green, f.blue, f.means);
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

void BM_SearchTargetsLiteral(benchmark::State& state) {
  Fixture& f = ScreenFixture(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
  for (auto _ : state) {
    TargetBlock final = {};
    literal::SearchTargets(f.handle, final, f.mask, f.red, f.green, f.blue, f.means, f.corners);
    benchmark::DoNotOptimize(final);
  }
}

#define SCREEN_SIZES Args({1920, 1080})->Args({3840, 2160})->Unit(benchmark::kMillisecond)
BENCHMARK(BM_Search)->SCREEN_SIZES;
BENCHMARK(BM_SearchWholeRasterCorners)->SCREEN_SIZES;
BENCHMARK(BM_SearchLiteral)->SCREEN_SIZES;
BENCHMARK(BM_Subsample)->SCREEN_SIZES;
BENCHMARK(BM_CopyInputPlanes)->SCREEN_SIZES;
BENCHMARK(BM_MeansAndMask)->SCREEN_SIZES;
BENCHMARK(BM_MeansAndMaskLiteral)->SCREEN_SIZES;
BENCHMARK(BM_GamutCorners)->SCREEN_SIZES;
BENCHMARK(BM_GamutCornersWholeRaster)->SCREEN_SIZES;
BENCHMARK(BM_GamutCornersLiteral)->SCREEN_SIZES;
BENCHMARK(BM_SearchTargets)->SCREEN_SIZES;
BENCHMARK(BM_SearchTargetsLiteral)->SCREEN_SIZES;

}  // namespace
}  // namespace aimhue

BENCHMARK_MAIN();
