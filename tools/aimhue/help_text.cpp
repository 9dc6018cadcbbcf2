// Wrapping of help texts.
#include "help_text.h"

#include <sstream>

namespace aimhue {
namespace tool {
namespace {

std::string WrapLine(const std::string& line, std::size_t width) {
  std::istringstream words(line);
  std::string word;
  std::string wrapped;
  std::size_t column = 0;
  while (words >> word) {
    if (column > 0 && column + 1 + word.size() > width) {
      wrapped += '\n';
      column = 0;
    } else if (column > 0) {
      wrapped += ' ';
      ++column;
    }
    wrapped += word;
    column += word.size();
  }
  return wrapped;
}

}  // namespace

std::string WrapText(const std::string& text, std::size_t width) {
  std::string wrapped;
  std::size_t start = 0;
  while (true) {
    const std::size_t end = text.find('\n', start);
    wrapped += WrapLine(text.substr(start, end - start), width);
    if (end == std::string::npos) break;
    wrapped += '\n';
    start = end + 1;
  }
  return wrapped;
}

std::string FirstLine(const std::string& text) { return text.substr(0, text.find('\n')); }

}  // namespace tool
}  // namespace aimhue
