// Symbol visibility for the aimhue shared library.
//
// The library is compiled with hidden visibility; only declarations marked
// AIMHUE_EXPORT (and listed by the linker version script) reach the dynamic
// symbol table.
#ifndef AIMHUE_EXPORT_H_
#define AIMHUE_EXPORT_H_

#if defined(_WIN32)
#define AIMHUE_EXPORT
#else
#define AIMHUE_EXPORT __attribute__((visibility("default")))
#endif

#endif  // AIMHUE_EXPORT_H_
