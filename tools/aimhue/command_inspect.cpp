// aimhue inspect: what a result, meter or capture file holds.
#include <algorithm>
#include <iostream>
#include <limits>
#include <memory>
#include <optional>

#include "command_error.h"
#include "commands.h"
#include "correction_inspection.h"
#include "file_inspection.h"
#include "output_files.h"

namespace aimhue {
namespace tool {
namespace {

struct InspectOptions {
  std::vector<std::string> files;
  bool json = false;
  std::vector<int> led;  // row and column for .corr files; empty when not given
};

// One LED of a correction file; other kinds of file have no LEDs to show.
ReportJson InspectLedOf(const std::string& file, const LedPosition& led) {
  if (file.size() <= 5 || file.compare(file.size() - 5, 5, ".corr") != 0) {
    throw CommandError(kExitUsage, "--led applies to .corr files only");
  }
  return InspectCorrection(file, led);
}

int RunInspect(const InspectOptions& options) {
  std::optional<LedPosition> led;
  if (options.led.size() == 2) led = LedPosition{options.led[0], options.led[1]};
  int exit_status = kExitOk;
  ReportJson all = ReportJson::array();
  for (const std::string& file : options.files) {
    try {
      const ReportJson json = led ? InspectLedOf(file, *led) : InspectFile(file);
      if (options.json) {
        all.push_back(json);
      } else {
        PrintInspection(std::cout, json);
      }
    } catch (const CommandError& error) {
      std::cerr << "aimhue inspect: " << file << ": " << error.what() << "\n";
      exit_status = std::max(exit_status, error.exit_status());
      if (options.json) all.push_back({{"file", file}, {"error", error.what()}});
    }
  }
  if (options.json) std::cout << JsonText(all);
  return exit_status;
}

}  // namespace

void AddInspectCommand(CLI::App& app, int& exit_status) {
  auto options = std::make_shared<InspectOptions>();
  CLI::App* command = app.add_subcommand(
      "inspect",
      "Show what result, meter, capture and correction files hold.\n\n"
      "For a .aimhue file: the interpolation fractions, the NG limit, the targets and both"
      " search results. For a .meter file: colour and type, the size and element type of its"
      " planes, statistics of its values (minimum, maximum and mean of the finite values, zero"
      " and non-finite counts), the LEDs marked dead in its state plane, and its partition, LED"
      " panel, layer and capture records. For a .shot file: its type, the image's size, element"
      " type and statistics, and its colour, partition, LED panel, layer, capture, pattern and"
      " device records. For a .corr file: its size, settings, scale k, scaled targets, flag"
      " counts and the white CIEDE2000 before and after; with --led, one LED's 3 x 3"
      " coefficients, flags, gain and colour differences. Every file is inspected even when an"
      " earlier one fails.");
  command->add_option("files", options->files, "Files to inspect.")
      ->required()
      ->type_name("FILE...");
  command->add_flag("--json", options->json,
                    "Print one JSON array with an object per file instead of text; a file that"
                    " cannot be read gives an object with an \"error\" text.");
  command
      ->add_option("--led", options->led,
                   "For .corr files: show the LED at this row and column (from 0) instead of"
                   " the whole screen.")
      ->delimiter(',')
      ->type_size(2)  // one position of two numbers
      ->expected(1)
      ->allow_extra_args(false)  // the files that follow are not LED positions
      ->check(CLI::Range(0, std::numeric_limits<int>::max()).description(""))
      ->type_name("ROW,COL");
  command->footer(
      "Examples:\n"
      "  aimhue inspect result.aimhue meters/red_X.meter\n"
      "  aimhue inspect --json meters/*.meter > meters.json\n"
      "  aimhue inspect --led 12,40 screen.corr\n\n"
      "Exit status:\n"
      "  0  every file was inspected\n"
      "  2  a file name without a known extension, or an LED outside the screen\n"
      "  3  a file could not be loaded (the message names the file and the status)\n"
      "  The highest status of all files is returned.");
  command->callback([options, &exit_status] { exit_status = RunInspect(*options); });
}

}  // namespace tool
}  // namespace aimhue
