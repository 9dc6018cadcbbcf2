// The tool's commands. Each Add...Command registers one subcommand of `app`
// with its options and help; when the command line selects it, it runs and
// stores its exit status in `exit_status`, or throws CommandError.
#ifndef AIMHUE_TOOLS_COMMANDS_H_
#define AIMHUE_TOOLS_COMMANDS_H_

#include <array>
#include <string>
#include <vector>

#include <CLI/App.hpp>
#include <CLI/Validators.hpp>

#include "meter_set.h"

namespace aimhue {
namespace tool {

void AddDemoCommand(CLI::App& app, int& exit_status);
void AddSimulateCommand(CLI::App& app, int& exit_status);
void AddCalibrateCommand(CLI::App& app, int& exit_status);
void AddJudgeCommand(CLI::App& app, int& exit_status);
void AddCorrectCommand(CLI::App& app, int& exit_status);
void AddCoverageCommand(CLI::App& app, int& exit_status);
void AddInspectCommand(CLI::App& app, int& exit_status);

// The --red, --green and --blue options, three .meter files each (X, Y, Z).
struct MeterFileOptions {
  std::array<std::vector<std::string>, 3> files;
  MeterFiles ToMeterFiles() const;
};
void AddMeterFileOptions(CLI::App& command, MeterFileOptions& options);

// Accepts a file name that ends in `extension` (".aimhue") after at least
// one other character; the tool writes the library's formats from their
// buffers, so it checks the name the library's own writer would.
CLI::Validator FileNameEnding(const std::string& extension);

// The help footer's paragraph on the AIMHUE_LOG environment variable.
extern const char* const kEnvironmentHelp;

// Accepts a screen size as ParseScreenSize does; the message of a refusal
// reads "expected <expected>, got '<text>'".
CLI::Validator ScreenSizeText(const std::string& expected);

// The --size option of the commands that generate a screen: WIDTHxHEIGHT
// with at most kMaxScreenLeds LEDs.
CLI::Option* AddScreenSizeOption(CLI::App& command, std::string& size);

// The size of an option checked by ScreenSizeText; CommandError (exit
// status 2) should the text not be a size after all.
ScreenSize ScreenSizeOf(const std::string& text);

// Creates `directory` and its parents when missing; CommandError (exit
// status 4) when that fails.
void MakeDirectory(const std::string& directory);

}  // namespace tool
}  // namespace aimhue

#endif  // AIMHUE_TOOLS_COMMANDS_H_
