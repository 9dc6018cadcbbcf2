// The steps of `aimhue calibrate` on a synthetic screen, timed one by one in
// the order and with the calls the tool makes, beside a plain read of the
// same nine meter files in the same run (so the load's figure is a ratio
// that holds on a busy machine).
//
// The nine meters of each screen are written once to a scratch folder. The
// plain read and the meter load alternate; each is timed kRepeats times and
// the fastest run counts, so that both see the page cache warm. The other
// steps run once per screen, on the loaded meters, as the tool runs them:
// first with the meter-triple functions (each combines the meters again),
// then through a screen object (combined once).
// Each step is given as the processor time of the thread (user and system,
// page faults included), which a busy machine disturbs far less than the
// wall-clock time printed beside it.
//
// Screens: 1920 x 1080 and 3840 x 2160; set AIMHUE_BENCH_8K=1 (or pass
// --8k) to add 7680 x 4320 (1.5 GB of meter files, about 2.5 GB of memory).
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
#include <string>
#include <vector>

#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include "synthetic/synthetic_screen.h"

namespace aimhue {
namespace {

constexpr int kRepeats = 3;
constexpr int kPrimaries = 3;
constexpr int kAxes = 3;

using Meters = std::array<std::array<LedMeter, kAxes>, kPrimaries>;

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

void Require(int status, const char* what) {
  if (status == kOk) return;
  std::fprintf(stderr, "pipeline_bench: %s failed with status %d\n", what, status);
  std::exit(1);
}

// The baseline: each file read whole with read(2) into a fresh buffer of its
// size, as a program that only wanted the bytes would. The nine buffers are
// held until the end, as the loaded meters are, so that both pay for fresh
// memory alike.
uint64_t PlainRead(const std::vector<std::string>& files) {
  uint64_t total = 0;
  std::vector<cv::Mat> held;
  for (const std::string& file : files) {
    const int descriptor = ::open(file.c_str(), O_RDONLY | O_CLOEXEC);
    struct stat status {};
    if (descriptor < 0 || ::fstat(descriptor, &status) != 0) Require(2, "plain read");
    cv::Mat bytes(1, static_cast<int>(status.st_size), CV_8UC1);
    size_t done = 0;
    while (done < static_cast<size_t>(status.st_size)) {
      const ssize_t got = ::read(descriptor, bytes.data + done, status.st_size - done);
      if (got <= 0) Require(2, "plain read");
      done += static_cast<size_t>(got);
    }
    ::close(descriptor);
    total += done;
    held.push_back(bytes);
  }
  return total;
}

void LoadMeters(const std::vector<std::string>& files, Meters& meters) {
  for (int p = 0; p < kPrimaries; ++p) {
    for (int a = 0; a < kAxes; ++a) Require(meters[p][a].Load(files[p * kAxes + a]), "load");
  }
}

// As the tool does: an LED whose X, Y and Z are all zero is marked dead in
// its primary's three meters.
void MarkDeadLeds(Meters& meters) {
  for (auto& triple : meters) {
    cv::Mat dead = (triple[0].chroma == 0.0f);
    dead &= (triple[1].chroma == 0.0f);
    dead &= (triple[2].chroma == 0.0f);
    if (cv::countNonZero(dead) == 0) continue;
    for (LedMeter& meter : triple) {
      if (meter.state.size() != meter.chroma.size()) {
        meter.state = cv::Mat::zeros(meter.chroma.size(), CV_8UC1);
      }
      cv::Mat marked = meter.state | 1;
      marked.copyTo(meter.state, dead);
    }
  }
}

void RepairDeadLeds(Meters& meters) {
  for (auto& triple : meters) {
    for (LedMeter& meter : triple) Require(meter.FixDeadPoint(), "dead LEDs");
  }
}

// What the repair cost when it filtered whole planes: the 3 x 3 median
// filter of every plane (the copy to the dead LEDs is left out).
void FilterWholePlanes(const Meters& meters) {
  for (const auto& triple : meters) {
    for (const LedMeter& meter : triple) {
      cv::Mat filtered;
      cv::medianBlur(meter.chroma, filtered, 3);
    }
  }
}

struct Step {
  const char* name;
  Time time;
};

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
  for (int p = 0; p < kPrimaries; ++p) {
    for (int a = 0; a < kAxes; ++a) files.push_back(synthetic::MeterFilePath(folder.string(), p, a));
  }

  Time plain;
  Time load;
  uint64_t bytes = 0;
  Meters meters;
  for (int repeat = 0; repeat < kRepeats; ++repeat) {
    plain = Fastest(plain, Measure([&] { bytes = PlainRead(files); }));
    meters = Meters();
    load = Fastest(load, Measure([&] { LoadMeters(files, meters); }));
  }

