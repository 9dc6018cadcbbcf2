#include "support/log_capture.h"

#include <aimhue/plume_log.h>

namespace aimhue::testing {

LogCapture::LogCapture() { PlumeLogSetSink(&LogCapture::Sink, this); }

LogCapture::~LogCapture() { PlumeLogSetSink(nullptr, nullptr); }

void LogCapture::Sink(int level, const char* line, void* user) {
  auto* self = static_cast<LogCapture*>(user);
  std::lock_guard<std::mutex> guard(self->lock_);
  self->lines_.emplace_back(level, line);
}

std::vector<std::string> LogCapture::Lines(int level) const {
  std::lock_guard<std::mutex> guard(lock_);
  std::vector<std::string> result;
  for (const auto& entry : lines_) {
    if (entry.first == level) result.push_back(entry.second);
  }
  return result;
}

}  // namespace aimhue::testing
