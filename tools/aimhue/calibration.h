// The calibration run shared by `demo` and `calibrate`: the library's whole
// calling order on one measurement, timed step by step.
#ifndef AIMHUE_TOOLS_CALIBRATION_H_
#define AIMHUE_TOOLS_CALIBRATION_H_

#include <array>
#include <optional>
#include <string>

#include <CLI/App.hpp>

#include "arguments.h"
#include "meter_set.h"
#include "report.h"
#include "standard_gamut.h"

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
  std::optional<StandardGamut> gamut;  // targets of a standard instead of the searched ones
};

// The options of the settings as given on the command line, before parsing.
struct CalibrationOptionText {
  std::string percentEnd = "1,1,1,1";
  std::string fractions = "1,1,1,1";
  std::string white;  // empty: D65, or the --gamut standard's white
  std::string scale = "1";
  bool uncapped = false;
  std::string ngThresh = "0.08";
  bool keepDead = false;
  std::string gamut;  // calibrate only
};

// Adds --percent-end, --fraction, --white, --scale, --uncapped, --ng-thresh
// and --keep-dead to `command`.
void AddCalibrationOptions(CLI::App& command, CalibrationOptionText& text);

// Adds --gamut (calibrate only).
void AddGamutOption(CLI::App& command, CalibrationOptionText& text);

// Parses and range-checks the options' values; CommandError (exit status 2)
// names the first bad option. The ranges are the library's own, checked
// here because the library ignores a bad fraction or scale without saying
// so, and NaN is refused although the library would store it.
CalibrationSettings ParseCalibrationSettings(const CalibrationOptionText& text);

// Runs dead-LED handling, AimhueSearch, AimhueSetPercentCalcChroma, with a
// standard gamut AimhueSetTargets (its primaries at the searched
// luminances), AimhueCalcWhite, AimhueCalcPercentOfTarget, AimhueCalcPercentNG and
// AimhueJudgeNG on `meters` and, when `result_file` is not empty, saves the
// record with AimhueSave. Fills everything of the report but its source and
// outputs. A library status other than 0 ends the command (CommandError).
CalibrationReport Calibrate(Meters& meters, const CalibrationSettings& settings,
                            const std::string& result_file);

// Ends the command (CommandError, exit status 3) when a target is not
// finite: the library then reported success, but the result is of no use.
// Called after the report is printed, so the user sees where NaN came from
// (usually dead LEDs kept with --keep-dead).
void CheckTargetsFinite(const CalibrationReport& report);

}  // namespace tool
}  // namespace aimhue

#endif  // AIMHUE_TOOLS_CALIBRATION_H_
