// Layout of the help texts: the command descriptions and option texts are
// written as plain paragraphs and wrapped for an 80-column terminal here.
#ifndef AIMHUE_TOOLS_HELP_TEXT_H_
#define AIMHUE_TOOLS_HELP_TEXT_H_

#include <cstddef>
#include <string>

namespace aimhue {
namespace tool {

// Breaks every line of `text` at blanks so that no line is longer than
// `width` characters (a single word longer than that stays whole). Existing
// line ends, and so blank lines between paragraphs, are kept.
std::string WrapText(const std::string& text, std::size_t width);

// The text up to its first line end: a command's one-line summary.
std::string FirstLine(const std::string& text);

}  // namespace tool
}  // namespace aimhue

#endif  // AIMHUE_TOOLS_HELP_TEXT_H_
