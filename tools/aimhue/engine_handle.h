// An engine handle owned by the tool, and the reads the commands make from
// it through the public interface.
#ifndef AIMHUE_TOOLS_ENGINE_HANDLE_H_
#define AIMHUE_TOOLS_ENGINE_HANDLE_H_

#include <aimhue/api.h>

#include <memory>
#include <string>

#include "engine_image.h"

namespace aimhue {
namespace tool {

struct HandleDeleter {
  void operator()(Aimhue* handle) const { AimhueDestroyHandle(handle); }
};
using Handle = std::unique_ptr<Aimhue, HandleDeleter>;

// A fresh engine record with its defaults; CommandError when none can be
// made.
Handle CreateHandle();

// A record loaded from an ".aimhue" file; CommandError naming the file and
// the library's status when it cannot be loaded.
Handle LoadHandle(const std::string& file);

// The target block (AimhueGet).
TargetBlock GetTargets(Aimhue* handle);

// Everything the record stores, read from its buffer image.
EngineImage ReadEngineImage(Aimhue* handle);

}  // namespace tool
}  // namespace aimhue

#endif  // AIMHUE_TOOLS_ENGINE_HANDLE_H_
