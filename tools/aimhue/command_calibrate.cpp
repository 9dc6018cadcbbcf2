// aimhue calibrate: the whole calling order on measured meter files.
#include <iostream>
#include <memory>

#include "calibration.h"
#include "command_error.h"
#include "commands.h"
#include "output_files.h"

namespace aimhue {
namespace tool {
namespace {

struct CalibrateOptions {
  MeterFileOptions meters;
  CalibrationOptionText calibration;
  std::string result = "result.aimhue";
  std::string json;
  std::string plot;
};

int RunCalibrate(const CalibrateOptions& options) {
  const CalibrationSettings settings = ParseCalibrationSettings(options.calibration);
  const MeterFiles files = options.meters.ToMeterFiles();
  std::vector<TimedStep> loading;
  MeasuredScreen measured;
  Timed(loading, "load meters, dead LEDs, combine", [&] {
    measured = MeasureScreen([&](int primary) { return LoadPrimary(files, primary); },
                             !settings.keepDead, kPlottedLedsPerPrimary);
  });
  Calibration calibration = Calibrate(measured, settings);
  CalibrationReport& report = calibration.report;
  report.source = DescribeMeterFiles(files);
  report.timings.insert(report.timings.begin(), loading.begin(), loading.end());
  WriteCalibrationOutputs(calibration, measured, {options.result, options.plot, options.json});
  PrintCalibrationReport(std::cout, report);
  return kExitOk;
}

}  // namespace

void AddCalibrateCommand(CLI::App& app, int& exit_status) {
  auto options = std::make_shared<CalibrateOptions>();
  CLI::App* command = app.add_subcommand(
      "calibrate",
      "Find the calibration targets of a measured screen.\n\n"
      "Loads the nine meter files (X, Y and Z of red, green and blue), repairs dead LEDs (see"
      " --keep-dead), then runs the target search with the required coverage, places the"
      " targets with the interpolation fractions, solves the white point gains, counts the"
      " coverage of the targets, stores the NG limit and judges the same measurement against"
      " it. Saves the engine's results (targets, NG limit, both search results) to the result"
      " file and prints the report; optionally writes it as JSON and draws the gamut plot.");
  AddMeterFileOptions(*command, options->meters);
  AddCalibrationOptions(*command, options->calibration);
  command->add_option("-o,--output", options->result, "Result file for the engine's results;"
                                                      " the name must end in .aimhue.")
      ->capture_default_str()
      ->check(FileNameEnding(".aimhue"))
      ->type_name("FILE.aimhue");
  command->add_option("--json", options->json, "Also write the report as JSON to this file.")
      ->type_name("FILE");
  command->add_option("--plot", options->plot, "Also draw the gamut plot into this PNG file.")
      ->check(FileNameEnding(".png"))
      ->type_name("FILE.png");
  command->footer(std::string(
      "Examples:\n"
      "  aimhue calibrate --red r_X.meter r_Y.meter r_Z.meter --green g_X.meter g_Y.meter \\\n"
      "      g_Z.meter --blue b_X.meter b_Y.meter b_Z.meter -o screen.aimhue --plot gamut.png\n"
      "  aimhue calibrate ... --percent-end 0.98,0.98,0.97,0.95 --fraction 0.8,0.8,0.8,1 \\\n"
      "      --white D93 --scale 0.9 --ng-thresh 0.05 --json report.json\n\n"
      "Exit status:\n"
      "  0  calibrated; the result file was written\n"
      "  2  a missing or bad option value\n"
      "  3  a meter file could not be loaded or the library refused the meters\n"
      "     (the message names the file or step and the library's status)\n"
      "  4  the result, the JSON report or the plot could not be written\n\n") +
                  kEnvironmentHelp);
  command->callback([options, &exit_status] { exit_status = RunCalibrate(*options); });
}

}  // namespace tool
}  // namespace aimhue