  std::vector<Step> steps;
  const auto timed = [&](const char* name, const std::function<void()>& step) {
    steps.push_back({name, Measure(step)});
  };
  timed("dead LEDs: find, mark", [&] { MarkDeadLeds(meters); });
  const Time wholePlanes = Measure([&] { FilterWholePlanes(meters); });
  timed("dead LEDs: repair", [&] { RepairDeadLeds(meters); });
  std::array<std::array<const LedMeter*, kAxes>, kPrimaries> triples{};
  for (int p = 0; p < kPrimaries; ++p) {
    for (int a = 0; a < kAxes; ++a) triples[p][a] = &meters[p][a];
  }
  const LedMeter* const* red = triples[0].data();
  const LedMeter* const* green = triples[1].data();
  const LedMeter* const* blue = triples[2].data();
  AimhueHandle handle = nullptr;
  Require(AimhueCreateHandle(&handle), "create handle");
  timed("target search", [&] { Require(AimhueSearch(handle, red, green, blue, 3), "search"); });
  float targets[12] = {};
  timed("targets and white point", [&] {
    const float fractions[4] = {1.0f, 1.0f, 1.0f, 1.0f};
    Require(AimhueSetPercentCalcChroma(handle, fractions), "fractions");
    const TargetLxy white{0.0f, 0.3127f, 0.3290f};
    Require(AimhueCalcWhite(handle, 1.0f, &white, 0), "white point");
    Require(AimhueGet(handle, targets, nullptr), "targets");
  });
  timed("coverage", [&] {
    float coverage[4] = {};
    Require(AimhueCalcPercentOfTarget(red, green, blue, targets, coverage, nullptr, 3),
            "coverage");
  });
  timed("NG limit", [&] { Require(AimhueCalcPercentNG(handle, red, green, blue, 3), "NG limit"); });
  timed("NG judgement", [&] {
    bool ng = true;
    Require(AimhueJudgeNG(handle, &ng, red, green, blue, 3), "NG judgement");
  });
  AimhueDestroyHandle(handle);

  // The same steps through a screen: the primaries combined once, then
  // searched, counted and judged without combining again.
  std::vector<Step> screenSteps;
  const auto screenTimed = [&](const char* name, const std::function<void()>& step) {
    screenSteps.push_back({name, Measure(step)});
  };
  AimhueScreen screen = nullptr;
  Require(AimhueCreateScreen(&screen), "create screen");
  Require(AimhueCreateHandle(&handle), "create handle");
  screenTimed("combine", [&] {
    Require(AimhueScreenSetPrimary(screen, kRed, red), "combine red");
    Require(AimhueScreenSetPrimary(screen, kGreen, green), "combine green");
    Require(AimhueScreenSetPrimary(screen, kBlue, blue), "combine blue");
  });
  screenTimed("target search", [&] { Require(AimhueSearchScreen(handle, screen), "search"); });
  screenTimed("targets and white point", [&] {
    const float fractions[4] = {1.0f, 1.0f, 1.0f, 1.0f};
    Require(AimhueSetPercentCalcChroma(handle, fractions), "fractions");
    const TargetLxy white{0.0f, 0.3127f, 0.3290f};
    Require(AimhueCalcWhite(handle, 1.0f, &white, 0), "white point");
    Require(AimhueGet(handle, targets, nullptr), "targets");
  });
  screenTimed("coverage", [&] {
    Coverage coverage{};
    Require(AimhueCalcScreenCoverage(screen, targets, nullptr, &coverage, nullptr, 0),
            "coverage");
  });
  screenTimed("NG limit", [&] {
    Require(AimhueCalcPercentNGScreen(handle, screen, nullptr), "NG limit");
  });
  screenTimed("NG judgement", [&] {
    bool ng = true;
    Require(AimhueJudgeNGScreen(handle, screen, &ng, nullptr), "NG judgement");
  });
  AimhueDestroyHandle(handle);
  AimhueDestroyScreen(screen);

  const double megabytes = static_cast<double>(bytes) / 1e6;
  std::printf("\n%d x %d screen: nine meter files, %.1f MB (processor ms, wall ms)\n", cols, rows,
              megabytes);
  std::printf("  %-24s %8.1f %8.1f  %6.0f MB/s\n", "plain read (baseline)", plain.cpu * 1e3,
              plain.wall * 1e3, megabytes / plain.cpu);
  std::printf("  %-24s %8.1f %8.1f  %6.0f MB/s  %.2f x the plain read\n", "load meters",
              load.cpu * 1e3, load.wall * 1e3, megabytes / load.cpu, load.cpu / plain.cpu);
  Time total{load.cpu, load.wall};
  for (const Step& step : steps) {
    total.cpu += step.time.cpu;
    total.wall += step.time.wall;
    std::printf("  %-24s %8.1f %8.1f\n", step.name, step.time.cpu * 1e3, step.time.wall * 1e3);
  }
  std::printf("  %-24s %8.1f %8.1f\n", "total", total.cpu * 1e3, total.wall * 1e3);
  std::printf("  %-24s %8.1f %8.1f  (the repair's earlier cost)\n", "whole-plane median filter",
              wholePlanes.cpu * 1e3, wholePlanes.wall * 1e3);
  std::printf("  through a screen (after the same load and dead LEDs):\n");
  for (const Step& step : screenSteps) {
    std::printf("  %-24s %8.1f %8.1f\n", step.name, step.time.cpu * 1e3, step.time.wall * 1e3);
  }
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
