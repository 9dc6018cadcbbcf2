// Engine handles of the tool.
#include "engine_handle.h"

#include <vector>

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

TargetBlock GetTargets(Aimhue* handle) {
  float values[12] = {};
  CheckStatus(AimhueGet(handle, values, nullptr), "cannot read the targets");
  TargetBlock block{};
  for (std::size_t i = 0; i < block.size(); ++i) {
    block[i] = TargetLxy{values[3 * i], values[3 * i + 1], values[3 * i + 2]};
  }
  return block;
}

EngineImage ReadEngineImage(Aimhue* handle) {
  uint64_t size = 0;
  CheckStatus(AimhueGetBufferSize(handle, &size), "cannot size the engine record");
  if (size > 4096) throw CommandError(kExitLibrary, "the engine record's size is implausible");
  std::vector<char> bytes(static_cast<std::size_t>(size));
  CheckStatus(AimhueToBuffer(handle, bytes.data(), &size), "cannot read the engine record");
  const auto image = DecodeEngineImage(bytes.data(), static_cast<std::size_t>(size));
  if (!image) throw CommandError(kExitLibrary, "the engine record's buffer image is not readable");
  return *image;
}

}  // namespace tool
}  // namespace aimhue
