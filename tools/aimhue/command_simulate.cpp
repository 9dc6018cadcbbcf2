// aimhue simulate: write the meter files of a synthetic screen.
#include <synthetic/synthetic_screen.h>

#include <iostream>
#include <memory>

#include "command_error.h"
#include "commands.h"
#include "output_transaction.h"

namespace aimhue {
namespace tool {
namespace {

struct SimulateOptions {
  std::string size;
  uint64_t seed = 1;
  std::string out;
  int dead = 3;
  int outliers = 20;
};

// The meter's ".meter" content (LedMeter::GetBufferSize, ToBuffer).
std::string MeterFileBytes(const LedMeter& meter, const std::string& file) {
  uint64_t size = 0;
  CheckStatus(meter.GetBufferSize(&size), "cannot size the meter '" + file + "'");
  std::string bytes(static_cast<std::size_t>(size), '\0');
  CheckStatus(meter.ToBuffer(bytes.data(), &size), "cannot encode the meter '" + file + "'");
  bytes.resize(static_cast<std::size_t>(size));
  return bytes;
}

int RunSimulate(const SimulateOptions& options) {
  const ScreenSize size = ScreenSizeOf(options.size);
  const int64_t leds = static_cast<int64_t>(size.cols) * size.rows;
  if (options.dead < 0 || options.dead > leds || options.outliers < 0 || options.outliers > leds) {
    throw CommandError(kExitUsage, "--dead and --outliers must lie between 0 and the number of"
                                   " LEDs");
  }
  MakeDirectory(options.out);
  synthetic::ScreenOptions screen;
  screen.cols = size.cols;
  screen.rows = size.rows;
  screen.seed = options.seed;
  screen.deadCount = options.dead;
  screen.outlierCount = options.outliers;
  const synthetic::ScreenMeters meters = synthetic::GenerateMeters(screen);
  OutputTransaction outputs;
  for (int p = 0; p < 3; ++p) {
    for (int c = 0; c < 3; ++c) {
      const std::string file = synthetic::MeterFilePath(options.out, p, c);
      outputs.Add(file, MeterFileBytes(meters[p][c], file));
    }
  }
  outputs.Commit();
  for (const std::string& file : outputs.Targets()) std::cout << file << "\n";
  return kExitOk;
}

}  // namespace

void AddSimulateCommand(CLI::App& app, int& exit_status) {
  auto options = std::make_shared<SimulateOptions>();
  CLI::App* command = app.add_subcommand(
      "simulate",
      "Write the nine meter files of a synthetic screen.\n\n"
      "Generates the CIE X, Y and Z meters of a synthetic LED screen as `demo` does and saves"
      " them as red_X.meter, red_Y.meter, red_Z.meter, green_X.meter ... blue_Z.meter in the"
      " output directory, one file name per line on standard output. The files are ordinary"
      " .meter files: `calibrate`, `judge`, `coverage` and `inspect` read them like real"
      " measurements.");
  AddScreenSizeOption(*command, options->size)->required();
  command->add_option("--seed", options->seed, "Seed of the synthetic screen.")
      ->capture_default_str()
      ->type_name("N");
  command->add_option("--out", options->out, "Directory for the nine files; created when missing.")
      ->required()
      ->type_name("DIR");
  command->add_option("--dead", options->dead, "Number of dead LEDs (X = Y = Z = 0 in all three"
                                               " primaries).")
      ->capture_default_str()
      ->type_name("N");
  command->add_option("--outliers", options->outliers,
                      "Number of LEDs with one primary's chromaticity far from the others.")
      ->capture_default_str()
      ->type_name("N");
  command->footer(
      "Examples:\n"
      "  aimhue simulate --size 640x360 --seed 3 --out meters\n"
      "  aimhue calibrate --red meters/red_{X,Y,Z}.meter --green meters/green_{X,Y,Z}.meter \\\n"
      "                   --blue meters/blue_{X,Y,Z}.meter -o result.aimhue\n\n"
      "Exit status:\n"
      "  0  the nine files were written\n"
      "  2  a bad option value\n"
      "  4  the directory or a file could not be written");
  command->callback([options, &exit_status] { exit_status = RunSimulate(*options); });
}

}  // namespace tool
}  // namespace aimhue
