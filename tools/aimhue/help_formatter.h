// The tool's help layout: descriptions and option texts wrapped for an
// 80-column terminal, and only a command's first line in the list of
// commands.
#ifndef AIMHUE_TOOLS_HELP_FORMATTER_H_
#define AIMHUE_TOOLS_HELP_FORMATTER_H_

#include <sstream>
#include <string>

#include <CLI/CLI.hpp>

#include "help_text.h"

namespace aimhue {
namespace tool {

class HelpFormatter : public CLI::Formatter {
 public:
  static constexpr std::size_t kTerminalWidth = 80;

  std::string make_description(const CLI::App* app) const override {
    const std::string description = app->get_description();
    return description.empty() ? std::string() : WrapText(description, kTerminalWidth) + "\n\n";
  }

  std::string make_option_desc(const CLI::Option* option) const override {
    return WrapText(option->get_description(), kTerminalWidth - get_column_width() - 2);
  }

  std::string make_subcommand(const CLI::App* command) const override {
    std::stringstream out;
    CLI::detail::format_help(out, command->get_display_name(true),
                             FirstLine(command->get_description()), get_column_width());
    return out.str();
  }
};

}  // namespace tool
}  // namespace aimhue

#endif  // AIMHUE_TOOLS_HELP_FORMATTER_H_
