// The logging channel: formats printf-style messages and hands each one to
// the installed sink (the host's, or the default standard-error sink).
#include <aimhue/plume_log.h>

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <string>

namespace {

// The only mutable global state of the library: the sink, its user pointer
// and the default sink's level, all guarded by one lock. The lock is held
// while a sink runs so that a sink replaced by PlumeLogSetSink is never
// called afterwards and lines from several threads never interleave.
struct LogState {
  std::mutex lock;
  PlumeLogSink sink = nullptr;
  void* user = nullptr;
  int level = PLUME_LOG_ERROR;
};

LogState& State() {
  static LogState state;
  return state;
}

const char* LevelName(int level) {
  switch (level) {
    case PLUME_LOG_DEBUG:
      return "debug";
    case PLUME_LOG_INFO:
      return "info";
    default:
      return "error";
  }
}

int ClampLevel(int level) {
  if (level < PLUME_LOG_DEBUG) return PLUME_LOG_DEBUG;
  if (level > PLUME_LOG_OFF) return PLUME_LOG_OFF;
  return level;
}

void Deliver(int level, const char* line) {
  LogState& state = State();
  std::lock_guard<std::mutex> guard(state.lock);
  if (state.sink != nullptr) {
    state.sink(level, line, state.user);
    return;
  }
  if (level >= state.level) std::fprintf(stderr, "[%s] %s\n", LevelName(level), line);
}

// Formats into a stack buffer when the message fits and into an exactly
// sized string when it does not, so no message is ever cut short.
void Emit(int level, const char* format, va_list args) {
  if (format == nullptr) return;
  char small[512];
  va_list measure;
  va_copy(measure, args);
  const int length = std::vsnprintf(small, sizeof small, format, measure);
  va_end(measure);
  if (length < 0) return;
  if (static_cast<size_t>(length) < sizeof small) {
    Deliver(level, small);
    return;
  }
  std::string large(static_cast<size_t>(length) + 1, '\0');
  std::vsnprintf(&large[0], large.size(), format, args);
  large.resize(static_cast<size_t>(length));
  Deliver(level, large.c_str());
}

}  // namespace

extern "C" {

void PlumeLogDebug(const char* format, ...) {
  va_list args;
  va_start(args, format);
  Emit(PLUME_LOG_DEBUG, format, args);
  va_end(args);
}

void PlumeLogInfo(const char* format, ...) {
  va_list args;
  va_start(args, format);
  Emit(PLUME_LOG_INFO, format, args);
  va_end(args);
}

void PlumeLogError(const char* format, ...) {
  va_list args;
  va_start(args, format);
  Emit(PLUME_LOG_ERROR, format, args);
  va_end(args);
}

void PlumeLogSetSink(PlumeLogSink sink, void* user) {
  LogState& state = State();
  std::lock_guard<std::mutex> guard(state.lock);
  state.sink = sink;
  state.user = sink != nullptr ? user : nullptr;
}

void PlumeLogSetLevel(int level) {
  LogState& state = State();
  std::lock_guard<std::mutex> guard(state.lock);
  state.level = ClampLevel(level);
}

int PlumeLogGetLevel(void) {
  LogState& state = State();
  std::lock_guard<std::mutex> guard(state.lock);
  return state.level;
}

int PlumeLogParseLevel(const char* name, int* level) {
  if (name == nullptr || level == nullptr) return 0;
  static const struct {
    const char* name;
    int level;
  } kLevels[] = {{"debug", PLUME_LOG_DEBUG},
                 {"info", PLUME_LOG_INFO},
                 {"error", PLUME_LOG_ERROR},
                 {"off", PLUME_LOG_OFF}};
  for (const auto& entry : kLevels) {
    if (std::strcmp(name, entry.name) == 0) {
      *level = entry.level;
      return 1;
    }
  }
  return 0;
}

int PlumeLogUseEnvironment(void) {
  const char* value = std::getenv("AIMHUE_LOG");
  if (value == nullptr || value[0] == '\0') return 1;
  int level = PLUME_LOG_ERROR;
  if (PlumeLogParseLevel(value, &level) == 0) return 0;
  PlumeLogSetLevel(level);
  return 1;
}

}  // extern "C"
