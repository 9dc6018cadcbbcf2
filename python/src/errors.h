// Errors of the Python module: aimhue.Error for a library status, and the
// capture of the library's error lines that goes into its message.
#ifndef AIMHUE_PYTHON_ERRORS_H_
#define AIMHUE_PYTHON_ERRORS_H_

#include <pybind11/pybind11.h>

#include <string>
#include <vector>

namespace aimhue::python {

// Collects the error lines that the library writes from the constructing
// thread while the object lives, so that a failed call can report them.
//
// The library has one process-wide log sink. While at least one capture is
// alive (in any thread) the module's own sink is installed; it hands each
// line to the capture of the thread that wrote it. Lines of threads without
// a capture go to standard error as the default sink would print them (at
// the level in force when the first capture began). When the last capture
// ends the default sink is restored, so a host's own log settings are only
// set aside while a call of this module runs.
class LogCapture {
 public:
  LogCapture();
  ~LogCapture();
  LogCapture(const LogCapture&) = delete;
  LogCapture& operator=(const LogCapture&) = delete;

  const std::vector<std::string>& Lines() const { return lines_; }
  void Append(const char* line) { lines_.emplace_back(line); }

 private:
  std::vector<std::string> lines_;
  LogCapture* outer_;  // a capture of the same thread that this one nests in
};

// A non-zero status of the library: the operation that failed, the status
// and the error lines logged during the call. Converted to aimhue.Error.
struct LibraryError {
  int status;
  std::string operation;
  std::vector<std::string> lines;
};

// Throws LibraryError when `status` is not 0.
void ThrowIfFailed(int status, const char* operation, const LogCapture& capture);

// Defines aimhue.Error and the translation of LibraryError into it.
void RegisterErrors(pybind11::module_& module);

}  // namespace aimhue::python

#endif  // AIMHUE_PYTHON_ERRORS_H_
