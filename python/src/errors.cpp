#include "errors.h"

#include <aimhue/plume_log.h>
#include <aimhue/status.h>

#include <pybind11/eval.h>

#include <atomic>
#include <cstdio>
#include <mutex>

namespace py = pybind11;

namespace aimhue::python {
namespace {

thread_local LogCapture* threadCapture = nullptr;

// Guards the count of live captures, which decides when the module's sink is
// installed and when the default sink comes back.
std::mutex installLock;
int liveCaptures = 0;
// The default sink's level when the module's sink was installed. The sink
// runs under the log's own lock, so it cannot ask PlumeLogGetLevel.
std::atomic<int> forwardLevel{PLUME_LOG_ERROR};

const char* LevelName(int level) {
  switch (level) {
    case PLUME_LOG_DEBUG: return "debug";
    case PLUME_LOG_INFO: return "info";
    default: return "error";
  }
}

void ModuleSink(int level, const char* line, void* /*user*/) {
  if (LogCapture* capture = threadCapture) {
    if (level >= PLUME_LOG_ERROR) capture->Append(line);
    return;
  }
  if (level >= forwardLevel.load(std::memory_order_relaxed)) {
    std::fprintf(stderr, "[%s] %s\n", LevelName(level), line);
  }
}

// The aimhue.Error class, created once at import and kept for the life of
// the process (exception types are never unloaded).
PyObject* errorType = nullptr;

}  // namespace

LogCapture::LogCapture() : outer_(threadCapture) {
  {
    std::lock_guard<std::mutex> guard(installLock);
    if (liveCaptures++ == 0) {
      forwardLevel.store(PlumeLogGetLevel(), std::memory_order_relaxed);
      PlumeLogSetSink(&ModuleSink, nullptr);
    }
  }
  threadCapture = this;
}

LogCapture::~LogCapture() {
  threadCapture = outer_;
  std::lock_guard<std::mutex> guard(installLock);
  if (--liveCaptures == 0) PlumeLogSetSink(nullptr, nullptr);
}

void ThrowIfFailed(int status, const char* operation, const LogCapture& capture) {
  if (status != 0) throw LibraryError{status, operation, capture.Lines()};
}

void RegisterErrors(py::module_& module) {
  py::dict scope;
  scope["__builtins__"] = py::module_::import("builtins");
  scope["__name__"] = "aimhue";
  py::exec(R"(
class Error(RuntimeError):
    """A call into the aimhue library returned a non-zero status.

    Attributes
    ----------
    status : int
        The library's status code (see ``aimhue.status_text``).
    lines : tuple of str
        The error lines the library logged during the call, oldest first.
        The message holds the operation, the status and its meaning, and
        these lines.
    """

    def __init__(self, message, status=0, lines=()):
        super().__init__(message)
        self.status = status
        self.lines = tuple(lines)

    def __reduce__(self):
        return (type(self), (self.args[0], self.status, self.lines))
)",
           scope);
  py::object error = scope["Error"];
  errorType = error.release().ptr();
  module.add_object("Error", py::handle(errorType));

  py::register_exception_translator([](std::exception_ptr pointer) {
    try {
      if (pointer) std::rethrow_exception(pointer);
    } catch (const LibraryError& failure) {
      std::string message = failure.operation + " failed with status " +
                            std::to_string(failure.status) + " (" +
                            StatusText(failure.status) + ")";
      for (const std::string& line : failure.lines) message += "\n  " + line;
      py::tuple lines(failure.lines.size());
      for (size_t index = 0; index < failure.lines.size(); ++index) {
        lines[index] = py::str(failure.lines[index]);
      }
      py::object instance = py::handle(errorType)(message, failure.status, lines);
      PyErr_SetObject(errorType, instance.ptr());
    }
  });

  module.def("status_text", &StatusText, py::arg("status"),
             R"(The meaning of a library status code.

Parameters
----------
status : int
    A status code of the library (0 is success).

Returns
-------
str
    A short English description; "unknown status" for a code the library
    does not define.
)");
}

}  // namespace aimhue::python
