// The raw reader on the 4852 x 6464 geometry of camera 320012 (a 62.7 MB
// file) beside a plain single read of the same file into memory. The file is
// written once and then sits in the page cache, so both figures measure the
// copy out of the cache; the ratio is the reader's own overhead (the matrix,
// the size check and the sample loop).
#include <aimhue/bimage.h>
#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>
#include <vector>

namespace {

constexpr int kRows = 4852;
constexpr int kCols = 6464;
constexpr std::streamsize kFileSize = static_cast<std::streamsize>(kRows) * kCols * 2;

// The benchmark file, written on first use and removed at exit.
class RawFile {
 public:
  RawFile() {
    std::string pattern = (std::filesystem::temp_directory_path() / "aimhue-bench-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) std::abort();
    folder_ = pattern;
    path_ = folder_ + "/camera320012.raw";
    std::vector<char> bytes(static_cast<size_t>(kFileSize));
    for (size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<char>(i * 131 + (i >> 9));
    std::ofstream(path_, std::ios::binary).write(bytes.data(), kFileSize);
  }
  ~RawFile() {
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
  }
  const std::string& path() const { return path_; }

 private:
  std::string folder_;
  std::string path_;
};

const std::string& FilePath() {
  static RawFile file;
  return file.path();
}

// Baseline: open, one read of the whole file into a fresh buffer of the
// file's size, close.
void BM_PlainRead(benchmark::State& state) {
  const std::string& path = FilePath();
  for (auto _ : state) {
    cv::Mat buffer(1, static_cast<int>(kFileSize), CV_8UC1);
    std::ifstream file(path, std::ios::binary);
    file.read(reinterpret_cast<char*>(buffer.data), kFileSize);
    if (file.gcount() != kFileSize) state.SkipWithError("short read");
    benchmark::DoNotOptimize(buffer.data);
  }
  state.SetBytesProcessed(state.iterations() * kFileSize);
}

void BM_ReadOrvoRaw320012(benchmark::State& state) {
  const std::string& path = FilePath();
  for (auto _ : state) {
    cv::Mat image = aimhue::BImage::ReadOrvoRaw320012(path);
    if (image.empty()) state.SkipWithError("read failed");
    benchmark::DoNotOptimize(image.data);
  }
  state.SetBytesProcessed(state.iterations() * kFileSize);
}

BENCHMARK(BM_PlainRead)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_ReadOrvoRaw320012)->Unit(benchmark::kMillisecond)->UseRealTime();

// Prints the reader's time over the baseline's after the usual table.
class RatioReporter : public benchmark::ConsoleReporter {
 public:
  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& run : runs) {
      if (run.run_type == Run::RT_Iteration) times_[run.benchmark_name()] = run.GetAdjustedRealTime();
    }
    ConsoleReporter::ReportRuns(runs);
  }
  void Finalize() override {
    ConsoleReporter::Finalize();
    const auto baseline = times_.find("BM_PlainRead/real_time");
    const auto reader = times_.find("BM_ReadOrvoRaw320012/real_time");
    if (baseline != times_.end() && reader != times_.end() && baseline->second > 0.0) {
      std::printf("ReadOrvoRaw / plain read = %.3f (%.2f ms / %.2f ms, %d x %d samples)\n",
                  reader->second / baseline->second, reader->second, baseline->second, kRows,
                  kCols);
    }
  }

 private:
  std::map<std::string, double> times_;
};

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  RatioReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  benchmark::Shutdown();
  return 0;
}
