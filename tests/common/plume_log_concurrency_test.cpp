#include <aimhue/plume_log.h>
#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

#include "support/log_capture.h"

namespace aimhue {
namespace {

using ::aimhue::testing::LogCapture;

TEST(PlumeLog, ManyThreadsLogWholeLinesConcurrently) {
  LogCapture log;
  constexpr int kThreads = 8;
  constexpr int kLinesEach = 500;
  const std::string tail(700, 'x');  // longer than the stack buffer
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([t, &tail] {
      for (int i = 0; i < kLinesEach; ++i) PlumeLogInfo("thread %d line %d %s", t, i, tail.c_str());
    });
  }
  for (auto& thread : threads) thread.join();
  const auto lines = log.Infos();
  ASSERT_EQ(lines.size(), static_cast<size_t>(kThreads * kLinesEach));
  for (const auto& line : lines) {
    ASSERT_EQ(line.substr(line.size() - tail.size()), tail);
  }
}

}  // namespace
}  // namespace aimhue
