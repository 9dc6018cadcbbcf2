// Library statuses as command failures.
#include "command_error.h"

#include <aimhue/status.h>

namespace aimhue {
namespace tool {

void CheckStatus(int status, const std::string& what, int exit_status) {
  if (status == kOk) return;
  throw CommandError(exit_status, what + ": status " + std::to_string(status) + " (" +
                                      StatusText(status) + ")");
}

}  // namespace tool
}  // namespace aimhue
