// Outputs that appear whole or not at all: each file is written under a
// temporary name beside its target and renamed into place only when every
// output of the command has been written.
#ifndef AIMHUE_TOOLS_STAGED_OUTPUTS_H_
#define AIMHUE_TOOLS_STAGED_OUTPUTS_H_

#include <string>
#include <utility>
#include <vector>

namespace aimhue {
namespace tool {

class StagedOutputs {
 public:
  StagedOutputs() = default;
  StagedOutputs(const StagedOutputs&) = delete;
  StagedOutputs& operator=(const StagedOutputs&) = delete;
  // Removes the temporary files of a set that was never committed.
  ~StagedOutputs();

  // The temporary name to write `target` under: in the same directory, so
  // that the rename stays on one file system, and ending in the target's
  // own name, so that writers that go by the extension still recognise it.
  std::string Stage(const std::string& target);

  // Renames every staged file onto its target, in the order staged;
  // CommandError (exit status 4) when one cannot be renamed.
  void Commit();

 private:
  std::vector<std::pair<std::string, std::string>> staged_;  // temporary, target
};

}  // namespace tool
}  // namespace aimhue

#endif  // AIMHUE_TOOLS_STAGED_OUTPUTS_H_
