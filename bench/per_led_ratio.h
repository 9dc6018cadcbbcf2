// Shared by the benchmarks that compare a computation with a plain stream
// over the same planes: the per-LED counter, and a reporter that prints,
// after the usual table, each measured benchmark's time per LED over the
// baseline's. With --benchmark_repetitions the fastest run stands for each
// figure: on a shared machine the slower ones measure the neighbours.
#ifndef AIMHUE_BENCH_PER_LED_RATIO_H_
#define AIMHUE_BENCH_PER_LED_RATIO_H_

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace aimhue::bench {

// Items processed, and "per_led": seconds per LED (shown with an SI
// prefix, "2.9n" for 2.9 ns).
inline void SetPerLed(benchmark::State& state, int64_t leds) {
  state.SetItemsProcessed(state.iterations() * leds);
  state.counters["per_led"] = benchmark::Counter(
      static_cast<double>(leds),
      benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

// Ratios of the family `measured` over the family `baseline`: against the
// baseline run with the same arguments when there is one, otherwise against
// the baseline's fastest run.
class PerLedRatioReporter : public benchmark::ConsoleReporter {
 public:
  PerLedRatioReporter(std::string baseline, std::string measured)
      : baseline_(std::move(baseline)), measured_(std::move(measured)) {}

  void ReportRuns(const std::vector<Run>& runs) override {
    ConsoleReporter::ReportRuns(runs);
    for (const Run& run : runs) {
      if (run.run_type != Run::RT_Iteration || run.error_occurred) continue;
      const auto counter = run.counters.find("per_led");
      if (counter == run.counters.end()) continue;
      const std::string name = run.benchmark_name();
      const std::string::size_type slash = name.find('/');
      const double nanoseconds = counter->second.value * 1e9;
      double& best = perLed_[name.substr(0, slash)]
                            [slash == std::string::npos ? "" : name.substr(slash + 1)];
      if (best == 0.0 || nanoseconds < best) best = nanoseconds;
    }
  }

  void Finalize() override {
    ConsoleReporter::Finalize();
    const auto& baseline = perLed_[baseline_];
    if (baseline.empty()) return;
    double fastest = baseline.begin()->second;
    for (const auto& entry : baseline) fastest = std::min(fastest, entry.second);
    for (const auto& [arguments, ns] : perLed_[measured_]) {
      const auto same = baseline.find(arguments);
      const double base = same != baseline.end() ? same->second : fastest;
      std::printf("%s/%s: %.3f ns/LED, %s %.3f ns/LED, ratio %.2f\n", measured_.c_str(),
                  arguments.c_str(), ns, baseline_.c_str(), base, ns / base);
    }
  }

 private:
  std::string baseline_;
  std::string measured_;
  std::map<std::string, std::map<std::string, double>> perLed_;
};

// The benchmark program's main: the registered benchmarks, then the ratios.
inline int RunWithRatios(int argc, char** argv, const char* baseline, const char* measured) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  PerLedRatioReporter reporter(baseline, measured);
  benchmark::RunSpecifiedBenchmarks(&reporter);
  benchmark::Shutdown();
  return 0;
}

}  // namespace aimhue::bench

#endif  // AIMHUE_BENCH_PER_LED_RATIO_H_
