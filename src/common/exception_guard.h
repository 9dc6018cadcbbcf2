// The boundary between the library and its callers: nothing is thrown
// across it. OpenCV reports exhausted memory, violated preconditions and
// element types it does not handle by throwing; every public operation runs
// its work through one of the guards below so that such a failure becomes a
// status (or the operation's own failure value) and one log line
// "<who>--Error :: exception: <what>".
//
// An operation that changes its outputs in several steps computes the new
// content first and stores it last, so that an exception leaves them as
// they were.
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

// Returns body(); an exception is caught, logged and reported as `failed`
// (an empty matrix or false for the readers that report failure so).
template <typename Result, typename Body>
Result GuardExceptionsOr(const char* who, Result failed, Body&& body) noexcept {
  try {
    return std::forward<Body>(body)();
  } catch (const std::exception& error) {
    PlumeLogError("%s--Error :: exception: %s", who, error.what());
  } catch (...) {
    PlumeLogError("%s--Error :: exception: unknown", who);
  }
  return failed;
}

// Returns body(), a status; an exception becomes kExceptionStatus.
template <typename Body>
int GuardExceptions(const char* who, Body&& body) noexcept {
  return GuardExceptionsOr(who, kExceptionStatus, std::forward<Body>(body));
}

// For the operations that report no status: an exception is only logged.
template <typename Body>
void GuardExceptionsQuietly(const char* who, Body&& body) noexcept {
  GuardExceptionsOr(who, 0, [&] {
    body();
    return 0;
  });
}

}  // namespace aimhue

#endif  // AIMHUE_SRC_COMMON_EXCEPTION_GUARD_H_
