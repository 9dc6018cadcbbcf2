// How a command fails: one line of text for the user and the process's exit
// status. Commands throw CommandError; main prints it and exits.
#ifndef AIMHUE_TOOLS_COMMAND_ERROR_H_
#define AIMHUE_TOOLS_COMMAND_ERROR_H_

#include <stdexcept>
#include <string>

namespace aimhue {
namespace tool {

// Exit statuses of the tool.
enum ExitStatus : int {
  kExitOk = 0,           // success; for `judge`, the measurement passed
  kExitNg = 1,           // `judge`: the measurement is NG
  kExitUsage = 2,        // a missing or malformed option or argument
  kExitLibrary = 3,      // the library refused an input file or a computation
  kExitOutput = 4,       // a result, report or plot could not be written
};

class CommandError : public std::runtime_error {
 public:
  CommandError(int exit_status, const std::string& message)
      : std::runtime_error(message), exit_status_(exit_status) {}
  int exit_status() const { return exit_status_; }

 private:
  int exit_status_;
};

// Throws CommandError(exit_status) with "<what>: status <n> (<meaning>)"
// unless `status` is 0.
void CheckStatus(int status, const std::string& what, int exit_status = kExitLibrary);

}  // namespace tool
}  // namespace aimhue

#endif  // AIMHUE_TOOLS_COMMAND_ERROR_H_
