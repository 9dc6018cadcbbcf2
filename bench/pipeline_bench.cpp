// The steps of `aimhue calibrate` on a synthetic screen, timed one by one in
// the order and with the calls the tool makes, beside two plain reads of the
// same nine meter files in the same run, so that the load's figure is a
// ratio that holds on a busy machine:
// - "read into fresh buffers": each file read whole with read(2) into a new
//   buffer of its size, held to the end, as a program that only wanted the
//   bytes would (it pays a page fault per 4 KiB of fresh memory);
// - "read into one buffer": every file read through one reused buffer, the
//   cost of copying the bytes out of the page cache and nothing else.
//
// The nine meters of each screen are written once to a scratch folder. The
// reads and the tool's pipeline alternate kRepeats times and the fastest
// run of each step counts, so that all see the page cache warm. The
// pipeline is the tool's: one primary at a time, load its three meters,
// find and repair the dead LEDs, hand the value planes to the screen; then
// search, place the targets and white point, count the coverage with the
// per-LED misses once, and store the NG limit and judge from that count.
// Each step is given as the processor time of the thread (user and system,
// page faults included), which a busy machine disturbs far less than the
// wall-clock time printed beside it.
//
// Screens: 1920 x 1080 and 3840 x 2160; set AIMHUE_BENCH_8K=1 (or pass
// --8k) to add 7680 x 4320 (1.5 GB of meter files, as much memory again).
#include <aimhue/aimhue.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include <opencv2/core.hpp>

#include "synthetic/synthetic_screen.h"

