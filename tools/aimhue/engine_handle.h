// An engine handle and a screen owned by the tool, and the reads the
// commands make from them through the public interface.
#ifndef AIMHUE_TOOLS_ENGINE_HANDLE_H_
#define AIMHUE_TOOLS_ENGINE_HANDLE_H_

#include <aimhue/api.h>
#include <aimhue/screen.h>

#include <memory>
#include <string>

#include "report.h"

namespace aimhue {
namespace tool {

struct HandleDeleter {
  void operator()(Aimhue* handle) const { AimhueDestroyHandle(handle); }
};
using Handle = std::unique_ptr<Aimhue, HandleDeleter>;

struct ScreenDeleter {
  void operator()(aimhue::Screen* screen) const { AimhueDestroyScreen(screen); }
};
using ScreenHandle = std::unique_ptr<aimhue::Screen, ScreenDeleter>;

// A fresh engine record with its defaults; CommandError when none can be
// made.
Handle CreateHandle();

// A record loaded from an ".aimhue" file; CommandError naming the file and
// the library's status when it cannot be loaded.
Handle LoadHandle(const std::string& file);

// An empty screen; CommandError when none can be made.
ScreenHandle CreateScreen();

// Everything the record holds (AimhueGetResults).
AimhueResults GetResults(Aimhue* handle);

// A block of four points as the tool's reports take it.
TargetBlock ToBlock(const TargetLxy (&points)[4]);

}  // namespace tool
}  // namespace aimhue

#endif  // AIMHUE_TOOLS_ENGINE_HANDLE_H_
