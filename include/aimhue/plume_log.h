// plume_log: the library's diagnostic channel.
//
// Every public operation writes its qualified name ("Aimhue::Search") on the
// information channel on entry and one line on the error channel for each
// failure. Lines are printf-style templates formatted with vsnprintf; a line
// of any length is delivered whole.
//
// Where lines go:
//  - By default, to standard error as "[level] text", one line per message,
//    for messages at or above the default sink's level (error by default).
//  - A host may install its own sink with PlumeLogSetSink. The host sink
//    receives every message of every level, exactly as formatted: no prefix,
//    no line end. Passing a null sink restores the default.
//
// Thread safety: logging, installing a sink and changing the level may happen
// from several threads at once. A sink is called with an internal lock held,
// so calls to one sink never overlap, and once PlumeLogSetSink returns the
// previous sink is never called again. A sink must not call PlumeLogSetSink.
#ifndef AIMHUE_PLUME_LOG_H_
#define AIMHUE_PLUME_LOG_H_

#include <aimhue/export.h>

#if defined(__GNUC__)
#define PLUME_PRINTF_FORMAT(fmt, args) __attribute__((format(printf, fmt, args)))
#else
#define PLUME_PRINTF_FORMAT(fmt, args)
#endif

#ifdef __cplusplus
extern "C" {
#endif

// Message levels, as passed to a sink.
enum {
  PLUME_LOG_DEBUG = 0,
  PLUME_LOG_INFO = 1,
  PLUME_LOG_ERROR = 2,
  PLUME_LOG_OFF = 3,  // only as a level for PlumeLogSetLevel: nothing passes
};

typedef void (*PlumeLogSink)(int level, const char* line, void* user);

AIMHUE_EXPORT void PlumeLogDebug(const char* format, ...) PLUME_PRINTF_FORMAT(1, 2);
AIMHUE_EXPORT void PlumeLogInfo(const char* format, ...) PLUME_PRINTF_FORMAT(1, 2);
AIMHUE_EXPORT void PlumeLogError(const char* format, ...) PLUME_PRINTF_FORMAT(1, 2);

// Installs `sink` (called with `user`) for every message; null restores the
// default standard-error sink.
AIMHUE_EXPORT void PlumeLogSetSink(PlumeLogSink sink, void* user);

// Sets the lowest level that the default standard-error sink prints
// (PLUME_LOG_DEBUG .. PLUME_LOG_OFF; other values are clamped into that
// range). It has no effect on a host sink. Default: PLUME_LOG_ERROR.
AIMHUE_EXPORT void PlumeLogSetLevel(int level);
AIMHUE_EXPORT int PlumeLogGetLevel(void);

// Parses a level name: "debug", "info", "error" or "off" (lower case).
// Returns 1 and stores the level in *level on success; returns 0 and leaves
// *level untouched for a null or unknown name.
AIMHUE_EXPORT int PlumeLogParseLevel(const char* name, int* level);

// Sets the default sink's level from the environment variable AIMHUE_LOG
// (a name as for PlumeLogParseLevel). The library never reads the
// environment by itself; the aimhue tool and the examples call this at start.
// Returns 1 when the variable is unset or valid, 0 when it holds an unknown
// name (the level is then left as it was).
AIMHUE_EXPORT int PlumeLogUseEnvironment(void);

#ifdef __cplusplus
}  // extern "C"
#endif

#endif  // AIMHUE_PLUME_LOG_H_
