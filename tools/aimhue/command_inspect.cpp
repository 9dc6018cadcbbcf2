// aimhue inspect: what a result, meter or capture file holds.
#include <algorithm>
#include <iostream>
#include <memory>

#include "command_error.h"
#include "commands.h"
#include "file_inspection.h"
#include "output_files.h"

namespace aimhue {
namespace tool {
namespace {

struct InspectOptions {
  std::vector<std::string> files;
  bool json = false;
};

int RunInspect(const InspectOptions& options) {
  int exit_status = kExitOk;
  ReportJson all = ReportJson::array();
  for (const std::string& file : options.files) {
    try {
      const ReportJson json = InspectFile(file);
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
      "Show what result, meter and capture files hold.\n\n"
      "For a .aimhue file: the interpolation fractions, the NG limit, the targets and both"
      " search results. For a .meter file: colour and type, the size and element type of its"
      " planes, statistics of its values (minimum, maximum and mean of the finite values, zero"
      " and non-finite counts), the LEDs marked dead in its state plane, and its partition, LED"
      " panel, layer and capture records. For a .shot file: its type, the image's size, element"
      " type and statistics, and its colour, partition, LED panel, layer, capture, pattern and"
      " device records. Every file is inspected even when an earlier one fails.");
  command->add_option("files", options->files, "Files to inspect.")
      ->required()
      ->type_name("FILE...");
  command->add_flag("--json", options->json,
                    "Print one JSON array with an object per file instead of text; a file that"
                    " cannot be read gives an object with an \"error\" text.");
  command->footer(
      "Examples:\n"
      "  aimhue inspect result.aimhue meters/red_X.meter\n"
      "  aimhue inspect --json meters/*.meter > meters.json\n\n"
      "Exit status:\n"
      "  0  every file was inspected\n"
      "  2  a file name without a known extension\n"
      "  3  a file could not be loaded (the message names the file and the status)\n"
      "  The highest status of all files is returned.");
  command->callback([options, &exit_status] { exit_status = RunInspect(*options); });
}

}  // namespace tool
}  // namespace aimhue
