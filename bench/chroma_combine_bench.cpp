// ChromaLxy::Combine on full screens beside a baseline that only streams the
// same three chroma planes through memory. The figure that matters is the
// ratio of the two times per LED.
#include <aimhue/led_meter.h>
#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstring>

#include "meter/chroma_lxy.h"

namespace aimhue {
namespace {

// The X, Y and Z meters of one primary with random positive values.
struct Primary {
  LedMeter meters[3];

  Primary(int rows, int cols) {
    const uint32_t types[3] = {CIE_X, CIE_Y, CIE_Z};
    cv::RNG rng(7);
    for (int i = 0; i < 3; ++i) {
      meters[i].type = types[i];
      meters[i].color = 2;
      meters[i].chroma.create(rows, cols, CV_32FC1);
      rng.fill(meters[i].chroma, cv::RNG::UNIFORM, 0.0f, 100.0f);
    }
  }
};

// Sums every 8-byte word of a plane: a pass over the bytes with almost no
// arithmetic, so its time is that of reading the plane.
uint64_t SumWords(const cv::Mat& plane) {
  const uchar* bytes = plane.data;
  const size_t words = plane.total() * plane.elemSize() / sizeof(uint64_t);
  uint64_t sum = 0;
  for (size_t i = 0; i < words; ++i) {
    uint64_t word;
    std::memcpy(&word, bytes + i * sizeof(uint64_t), sizeof(uint64_t));
    sum += word;
  }
  return sum;
}

void SetLeds(benchmark::State& state) {
  state.SetItemsProcessed(state.iterations() * state.range(0) * state.range(1));
  state.counters["ns_per_led"] = benchmark::Counter(
      static_cast<double>(state.range(0) * state.range(1)),
      benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

void BM_StreamThreePlanes(benchmark::State& state) {
  const Primary primary(static_cast<int>(state.range(1)), static_cast<int>(state.range(0)));
  for (auto _ : state) {
    uint64_t sum = SumWords(primary.meters[0].chroma) + SumWords(primary.meters[1].chroma) +
                   SumWords(primary.meters[2].chroma);
    benchmark::DoNotOptimize(sum);
  }
  SetLeds(state);
}

void BM_ChromaLxyCombine(benchmark::State& state) {
  const Primary primary(static_cast<int>(state.range(1)), static_cast<int>(state.range(0)));
  ChromaLxy out;
  for (auto _ : state) {
    const int status =
        ChromaLxy::Combine(out, &primary.meters[0], &primary.meters[1], &primary.meters[2]);
    benchmark::DoNotOptimize(status);
    benchmark::DoNotOptimize(out.x.data);
  }
  SetLeds(state);
}

// Screens of 1920 x 1080 and 3840 x 2160 LEDs (columns, rows).
BENCHMARK(BM_StreamThreePlanes)->Args({1920, 1080})->Args({3840, 2160})->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ChromaLxyCombine)->Args({1920, 1080})->Args({3840, 2160})->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace aimhue

BENCHMARK_MAIN();