namespace aimhue {
namespace {

constexpr int kRepeats = 3;
constexpr int kAxes = 3;

struct Time {
  double cpu = 1e30;   // seconds of processor time of this thread
  double wall = 1e30;  // seconds on the clock
};

double ThreadCpuSeconds() {
  timespec now{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

Time Measure(const std::function<void()>& step) {
  const double cpu = ThreadCpuSeconds();
  const auto start = std::chrono::steady_clock::now();
  step();
  return Time{ThreadCpuSeconds() - cpu,
              std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count()};
}

Time Fastest(const Time& a, const Time& b) {
  return Time{std::min(a.cpu, b.cpu), std::min(a.wall, b.wall)};
}

Time Sum(const Time& a, const Time& b) { return Time{a.cpu + b.cpu, a.wall + b.wall}; }

void Require(int status, const char* what) {
  if (status == kOk) return;
  std::fprintf(stderr, "pipeline_bench: %s failed with status %d\n", what, status);
  std::exit(1);
}

// Reads the whole file into `at` (room for `size` bytes); returns the size.
size_t ReadWhole(const std::string& file, char* at, size_t size) {
  const int descriptor = ::open(file.c_str(), O_RDONLY | O_CLOEXEC);
  if (descriptor < 0) Require(2, "plain read");
  size_t done = 0;
  while (done < size) {
    const ssize_t got = ::read(descriptor, at + done, size - done);
    if (got <= 0) break;
    done += static_cast<size_t>(got);
  }
  ::close(descriptor);
  return done;
}

size_t FileSize(const std::string& file) {
  return static_cast<size_t>(std::filesystem::file_size(file));
}

uint64_t ReadIntoFreshBuffers(const std::vector<std::string>& files) {
  uint64_t total = 0;
  std::vector<std::vector<char>> held;
  for (const std::string& file : files) {
    const size_t size = FileSize(file);
    held.emplace_back();
    held.back().reserve(size);  // fresh memory, untouched
    total += ReadWhole(file, held.back().data(), size);
  }
  return total;
}

uint64_t ReadIntoOneBuffer(const std::vector<std::string>& files, std::vector<char>& buffer) {
  uint64_t total = 0;
  for (const std::string& file : files) {
    const size_t size = FileSize(file);
    if (buffer.size() < size) buffer.resize(size);
    total += ReadWhole(file, buffer.data(), size);
  }
  return total;
}

// The tool's calibrate from its files to its verdict, each step's time added
// to `times` under its name (the per-primary steps summed over primaries).
void RunPipeline(const std::vector<std::string>& files, std::vector<std::string>& order,
                 std::map<std::string, Time>& times) {
  std::map<std::string, Time> run;
  const auto timed = [&](const std::string& name, const std::function<void()>& step) {
    if (run.count(name) == 0) {
      run[name] = Time{0.0, 0.0};
      if (std::find(order.begin(), order.end(), name) == order.end()) order.push_back(name);
    }
    run[name] = Sum(run[name], Measure(step));
  };
  AimhueScreen screen = nullptr;
  AimhueHandle handle = nullptr;
  Require(AimhueCreateScreen(&screen), "create screen");
  Require(AimhueCreateHandle(&handle), "create handle");
  for (int p = 0; p < kPrimaryCount; ++p) {
    std::array<LedMeter, kAxes> meters;
    LedMeter* const triple[kAxes] = {&meters[0], &meters[1], &meters[2]};
    timed("load meters", [&] {
      for (int a = 0; a < kAxes; ++a) Require(meters[a].Load(files[p * kAxes + a]), "load");
    });
    timed("dead LEDs", [&] {
      DeadLedCounts dead;
      Require(FixDeadLeds(triple, true, &dead), "dead LEDs");
    });
    timed("combine (planes taken)", [&] {
      Require(AimhueScreenTakePrimary(screen, ColourOfPrimary(p), triple), "combine");
    });
  }
  timed("target search", [&] { Require(AimhueSearchScreen(handle, screen), "search"); });
  float targets[12] = {};
  timed("targets and white point", [&] {
    const float fractions[4] = {1.0f, 1.0f, 1.0f, 1.0f};
    Require(AimhueSetPercentCalcChroma(handle, fractions), "fractions");
    const TargetLxy white{0.0f, 0.3127f, 0.3290f};
    Require(AimhueCalcWhite(handle, 1.0f, &white, 0), "white point");
    Require(AimhueGet(handle, targets, nullptr), "targets");
  });
  Coverage coverage{};
  timed("coverage and misses", [&] {
    int32_t rows = 0;
    int32_t cols = 0;
    Require(AimhueScreenSize(screen, &rows, &cols), "screen size");
    cv::Mat misses(rows, cols, CV_8UC1);
    Require(AimhueCalcScreenCoverage(screen, targets, nullptr, &coverage, misses.data,
                                     misses.total()),
            "coverage");
  });
  timed("NG limit and judgement", [&] {
    bool ng = true;
    Require(AimhueSetNGLimitFromCoverage(handle, &coverage), "NG limit");
    Require(AimhueJudgeCoverage(handle, &coverage, &ng), "NG judgement");
  });
  timed("free the screen", [&] {
    AimhueDestroyHandle(handle);
    AimhueDestroyScreen(screen);
  });
  for (const auto& [name, time] : run) {
    times[name] = times.count(name) ? Fastest(times[name], time) : time;
  }
}

void RunScreen(int cols, int rows) {
  synthetic::ScreenOptions options;
  options.cols = cols;
  options.rows = rows;
  const std::filesystem::path folder = std::filesystem::temp_directory_path() /
                                       ("aimhue_pipeline_bench_" + std::to_string(::getpid()));
  std::filesystem::create_directories(folder);
  {
    const synthetic::ScreenMeters generated = synthetic::GenerateMeters(options);
    Require(synthetic::WriteMeterFiles(generated, folder.string()), "writing the meter files");
  }
  std::vector<std::string> files;
  for (int p = 0; p < kPrimaryCount; ++p) {
    for (int a = 0; a < kAxes; ++a) files.push_back(synthetic::MeterFilePath(folder.string(), p, a));
  }

  Time fresh;
  Time reused;
  uint64_t bytes = 0;
  std::vector<char> buffer;
  std::vector<std::string> order;
  std::map<std::string, Time> times;
  for (int repeat = 0; repeat < kRepeats; ++repeat) {
    fresh = Fastest(fresh, Measure([&] { bytes = ReadIntoFreshBuffers(files); }));
    reused = Fastest(reused, Measure([&] { ReadIntoOneBuffer(files, buffer); }));
    RunPipeline(files, order, times);
  }

  const double megabytes = static_cast<double>(bytes) / 1e6;
  std::printf("\n%d x %d screen: nine meter files, %.1f MB (processor ms, wall ms)\n", cols, rows,
              megabytes);
  const auto rate = [megabytes](const Time& time) { return megabytes / time.cpu; };
  std::printf("  %-26s %8.1f %8.1f  %6.0f MB/s\n", "read into fresh buffers", fresh.cpu * 1e3,
              fresh.wall * 1e3, rate(fresh));
  std::printf("  %-26s %8.1f %8.1f  %6.0f MB/s\n", "read into one buffer", reused.cpu * 1e3,
              reused.wall * 1e3, rate(reused));
  Time total{0.0, 0.0};
  for (const std::string& name : order) {
    const Time& time = times[name];
    total = Sum(total, time);
    std::printf("  %-26s %8.1f %8.1f", name.c_str(), time.cpu * 1e3, time.wall * 1e3);
    if (name == "load meters") {
      std::printf("  %6.0f MB/s  %.2f x the fresh read, %.2f x the one-buffer read", rate(time),
                  time.cpu / fresh.cpu, time.cpu / reused.cpu);
    }
    std::printf("\n");
  }
  std::printf("  %-26s %8.1f %8.1f\n", "total", total.cpu * 1e3, total.wall * 1e3);
  std::filesystem::remove_all(folder);
}

}  // namespace
}  // namespace aimhue

int main(int argc, char** argv) {
  PlumeLogSetLevel(PLUME_LOG_ERROR);  // the steps log their names on entry
  bool eightK = std::getenv("AIMHUE_BENCH_8K") != nullptr &&
                std::strcmp(std::getenv("AIMHUE_BENCH_8K"), "0") != 0;
  for (int i = 1; i < argc; ++i) eightK = eightK || std::strcmp(argv[i], "--8k") == 0;
  aimhue::RunScreen(1920, 1080);
  aimhue::RunScreen(3840, 2160);
  if (eightK) aimhue::RunScreen(7680, 4320);
  return 0;
}
