// A test helper that captures every log line of the library for its
// lifetime, so that tests can assert the exact messages an operation wrote.
#ifndef AIMHUE_TESTS_SUPPORT_LOG_CAPTURE_H_
#define AIMHUE_TESTS_SUPPORT_LOG_CAPTURE_H_

#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace aimhue::testing {

// Log lines in the order written.
using Lines = std::vector<std::string>;

class LogCapture {
 public:
  LogCapture();
  ~LogCapture();
  LogCapture(const LogCapture&) = delete;
  LogCapture& operator=(const LogCapture&) = delete;

  // Lines of one level (0 debug, 1 info, 2 error), in the order written.
  std::vector<std::string> Lines(int level) const;
  std::vector<std::string> Errors() const { return Lines(2); }
  std::vector<std::string> Infos() const { return Lines(1); }
  std::vector<std::string> Debugs() const { return Lines(0); }

 private:
  static void Sink(int level, const char* line, void* user);

  mutable std::mutex lock_;
  std::vector<std::pair<int, std::string>> lines_;
};

}  // namespace aimhue::testing

#endif  // AIMHUE_TESTS_SUPPORT_LOG_CAPTURE_H_
