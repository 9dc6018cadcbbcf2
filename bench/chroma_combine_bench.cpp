// ChromaLxy::Combine on full screens beside a baseline that only streams the
// same three chroma planes through memory. The figure that matters is the
// ratio of the two times per LED, printed after the table for each screen.
#include <aimhue/led_meter.h>
#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <map>
#include <string>
#include <utility>
#include <vector>

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

constexpr char kPerLed[] = "s_per_led";

// Screen arguments are (columns, rows) in LEDs.
void CountLeds(benchmark::State& state) {
  const double leds = static_cast<double>(state.range(0) * state.range(1));
  state.counters[kPerLed] = benchmark::Counter(
      leds, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

void BM_StreamThreePlanes(benchmark::State& state) {
  const Primary primary(static_cast<int>(state.range(1)), static_cast<int>(state.range(0)));
  for (auto _ : state) {
    uint64_t sum = SumWords(primary.meters[0].chroma) + SumWords(primary.meters[1].chroma) +
                   SumWords(primary.meters[2].chroma);
    benchmark::DoNotOptimize(sum);
  }
  CountLeds(state);
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
  CountLeds(state);
}

BENCHMARK(BM_StreamThreePlanes)
    ->Args({1920, 1080})
    ->Args({3840, 2160})
    ->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ChromaLxyCombine)
    ->Args({1920, 1080})
    ->Args({3840, 2160})
    ->Unit(benchmark::kMillisecond);

// The console table (without colour codes), then for each screen the time per LED of the baseline
// and of Combine (the mean over repetitions when there are several) and
// their ratio.
class RatioReporter : public benchmark::ConsoleReporter {
 public:
  RatioReporter() : ConsoleReporter(OO_Tabular) {}

  void ReportRuns(const std::vector<Run>& runs) override {
    ConsoleReporter::ReportRuns(runs);
    for (const Run& run : runs) {
      const bool mean = run.run_type == Run::RT_Aggregate && run.aggregate_name == "mean";
      const bool single = run.run_type == Run::RT_Iteration && run.repetitions <= 1;
      const auto counter = run.counters.find(kPerLed);
      if (run.error_occurred || !(mean || single) || counter == run.counters.end()) continue;
      seconds_per_led_[run.run_name.args][run.run_name.function_name] = counter->second.value;
    }
  }

  void Finalize() override {
    ConsoleReporter::Finalize();
    for (const auto& screen : seconds_per_led_) {
      const auto stream = screen.second.find("BM_StreamThreePlanes");
      const auto combine = screen.second.find("BM_ChromaLxyCombine");
      if (stream == screen.second.end() || combine == screen.second.end()) continue;
      std::printf("screen %s LEDs: stream %.3f ns/LED, Combine %.3f ns/LED, ratio %.2f\n",
                  screen.first.c_str(), stream->second * 1e9, combine->second * 1e9,
                  combine->second / stream->second);
    }
  }

 private:
  std::map<std::string, std::map<std::string, double>> seconds_per_led_;
};

}  // namespace
}  // namespace aimhue

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  aimhue::RatioReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  benchmark::Shutdown();
  return 0;
}
