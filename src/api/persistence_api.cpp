// The exported persistence functions: the engine's 169-byte image through
// files and caller buffers.
#include <aimhue/api.h>
#include <aimhue/status.h>

#include <string>

#include "common/exception_guard.h"
#include "engine/aimhue.h"

extern "C" {

int AimhueSave(AimhueHandle handle, const char* filename) {
  if (handle == nullptr || filename == nullptr) return aimhue::kNullInput;
  return aimhue::GuardExceptions("AimhueSave",
                                 [&] { return handle->Save(std::string(filename)); });
}

int AimhueLoad(AimhueHandle handle, const char* filename) {
  if (handle == nullptr || filename == nullptr) return aimhue::kNullInput;
  return aimhue::GuardExceptions("AimhueLoad",
                                 [&] { return handle->Load(std::string(filename)); });
}

int AimhueToBuffer(AimhueHandle handle, char* buffer, uint64_t* size) {
  if (handle == nullptr) return aimhue::kNullInput;
  return handle->ToBuffer(buffer, size);
}

int AimhueFromBuffer(AimhueHandle handle, const char* buffer, int64_t size) {
  if (handle == nullptr) return aimhue::kNullInput;
  return handle->FromBuffer(buffer, size);
}

int AimhueGetBufferSize(AimhueHandle handle, uint64_t* size) {
  if (handle == nullptr) return aimhue::kNullInput;
  return handle->GetBufferSize(size);
}

}  // extern "C"
