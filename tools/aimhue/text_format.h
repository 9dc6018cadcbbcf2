// printf-style formatting into a std::string, for the tool's text reports.
#ifndef AIMHUE_TOOLS_TEXT_FORMAT_H_
#define AIMHUE_TOOLS_TEXT_FORMAT_H_

#include <string>

namespace aimhue {
namespace tool {

// The text std::snprintf makes of `format` and the arguments, cut at 511
// characters (a report line is far shorter).
std::string Format(const char* format, ...) __attribute__((format(printf, 1, 2)));

}  // namespace tool
}  // namespace aimhue

#endif  // AIMHUE_TOOLS_TEXT_FORMAT_H_
