// Temporary names and the final renames.
#include "staged_outputs.h"

#include <unistd.h>

#include <filesystem>
#include <system_error>

#include "command_error.h"

namespace aimhue {
namespace tool {

StagedOutputs::~StagedOutputs() {
  for (const auto& [temporary, target] : staged_) {
    std::error_code ignored;
    std::filesystem::remove(temporary, ignored);
  }
}

std::string StagedOutputs::Stage(const std::string& target) {
  const std::filesystem::path path(target);
  const std::string temporary =
      (path.parent_path() / (".aimhue-" + std::to_string(::getpid()) + "-" +
                             std::to_string(staged_.size()) + "-" + path.filename().string()))
          .string();
  staged_.emplace_back(temporary, target);
  return temporary;
}

void StagedOutputs::Commit() {
  for (auto it = staged_.begin(); it != staged_.end(); it = staged_.erase(it)) {
    std::error_code error;
    std::filesystem::rename(it->first, it->second, error);
    if (error) {
      throw CommandError(kExitOutput, "cannot move the finished output into place as '" +
                                          it->second + "': " + error.message());
    }
  }
}

}  // namespace tool
}  // namespace aimhue
