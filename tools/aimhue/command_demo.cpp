// aimhue demo: calibrate a synthetic screen from start to end.
#include <synthetic/synthetic_screen.h>

#include <filesystem>
#include <iostream>
#include <memory>

#include "calibration.h"
#include "command_error.h"
#include "commands.h"
#include "correction_run.h"
#include "output_files.h"

namespace aimhue {
namespace tool {
namespace {

struct DemoOptions {
  std::string size = "1920x1080";
  uint64_t seed = 1;
  std::string out = "aimhue-demo";
  CalibrationOptionText calibration;
};

int RunDemo(const DemoOptions& options) {
  const ScreenSize size = ScreenSizeOf(options.size);
  const CalibrationSettings settings = ParseCalibrationSettings(options.calibration);
  MakeDirectory(options.out);
  const std::filesystem::path folder(options.out);
  const std::string result_file = (folder / "result.aimhue").string();
  const std::string json_file = (folder / "report.json").string();
  const std::string plot_file = (folder / "gamut.png").string();

  synthetic::ScreenOptions screen;
  screen.cols = size.cols;
  screen.rows = size.rows;
  screen.seed = options.seed;
  std::vector<TimedStep> generation;
  synthetic::ScreenMeters meters;
  Timed(generation, "generate screen", [&] { meters = synthetic::GenerateMeters(screen); });
  MeasuredScreen measured;
  Timed(generation, "dead LEDs, combine", [&] {
    measured = MeasureScreen([&](int primary) { return std::move(meters[primary]); },
                             !settings.keepDead, kPlottedLedsPerPrimary);
  });
  Calibration calibration = Calibrate(measured, settings);
  CalibrationReport& report = calibration.report;
  report.source = "synthetic screen " + std::to_string(size.cols) + " x " +
                  std::to_string(size.rows) + ", seed " + std::to_string(options.seed);
  report.timings.insert(report.timings.begin(), generation.begin(), generation.end());
  WriteCalibrationOutputs(calibration, measured, {result_file, plot_file, json_file});
  PrintCalibrationReport(std::cout, report);
  // The calibration freed its meters one primary at a time; the correction
  // needs all nine at once, so the same screen is generated again (the
  // generator is deterministic in its seed; its dead LEDs are skipped).
  const Meters again = synthetic::GenerateMeters(screen);
  CorrectDemoScreen(again, report.targets, report.source, options.out, std::cout);
  return kExitOk;
}

}  // namespace

void AddDemoCommand(CLI::App& app, int& exit_status) {
  auto options = std::make_shared<DemoOptions>();
  CLI::App* command = app.add_subcommand(
      "demo",
      "Generate a synthetic screen and calibrate it from start to end.\n\n"
      "Builds the CIE X, Y and Z meters of a synthetic LED screen (per-panel and per-LED spread"
      " of chromaticity and luminance, a few outlier LEDs and three dead LEDs, all from one"
      " seed), repairs the dead LEDs, runs the library's whole calling order (target search,"
      " interpolation fractions, white point, coverage, NG limit and judgement), prints the"
      " report and writes result.aimhue, report.json and gamut.png into the output directory."
      " Then corrects every LED to the targets, prints the correction's report and writes"
      " correction.corr and the map correction_map.png.");
  AddScreenSizeOption(*command, options->size)->capture_default_str();
  command->add_option("--seed", options->seed, "Seed of the synthetic screen; a seed always gives"
                                               " the same screen.")
      ->capture_default_str()
      ->type_name("N");
  command->add_option("--out", options->out, "Directory for the three output files; created when"
                                             " missing.")
      ->capture_default_str()
      ->type_name("DIR");
  AddCalibrationOptions(*command, options->calibration);
  command->footer(
      "Examples:\n"
      "  aimhue demo\n"
      "  aimhue demo --size 320x180 --seed 7 --out /tmp/demo --white D93\n"
      "  aimhue demo --white 6500K\n\n"
      "Exit status:\n"
      "  0  the screen was calibrated and the files written\n"
      "  2  a bad option value\n"
      "  3  the library refused a step (the message names it and the status)\n"
      "  4  an output file or the directory could not be written");
  command->callback([options, &exit_status] { exit_status = RunDemo(*options); });
}

}  // namespace tool
}  // namespace aimhue
