// The calibration run shared by `demo` and `calibrate`: the library's whole
// calling order on one measurement, timed step by step.
#ifndef AIMHUE_TOOLS_CALIBRATION_H_
#define AIMHUE_TOOLS_CALIBRATION_H_

#include <array>
#include <string>

#include <CLI/App.hpp>

#include "arguments.h"
#include "engine_handle.h"
#include "meter_set.h"
#include "report.h"

namespace aimhue {
namespace tool {

struct CalibrationSettings {
  std::array<float, 4> percentEnd{1.0f, 1.0f, 1.0f, 1.0f};
  std::array<float, 4> fractions{1.0f, 1.0f, 1.0f, 1.0f};
  WhitePoint white{"D65", 0.3127f, 0.3290f};
  float scale = 1.0f;
  bool uncapped = false;
  float ngThresh = 0.08f;
  bool keepDead = false;
};

// The options of the settings as given on the command line, before parsing.
struct CalibrationOptionText {
  std::string percentEnd = "1,1,1,1";
  std::string fractions = "1,1,1,1";
  std::string white = "D65";
  std::string scale = "1";
  bool uncapped = false;
  std::string ngThresh = "0.08";
  bool keepDead = false;
};

// Adds --percent-end, --fraction, --white, --scale, --uncapped, --ng-thresh
// and --keep-dead to `command`.
void AddCalibrationOptions(CLI::App& command, CalibrationOptionText& text);

// Parses and range-checks the options' values; CommandError (exit status 2)
// names the first bad option. The ranges are the library's own, checked
// here because the library ignores a bad fraction or scale without saying
// so, and NaN is refused although the library would store it.
CalibrationSettings ParseCalibrationSettings(const CalibrationOptionText& text);

// A calibrated engine record and what the run reports about it.
struct Calibration {
  Handle handle;
  CalibrationReport report;
};

// Runs AimhueSearchScreen, AimhueSetPercentCalcChroma, AimhueCalcWhite,
// AimhueCalcPercentNGScreen (the coverage of the targets and the NG limit
// from one count) and AimhueJudgeNGScreen on the screen, then counts the
// LEDs that miss a target. Fills everything of the report but its source,
// outputs and the timings of the steps before. Writes nothing. A library
// status other than 0 ends the command (CommandError).
Calibration Calibrate(const MeasuredScreen& measured, const CalibrationSettings& settings);

// Ends the command (CommandError, exit status 3) when a target or the NG
// limit is not finite: the library then reported success, but the result
// could judge nothing (a NaN limit passes every screen). Called after the
// report is printed and before any output is written, so the user sees
// where NaN came from (dead LEDs kept with --keep-dead, meters of zeros).
void CheckCalibration(const CalibrationReport& report);

// The files a calibration writes; an empty name is not written.
struct CalibrationOutputs {
  std::string result;  // the engine's results, ".aimhue"
  std::string plot;    // the gamut plot, PNG
  std::string json;    // the report as JSON
};

// CheckCalibration (printing the report to standard output first when it
// refuses), then writes the outputs all together (OutputTransaction) and
// lists them in the report's outputs. Nothing is written when any step
// fails.
void WriteCalibrationOutputs(Calibration& calibration, const MeasuredScreen& measured,
                             const CalibrationOutputs& files);

}  // namespace tool
}  // namespace aimhue

#endif  // AIMHUE_TOOLS_CALIBRATION_H_
