// aimhue correct: the per-LED correction of a measured screen to stored
// targets, with its predicted uniformity.
#include <filesystem>
#include <iostream>
#include <memory>
#include <optional>
#include <sstream>

#include <opencv2/imgcodecs.hpp>  // the codecs' parameter names

#include "command_error.h"
#include "commands.h"
#include "correction_export.h"
#include "correction_run.h"
#include "engine_handle.h"
#include "output_files.h"
#include "panel_table.h"

namespace aimhue {
namespace tool {
namespace {

constexpr int kMaxWorstLeds = 1000000;
constexpr int kTiffUncompressed = 1;  // the TIFF compression tag's value for none

struct CorrectOptions {
  std::string targets;  // the .aimhue file
  MeterFileOptions meters;
  std::string quantile = "0.999";
  std::string mode = "chroma";
  int bits = 0;
  std::string panel;
  std::string output = "correction.corr";
  std::string exportDirectory;
  std::string json;
  std::string panels;
  int worst = 0;
  std::string map;
};

bool EndsWith(const std::string& text, const std::string& end) {
  return text.size() > end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

// Every option checked before anything is loaded or computed, so that a
// typing error costs no time and writes nothing.
CorrectionSettings ParseCorrectionSettings(const CorrectOptions& options) {
  CorrectionSettings settings;
  const auto quantile = ParseFloat(options.quantile);
  if (!quantile || !(*quantile > 0.0f && *quantile <= 1.0f)) {
    throw CommandError(kExitUsage,
                       "--quantile: expected a number in (0, 1], got '" + options.quantile + "'");
  }
  settings.quantile = *quantile;
  settings.mode = options.mode == "brightness" ? CorrectionMode::Brightness : CorrectionMode::Chroma;
  settings.bits = options.bits;
  if (!EndsWith(options.output, ".corr")) {
    throw CommandError(kExitUsage, "-o: the correction file's name must end in .corr, got '" +
                                       options.output + "'");
  }
  if (!options.map.empty() && !EndsWith(options.map, ".png")) {
    throw CommandError(kExitUsage, "--map: the picture's name must end in .png, got '" +
                                       options.map + "'");
  }
  if (!options.exportDirectory.empty() && std::filesystem::exists(options.exportDirectory) &&
      !std::filesystem::is_directory(options.exportDirectory)) {
    throw CommandError(kExitOutput, "--export: '" + options.exportDirectory +
                                        "' exists and is not a directory");
  }
  return settings;
}

// The --panel option; empty when not given.
std::optional<ScreenSize> ParsePanelOption(const CorrectOptions& options) {
  if (options.panel.empty()) return std::nullopt;
  return ScreenSizeOf(options.panel);
}

int RunCorrect(const CorrectOptions& options) {
  const CorrectionSettings settings = ParseCorrectionSettings(options);
  const std::optional<ScreenSize> panel = ParsePanelOption(options);
  const MeterFiles files = options.meters.ToMeterFiles();
  std::vector<TimedStep> timings;
  TargetBlock targets{};
  Meters meters;
  Timed(timings, "load", [&] {
    targets = GetTargets(LoadHandle(options.targets).get());
    meters = LoadMeters(files);
  });
  Correction correction;
  Timed(timings, "correction", [&] {
    correction = ComputeCorrection(meters, targets, settings, "'" + options.targets + "'");
  });
  CorrectionReport report;
  Timed(timings, "statistics", [&] {
    report = MakeCorrectionReport(correction, meters);
    report.worst = WorstLeds(correction, options.worst);
  });
  report.source = DescribeMeterFiles(files);
  report.targetsFile = options.targets;
  report.panel = panel ? *panel : MeterPanelSize(meters);
  report.timings = timings;
  meters = Meters{};  // every figure is taken: the outputs need the memory more
  try {
    CheckTargetsReachable(correction);
  } catch (const CommandError&) {
    PrintCorrectionReport(std::cout, report);  // shows which LEDs clip what
    throw;
  }

  OutputTransaction outputs;
  report.outputs.push_back(options.output);
  Timed(report.timings, "outputs", [&] {
    if (!options.map.empty()) {
      WriteMap(outputs, options.map,
               DrawMapOf(correction, report, "aimhue correction map - " + report.source));
      report.outputs.push_back(options.map);
    }
    if (!options.panels.empty()) {
      std::ostringstream csv;
      WritePanelCsv(csv, PanelRows(correction.flags, correction.gain, correction.deltaEBefore,
                                   correction.deltaEAfter,
                                   report.panel.cols > 0 ? report.panel : report.screen));
      outputs.Add(options.panels, csv.str());
      report.outputs.push_back(options.panels);
    }
    if (!options.exportDirectory.empty()) {
      MakeDirectory(options.exportDirectory);
      for (const ExportPlane& plane : CorrectionExportPlanes(correction)) {
        const std::string file =
            (std::filesystem::path(options.exportDirectory) / plane.name).string();
        // Uncompressed: every TIFF reader takes it, not only those with LZW.
        WriteImage(outputs, file, plane.image, "exported plane",
                   {cv::IMWRITE_TIFF_COMPRESSION, kTiffUncompressed});
      }
      report.outputs.push_back(options.exportDirectory + "/ (11 TIFF planes)");
    }
    // Last: its content is the largest, and is held in memory only while
    // it is written out.
    WriteCorrectionFile(outputs, options.output, correction);
  });
  if (!options.json.empty()) {
    report.outputs.push_back(options.json);
    outputs.Add(options.json, JsonText(CorrectionReportJson(report)));
  }
  outputs.Commit();
  PrintCorrectionReport(std::cout, report);
  return kExitOk;
}

}  // namespace

void AddCorrectCommand(CLI::App& app, int& exit_status) {
  auto options = std::make_shared<CorrectOptions>();
  CLI::App* command = app.add_subcommand(
      "correct",
      "Compute every LED's correction to stored targets and predict the result.\n\n"
      "Loads the targets of an earlier `calibrate` and the nine meter files of the screen and"
      " computes, for every LED, the 3 x 3 coefficients that mix its own red, green and blue"
      " emitters so that it shows the targets (the correction a screen controller loads). All"
      " targets are scaled by one factor k so that nearly every LED reaches them without"
      " driving an emitter beyond full scale (--quantile); the few LEDs that would still be"
      " overdriven are dimmed. LEDs that are dead, not finite or singular are skipped and"
      " counted; a target outside an LED's own gamut is clipped for that LED and counted.\n\n"
      "The report gives k and the resulting white luminance, the count of each flag, the"
      " CIEDE2000 colour difference of red, green, blue and white before correction (each LED"
      " against the screen's median) and after it (against the targets, predicted from the"
      " measurements), the share of LEDs within 1.0 and 2.0, and the uniformity of the white"
      " luminance. Outputs are written whole or not at all: a failed command leaves every"
      " existing file as it was.");
  command->add_option("result", options->targets, "The results file written by `calibrate`.")
      ->required()
      ->type_name("RESULT.aimhue");
  AddMeterFileOptions(*command, options->meters);
  command
      ->add_option("--quantile", options->quantile,
                   "Share q in (0, 1] of the LEDs that must reach the scaled targets without"
                   " dimming: k is set by the LED at that rank of emitter load. 1 keeps every LED"
                   " undimmed (the weakest LED decides); 0.999 dims the 0.1 % weakest instead of"
                   " darkening the whole screen for them.")
      ->capture_default_str()
      ->type_name("Q");
  command
      ->add_option("--mode", options->mode,
                   "chroma: a full 3 x 3 mix per LED, correcting colour and luminance;"
                   " brightness: one gain per emitter, correcting luminance only.")
      ->capture_default_str()
      ->check(CLI::IsMember({"chroma", "brightness"}))
      ->type_name("chroma|brightness");
  command
      ->add_option("--bits", options->bits,
                   "0 keeps 32-bit float coefficients; 8 to 16 rounds them to integers of that"
                   " many bits (full scale 2^bits - 1), as a controller stores them, and predicts"
                   " the result with the rounded values.")
      ->capture_default_str()
      ->check((CLI::Range(0, 0) | CLI::Range(8, 16)).description(""))
      ->type_name("B");
  command
      ->add_option("--panel", options->panel,
                   "LED size of one panel for --panels and the map's borders; default: the"
                   " panel size the meters carry, if any.")
      ->check(ScreenSizeText("WIDTHxHEIGHT in LEDs"))
      ->type_name("WxH");
  command->add_option("-o,--output", options->output,
                      "Correction file (coefficients, flags, gains and colour differences); the"
                      " name must end in .corr. `inspect` reads it.")
      ->capture_default_str()
      ->type_name("FILE.corr");
  command->add_option("--export", options->exportDirectory,
                      "Also write the nine coefficient planes, the gain and the flags as"
                      " single-channel TIFF images into this directory (created when missing):"
                      " 32-bit float, or 16-bit integers with --bits. coefficient_E_for_I.tiff is"
                      " emitter E's drive for input primary I.")
      ->type_name("DIR");
  command->add_option("--json", options->json, "Also write the report as JSON to this file.")
      ->type_name("FILE");
  command->add_option("--panels", options->panels,
                      "Also write one CSV row per panel: its position, flag counts, mean gain and"
                      " the white CIEDE2000 p50, p95 and maximum before and after.")
      ->type_name("FILE.csv");
  command
      ->add_option("--worst", options->worst,
                   "List the N LEDs with the largest white difference after correction: row,"
                   " column, flags, gain and the four differences.")
      ->check(CLI::Range(0, kMaxWorstLeds).description(""))
      ->type_name("N");
  command->add_option("--map", options->map,
                      "Also draw the correction map into this PNG file: the white difference"
                      " before and after side by side on one colour scale, and the clipped,"
                      " dimmed and skipped LEDs.")
      ->type_name("FILE.png");
  command->footer(std::string(
      "Examples:\n"
      "  aimhue correct screen.aimhue --red r_X.meter r_Y.meter r_Z.meter --green g_X.meter \\\n"
      "      g_Y.meter g_Z.meter --blue b_X.meter b_Y.meter b_Z.meter -o screen.corr \\\n"
      "      --map map.png --worst 10\n"
      "  aimhue correct screen.aimhue ... --bits 12 --export planes --panels panels.csv\n\n"
      "Exit status:\n"
      "  0  corrected; the outputs were written\n"
      "  2  a missing or bad option value\n"
      "  3  a file could not be loaded, or the correction was refused: meters of\n"
      "     different sizes, no LED left to correct, a degenerate target triangle, a\n"
      "     target outside every LED's gamut (the message says which)\n"
      "  4  an output could not be written (nothing was replaced)\n\n") +
                  kEnvironmentHelp);
  command->callback([options, &exit_status] { exit_status = RunCorrect(*options); });
}

}  // namespace tool
}  // namespace aimhue
