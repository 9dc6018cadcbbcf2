// The boundary between the library and its callers: nothing is thrown
// across it. OpenCV reports exhausted memory and violated preconditions by
// throwing; operations that allocate on the caller's behalf run their work
// through GuardExceptions so that such a failure becomes a status and a log
// line.
#ifndef AIMHUE_SRC_COMMON_EXCEPTION_GUARD_H_
#define AIMHUE_SRC_COMMON_EXCEPTION_GUARD_H_

#include <aimhue/plume_log.h>
#include <aimhue/status.h>

#include <exception>
#include <utility>

namespace aimhue {

// The status of an operation that an exception stopped (out of memory,
// for one): the inputs were too large or otherwise unusable.
constexpr int kExceptionStatus = kOutOfRange;

// Returns body(); an exception is caught, logged as
// "<who>--Error :: exception: <what>" and reported as kExceptionStatus.
template <typename Body>
int GuardExceptions(const char* who, Body&& body) noexcept {
  try {
    return std::forward<Body>(body)();
  } catch (const std::exception& error) {
    PlumeLogError("%s--Error :: exception: %s", who, error.what());
  } catch (...) {
    PlumeLogError("%s--Error :: exception: unknown", who);
  }
  return kExceptionStatus;
}

}  // namespace aimhue

#endif  // AIMHUE_SRC_COMMON_EXCEPTION_GUARD_H_
