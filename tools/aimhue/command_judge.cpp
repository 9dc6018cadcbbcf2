// aimhue judge and aimhue coverage: stored targets against a measurement.
#include <aimhue/picture_files.h>
#include <aimhue/api.h>

#include <cmath>
#include <iostream>
#include <memory>

#include <opencv2/imgcodecs.hpp>  // the read flags

#include "command_error.h"
#include "commands.h"
#include "coverage_count.h"
#include "engine_handle.h"
#include "output_files.h"
#include "output_transaction.h"

namespace aimhue {
namespace tool {
namespace {

struct JudgeOptions {
  std::string targets;  // the .aimhue file
  std::string mask;     // coverage only
  MeterFileOptions meters;
  std::string json;
};

cv::Mat ReadMask(const std::string& file) {
  const cv::Mat mask = ReadPictureFile(file, cv::IMREAD_UNCHANGED);
  if (mask.empty()) throw CommandError(kExitLibrary, "cannot read the mask image '" + file + "'");
  return mask;
}

// Refuses stored results that cannot count or judge anything: targets that
// are not finite reach no LED or every LED by accident, and a NaN limit
// passes every screen. A negative limit is what a threshold above the
// calibrated coverage gives; it is legal but passes every screen too.
void CheckStoredResults(const std::string& file, const TargetBlock& targets, float ng_limit,
                        bool judge) {
  if (!TargetsFinite(targets)) {
    throw CommandError(kExitLibrary, "the results '" + file + "' hold targets that are not"
                                     " finite: they cannot be counted or judged");
  }
  if (!judge) return;
  if (!std::isfinite(ng_limit)) {
    throw CommandError(kExitLibrary, "the results '" + file + "' hold an NG limit that is not"
                                     " finite (" + FloatText(ng_limit) + "): it cannot judge");
  }
  if (ng_limit < 0.0f) {
    std::cerr << "aimhue judge: warning: the NG limit " << FloatText(ng_limit) << " of '" << file
              << "' is negative: every measurement passes it\n";
  }
}

CoverageReport MeasureCoverage(const JudgeOptions& options, bool judge) {
  const MeterFiles files = options.meters.ToMeterFiles();
  const Handle handle = LoadHandle(options.targets);
  const AimhueResults results = GetResults(handle.get());
  CoverageReport report;
  report.targets = ToBlock(results.targets);
  if (judge) report.ngLimit = results.ngLimit;
  CheckStoredResults(options.targets, report.targets, report.ngLimit, judge);
  const cv::Mat mask = options.mask.empty() ? cv::Mat() : ReadMask(options.mask);
  // Dead LEDs are counted, not repaired: a dead LED reaches no target.
  const MeasuredScreen measured =
      MeasureScreen([&](int primary) { return LoadPrimary(files, primary); }, false, 0);
  report.source = DescribeMeterFiles(files);
  report.targetsFile = options.targets;
  report.maskFile = options.mask;
  report.screen = measured.size;
  report.deadLeds = measured.dead.found;
  if (judge) {
    // One count gives both the coverage and the verdict.
    bool ng = true;
    CheckStatus(AimhueJudgeNGScreen(handle.get(), measured.screen.get(), &ng, &report.coverage),
                "the NG judgement refused the meters");
    report.judged = true;
    report.ng = ng;
  } else {
    report.coverage = CountCoverage(measured.screen.get(), report.targets, mask);
  }
  return report;
}

int RunCoverageOrJudge(const JudgeOptions& options, bool judge) {
  const CoverageReport report = MeasureCoverage(options, judge);
  if (!options.json.empty()) {
    OutputTransaction outputs;
    outputs.Add(options.json, JsonText(CoverageReportJson(report)));
    outputs.Commit();
  }
  PrintCoverageReport(std::cout, report);
  return judge && report.ng ? kExitNg : kExitOk;
}

}  // namespace

void AddJudgeCommand(CLI::App& app, int& exit_status) {
  auto options = std::make_shared<JudgeOptions>();
  CLI::App* command = app.add_subcommand(
      "judge",
      "Judge a measurement against stored results: pass or NG.\n\n"
      "Loads the results of an earlier `calibrate` (targets and NG limit) and the nine meter"
      " files of a new measurement, counts the share of LEDs whose own gamut holds each stored"
      " target, and reports NG when the share holding all three lies below the stored NG limit."
      " Dead LEDs are counted and reported but not repaired: they reach no target.");
  command->add_option("result", options->targets, "The results file written by `calibrate`.")
      ->required()
      ->type_name("RESULT.aimhue");
  AddMeterFileOptions(*command, options->meters);
  command->add_option("--json", options->json, "Also write the verdict as JSON to this file.")
      ->type_name("FILE");
  command->footer(std::string("Examples:\n"
                              "  aimhue judge screen.aimhue --red r_X.meter r_Y.meter r_Z.meter \\\n"
                              "      --green g_X.meter g_Y.meter g_Z.meter --blue b_X.meter \\\n"
                              "      b_Y.meter b_Z.meter && echo pass\n\n"
                              "Exit status:\n"
                              "  0  pass\n"
                              "  1  NG: the coverage of all three targets is below the limit\n"
                              "  2  a missing or bad option value\n"
                              "  3  a file could not be loaded or the library refused it\n"
                              "  4  the JSON report could not be written\n\n") +
                  kEnvironmentHelp);
  command->callback([options, &exit_status] { exit_status = RunCoverageOrJudge(*options, true); });
}

void AddCoverageCommand(CLI::App& app, int& exit_status) {
  auto options = std::make_shared<JudgeOptions>();
  CLI::App* command = app.add_subcommand(
      "coverage",
      "Count the coverage of stored targets on a measurement.\n\n"
      "Loads the targets of an earlier `calibrate` and the nine meter files of a measurement and"
      " reports, for the red, the green and the blue target and for all three at once, the"
      " share of LEDs whose own red-green-blue gamut holds the target. A mask restricts the"
      " count to a region.");
  command->add_option("--targets", options->targets, "The results file written by `calibrate`.")
      ->required()
      ->type_name("RESULT.aimhue");
  command->add_option("--mask", options->mask,
                      "An 8-bit single-channel image (PNG, ...) of the screen's size in LEDs: 0"
                      " leaves an LED out of the count, any other value counts it.")
      ->type_name("MASK.png");
  AddMeterFileOptions(*command, options->meters);
  command->add_option("--json", options->json, "Also write the coverage as JSON to this file.")
      ->type_name("FILE");
  command->footer(std::string("Examples:\n"
                              "  aimhue coverage --targets screen.aimhue --mask centre.png \\\n"
                              "      --red r_X.meter r_Y.meter r_Z.meter --green g_X.meter \\\n"
                              "      g_Y.meter g_Z.meter --blue b_X.meter b_Y.meter b_Z.meter\n\n"
                              "Exit status:\n"
                              "  0  counted\n"
                              "  2  a missing or bad option value\n"
                              "  3  a file could not be loaded or the library refused it (for\n"
                              "     example a mask of another size: status 9)\n"
                              "  4  the JSON report could not be written\n\n") +
                  kEnvironmentHelp);
  command->callback([options, &exit_status] { exit_status = RunCoverageOrJudge(*options, false); });
}

}  // namespace tool
}  // namespace aimhue
