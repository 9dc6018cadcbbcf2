// Times AimhueSearch on a synthetic screen, for the comparison with the
// Python module's Engine.search (bench/python_search_overhead.py): prints
// the median of `runs` searches in seconds.
#include <aimhue/aimhue.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "synthetic/synthetic_screen.h"

int main(int argc, char** argv) {
  if (argc != 5) {
    std::fprintf(stderr, "usage: %s ROWS COLS SEED RUNS\n", argv[0]);
    return 2;
  }
  aimhue::synthetic::ScreenOptions options;
  options.rows = std::atoi(argv[1]);
  options.cols = std::atoi(argv[2]);
  options.seed = std::strtoull(argv[3], nullptr, 10);
  options.deadCount = 0;
  const int runs = std::max(1, std::atoi(argv[4]));
  const auto meters = aimhue::synthetic::GenerateMeters(options);
  const aimhue::LedMeter* triples[3][3];
  for (int primary = 0; primary < 3; ++primary) {
    for (int axis = 0; axis < 3; ++axis) triples[primary][axis] = &meters[primary][axis];
  }
  AimhueHandle handle = nullptr;
  if (AimhueCreateHandle(&handle) != 0 || handle == nullptr) return 1;
  const float ends[4] = {0.99f, 0.99f, 0.99f, 0.98f};
  AimhueSetPercentEnd(handle, ends);
  std::vector<double> seconds;
  for (int run = 0; run < runs; ++run) {
    const auto start = std::chrono::steady_clock::now();
    const int status = AimhueSearch(handle, triples[0], triples[1], triples[2], 3);
    seconds.push_back(std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
    if (status != 0) return 1;
  }
  AimhueDestroyHandle(handle);
  std::nth_element(seconds.begin(), seconds.begin() + runs / 2, seconds.end());
  std::printf("%.6f\n", seconds[runs / 2]);
  return 0;
}
