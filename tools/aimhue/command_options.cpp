// Options and helpers shared by several commands.
#include <filesystem>
#include <system_error>

#include "command_error.h"
#include "commands.h"

namespace aimhue {
namespace tool {

const char* const kEnvironmentHelp =
    "Environment:\n"
    "  AIMHUE_LOG=debug|info|error|off  what the library logs on standard error\n"
    "                                   (default: error)";

MeterFiles MeterFileOptions::ToMeterFiles() const {
  MeterFiles names;
  for (int p = 0; p < 3; ++p) {
    for (int c = 0; c < 3; ++c) names[p][c] = files[p].at(c);
  }
  return names;
}

void AddMeterFileOptions(CLI::App& command, MeterFileOptions& options) {
  const char* const names[3] = {"--red", "--green", "--blue"};
  const char* const primaries[3] = {"red", "green", "blue"};
  for (int p = 0; p < 3; ++p) {
    command
        .add_option(names[p], options.files[p],
                    std::string("The ") + primaries[p] +
                        " primary's CIE X, Y and Z meter files, in that order.")
        ->expected(3)
        ->required()
        ->type_name("FILE");
  }
}

CLI::Validator FileNameEnding(const std::string& extension) {
  return CLI::Validator(
      [extension](std::string& name) {
        const bool ends = name.size() > extension.size() &&
                          name.compare(name.size() - extension.size(), extension.size(),
                                       extension) == 0;
        return ends ? std::string() : "the file name must end in " + extension;
      },
      "", "file name ending in " + extension);
}

CLI::Validator ScreenSizeText(const std::string& expected) {
  return CLI::Validator(
      [expected](std::string& text) {
        return ParseScreenSize(text) ? std::string()
                                     : "expected " + expected + ", got '" + text + "'";
      },
      "", "screen size WIDTHxHEIGHT");
}

CLI::Option* AddScreenSizeOption(CLI::App& command, std::string& size) {
  return command.add_option("--size", size, "Screen size in LEDs, WIDTHxHEIGHT.")
      ->check(ScreenSizeText("WIDTHxHEIGHT with at most " + std::to_string(kMaxScreenLeds) +
                             " LEDs"))
      ->type_name("WxH");
}

ScreenSize ScreenSizeOf(const std::string& text) {
  const auto size = ParseScreenSize(text);
  if (!size) throw CommandError(kExitUsage, "expected WIDTHxHEIGHT, got '" + text + "'");
  return *size;
}

void MakeDirectory(const std::string& directory) {
  std::error_code error;
  std::filesystem::create_directories(directory, error);
  if (error || !std::filesystem::is_directory(directory)) {
    throw CommandError(kExitOutput, "cannot create the directory '" + directory + "'" +
                                        (error ? ": " + error.message() : std::string()));
  }
}

}  // namespace tool
}  // namespace aimhue
