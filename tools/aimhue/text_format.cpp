// printf-style formatting into a std::string.
#include "text_format.h"

#include <cstdarg>
#include <cstdio>

namespace aimhue {
namespace tool {

std::string Format(const char* format, ...) {
  char line[512];
  va_list args;
  va_start(args, format);
  std::vsnprintf(line, sizeof line, format, args);
  va_end(args);
  return line;
}

}  // namespace tool
}  // namespace aimhue
