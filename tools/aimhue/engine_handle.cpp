// Engine handles and screens of the tool.
#include "engine_handle.h"

#include "command_error.h"

namespace aimhue {
namespace tool {

Handle CreateHandle() {
  AimhueHandle raw = nullptr;
  CheckStatus(AimhueCreateHandle(&raw), "cannot create an engine handle");
  if (raw == nullptr) throw CommandError(kExitLibrary, "cannot create an engine handle: out of memory");
  return Handle(raw);
}

Handle LoadHandle(const std::string& file) {
  Handle handle = CreateHandle();
  CheckStatus(AimhueLoad(handle.get(), file.c_str()), "cannot load results '" + file + "'");
  return handle;
}

ScreenHandle CreateScreen() {
  AimhueScreen raw = nullptr;
  CheckStatus(AimhueCreateScreen(&raw), "cannot create a screen");
  return ScreenHandle(raw);
}

AimhueResults GetResults(Aimhue* handle) {
  AimhueResults results{};
  CheckStatus(AimhueGetResults(handle, &results), "cannot read the engine's results");
  return results;
}

TargetBlock ToBlock(const TargetLxy (&points)[4]) {
  return TargetBlock{points[0], points[1], points[2], points[3]};
}

}  // namespace tool
}  // namespace aimhue
