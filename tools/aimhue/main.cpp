// aimhue: the command-line tool around the calibration library.
#include <aimhue/aimhue.h>

#include <iostream>
#include <memory>

#include <CLI/CLI.hpp>

#include "command_error.h"
#include "commands.h"
#include "help_formatter.h"

int main(int argc, char** argv) {
  using aimhue::tool::CommandError;
  if (PlumeLogUseEnvironment() == 0) {
    std::cerr << "aimhue: AIMHUE_LOG holds an unknown level (use debug, info, error or off);"
                 " ignored\n";
  }
  CLI::App app(
      "aimhue: colour calibration targets for LED display screens.\n\n"
      "Finds, from per-LED CIE X, Y and Z measurements of the red, green and blue primaries,"
      " the target chromaticity that nearly every LED can reach for each primary, the gains"
      " that mix them into a wanted white, the share of LEDs whose own gamut holds the targets"
      " and a pass/NG judgement of later measurements.",
      "aimhue");
  app.formatter(std::make_shared<aimhue::tool::HelpFormatter>());
  app.set_version_flag("--version", AIMHUE_VERSION_STRING);
  app.require_subcommand(1);
  app.footer(std::string(
      "Run 'aimhue COMMAND --help' for a command's options, defaults and examples.\n\n"
      "A first run:\n"
      "  aimhue demo --size 320x180 --out demo\n"
      "  aimhue simulate --size 640x360 --out meters\n"
      "  aimhue calibrate --red meters/red_{X,Y,Z}.meter --green meters/green_{X,Y,Z}.meter \\\n"
      "      --blue meters/blue_{X,Y,Z}.meter -o screen.aimhue --plot gamut.png\n"
      "  aimhue judge screen.aimhue --red ... --green ... --blue ...\n"
      "  aimhue inspect screen.aimhue meters/red_X.meter\n\n"
      "Exit status:\n"
      "  0  success (judge: pass)\n"
      "  1  judge: NG\n"
      "  2  a missing or bad command-line argument\n"
      "  3  the library refused an input file or a computation\n"
      "  4  an output file could not be written\n\n") +
             aimhue::tool::kEnvironmentHelp);
  int exit_status = aimhue::tool::kExitOk;
  aimhue::tool::AddDemoCommand(app, exit_status);
  aimhue::tool::AddSimulateCommand(app, exit_status);
  aimhue::tool::AddCalibrateCommand(app, exit_status);
  aimhue::tool::AddJudgeCommand(app, exit_status);
  aimhue::tool::AddCorrectCommand(app, exit_status);
  aimhue::tool::AddCoverageCommand(app, exit_status);
  aimhue::tool::AddInspectCommand(app, exit_status);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    const int cli_status = app.exit(error);  // prints help, version or the error
    return cli_status == 0 ? aimhue::tool::kExitOk : aimhue::tool::kExitUsage;
  } catch (const CommandError& error) {
    std::string command = "aimhue";
    for (const CLI::App* sub : app.get_subcommands()) command += " " + sub->get_name();
    std::cerr << command << ": " << error.what() << "\n";
    return error.exit_status();
  } catch (const std::exception& error) {
    std::cerr << "aimhue: " << error.what() << "\n";
    return aimhue::tool::kExitLibrary;
  }
  return exit_status;
}
