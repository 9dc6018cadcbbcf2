// The calibration run and its settings.
#include "calibration.h"

#include <aimhue/api.h>

#include <cmath>
#include <iostream>

#include "command_error.h"
#include "coverage_count.h"
#include "engine_handle.h"
#include "measurement_check.h"
#include "output_files.h"
#include "output_transaction.h"

namespace aimhue {
namespace tool {
namespace {

// The library's range for fractions, thresholds and the scale: 0 < v <= 1.
bool InUnitRange(float value) { return value > 0.0f && value <= 1.0f; }

std::array<float, 4> ParseFractions(const std::string& text, const char* option) {
  const std::vector<std::string> parts = SplitList(text);
  if (parts.size() != 4) {
    throw CommandError(kExitUsage, std::string(option) + ": expected four numbers separated by"
                                                        " commas, got '" + text + "'");
  }
  std::array<float, 4> fractions{};
  for (std::size_t i = 0; i < 4; ++i) {
    const auto value = ParseFloat(parts[i]);
    if (!value || !InUnitRange(*value)) {
      // Say which value is wrong, and whether it is a number at all: "1e-40"
      // is a number that no 32-bit float in (0, 1] represents.
      throw CommandError(kExitUsage, std::string(option) + ": value " + std::to_string(i + 1) +
                                         " of 4, '" + parts[i] + "', " +
                                         (IsDecimalNumber(parts[i]) ? "is out of range"
                                                                    : "is not a number") +
                                         ": each value must lie in (0, 1]");
    }
    fractions[i] = *value;
  }
  return fractions;
}

float ParseUnitValue(const std::string& text, const char* option) {
  const auto value = ParseFloat(text);
  if (!value || !InUnitRange(*value)) {
    throw CommandError(kExitUsage,
                       std::string(option) + ": expected a number in (0, 1], got '" + text + "'");
  }
  return *value;
}

}  // namespace

void AddCalibrationOptions(CLI::App& command, CalibrationOptionText& text) {
  command
      .add_option("--percent-end", text.percentEnd,
                  "Required coverage of the red, green and blue targets and of all three: the share"
                  " of LEDs whose own gamut must hold each target. Four numbers in (0, 1] as"
                  " r,g,b,all; the search reads the first three.")
      ->capture_default_str()
      ->type_name("R,G,B,ALL");
  command
      .add_option("--fraction", text.fractions,
                  "Interpolation fractions r,g,b,w: each primary's target is placed this far from"
                  " the LEDs' mean chromaticity (0) towards the search's final point (1). The fourth"
                  " is stored in the result but not used. Each in (0, 1].")
      ->capture_default_str()
      ->type_name("R,G,B,W");
  command
      .add_option("--white", text.white,
                  "Wanted white point: a name (D50, D55, D65, D75, D93, A, C, E, DCI), a colour"
                  " temperature on the CIE daylight locus from 4000K to 25000K (6500K), or a"
                  " chromaticity x,y. Default: D65 (or the --gamut standard's white). 6500K is"
                  " not D65: the standard illuminant D65 lies near 6504 K, a few thousandths"
                  " of x and y away from the locus point at 6500 K.")
      ->type_name("NAME|X,Y");
  command
      .add_option("--scale", text.scale,
                  "Factor in (0, 1] applied to the three primaries' luminances before the white"
                  " point gains are solved.")
      ->capture_default_str()
      ->type_name("S");
  command.add_flag("--uncapped", text.uncapped,
                   "Do not cap the white point gains (by default the largest gain is limited to"
                   " the engine's white scale, 1.1, and all three shrink by the same factor).");
  command
      .add_option("--ng-thresh", text.ngThresh,
                  "NG threshold in (0, 1]: the allowed drop of the coverage of all three targets;"
                  " the stored NG limit is that coverage minus this threshold.")
      ->capture_default_str()
      ->type_name("T");
  command.add_flag("--keep-dead", text.keepDead,
                   "Keep dead LEDs (X = Y = Z = 0) as measured. By default they are marked in the"
                   " meters' state planes and replaced by the 3 x 3 median of their neighbours"
                   " before the search, since their missing chromaticity would make every mean"
                   " of the search NaN.");
}

void AddGamutOption(CLI::App& command, CalibrationOptionText& text) {
  command
      .add_option("--gamut", text.gamut,
                  "Use a standard's primaries as the targets instead of the searched ones:"
                  " rec709, p3 (DCI-P3, cinema white), p3-d65 or bt2020; its white too unless"
                  " --white is given. The searched luminances stay, the white point gains"
                  " balance them, and the report's coverage tells how many LEDs can show the"
                  " standard's gamut.")
      ->type_name("rec709|p3|p3-d65|bt2020");
}

CalibrationSettings ParseCalibrationSettings(const CalibrationOptionText& text) {
  CalibrationSettings settings;
  settings.percentEnd = ParseFractions(text.percentEnd, "--percent-end");
  settings.fractions = ParseFractions(text.fractions, "--fraction");
  if (!text.gamut.empty()) {
    settings.gamut = FindStandardGamut(text.gamut);
    if (!settings.gamut) {
      throw CommandError(kExitUsage, "--gamut: expected rec709, p3, p3-d65 or bt2020, got '" +
                                         text.gamut + "'");
    }
  }
  if (text.white.empty()) {
    settings.white = settings.gamut ? settings.gamut->white : WhitePoint{"D65", 0.3127f, 0.3290f};
  } else if (const auto white = ParseWhitePoint(text.white)) {
    settings.white = *white;
  } else if (const auto kelvin = ParseKelvin(text.white)) {
    throw CommandError(kExitUsage, "--white: a colour temperature must lie on the daylight locus,"
                                   " 4000K to 25000K, got '" + text.white + "'");
  } else {
    throw CommandError(kExitUsage, "--white: expected a named white (D65, ...), a colour"
                                   " temperature such as 6500K, or x,y with x > 0, y > 0 and"
                                   " x + y < 1, got '" + text.white + "'");
  }
  settings.scale = ParseUnitValue(text.scale, "--scale");
  settings.uncapped = text.uncapped;
  settings.ngThresh = ParseUnitValue(text.ngThresh, "--ng-thresh");
  settings.keepDead = text.keepDead;
  return settings;
}

Calibration Calibrate(const MeasuredScreen& measured, const CalibrationSettings& settings) {
  Calibration calibration{CreateHandle(), {}};
  CalibrationReport& report = calibration.report;
  Aimhue* const handle = calibration.handle.get();
  AimhueScreen const screen = measured.screen.get();
  report.screen = measured.size;
  report.dead = measured.dead;
  report.percentEnd = settings.percentEnd;
  report.fractions = settings.fractions;
  report.white = settings.white;
  report.scale = settings.scale;
  report.uncapped = settings.uncapped;
  report.ngThresh = settings.ngThresh;
  std::vector<TimedStep>& timings = report.timings;

  CheckStatus(AimhueSetNGThresh(handle, settings.ngThresh), "--ng-thresh refused");
  CheckStatus(AimhueSetPercentEnd(handle, settings.percentEnd.data()), "--percent-end refused");
  Timed(timings, "target search", [&] {
    CheckStatus(AimhueSearchScreen(handle, screen), "the target search refused the meters");
  });
  Timed(timings, "interpolation fractions", [&] {
    CheckStatus(AimhueSetPercentCalcChroma(handle, settings.fractions.data()),
                "the interpolation fractions were refused");
  });
  if (settings.gamut) {
    report.gamut = settings.gamut->name;
    Timed(timings, "standard gamut", [&] {
      // The standard's chromaticities at the searched luminances; the white
      // point step then balances those luminances to the wanted white.
      const StandardGamut& gamut = *settings.gamut;
      const float* xy[kPrimaryCount] = {gamut.red, gamut.green, gamut.blue};
      AimhueResults searched = GetResults(handle);
      for (int p = 0; p < kPrimaryCount; ++p) {
        searched.targets[p].x = xy[p][0];
        searched.targets[p].y = xy[p][1];
      }
      searched.targets[kWhitePoint].x = settings.white.x;
      searched.targets[kWhitePoint].y = settings.white.y;
      CheckStatus(AimhueSetTargets(handle, &searched.targets[0].L),
                  "the standard gamut's targets were refused");
    });
  }
  Timed(timings, "white point", [&] {
    const TargetLxy white{0.0f, settings.white.x, settings.white.y};
    CheckStatus(AimhueCalcWhite(handle, settings.scale, &white, settings.uncapped ? 1 : 0),
                "the white point calculation failed");
  });
  // One count of the final targets gives the coverage, the LEDs that miss
  // them, the NG limit and the verdict on this measurement.
  AimhueResults results = GetResults(handle);
  Timed(timings, "coverage and misses", [&] {
    const CoverageCount count = CountCoverageAndMisses(screen, results.targets, measured.size);
    report.coverage = count.coverage;
    report.ledsMissingTargets = count.ledsMissingTargets;
  });
  Timed(timings, "NG limit and judgement", [&] {
    CheckStatus(AimhueSetNGLimitFromCoverage(handle, &report.coverage),
                "the NG limit calculation failed");
    bool ng = true;
    CheckStatus(AimhueJudgeCoverage(handle, &report.coverage, &ng), "the NG judgement failed");
    report.ng = ng;
  });
  results = GetResults(handle);
  report.targets = ToBlock(results.targets);
  report.searchStart = ToBlock(results.searchStart);
  report.searchEnd = ToBlock(results.searchEnd);
  report.ngLimit = results.ngLimit;
  report.outliers = {results.outliers[0], results.outliers[1], results.outliers[2]};
  return calibration;
}

void CheckCalibration(const CalibrationReport& report) {
  const bool usable = TargetsFinite(report.targets) && std::isfinite(report.ngLimit);
  if (!usable) {
    const auto& dead = report.dead.remaining;
    throw CommandError(kExitLibrary,
                       "the targets or the NG limit are not finite; nothing was written" +
                           (dead[0] + dead[1] + dead[2] > 0
                                ? " (dead LEDs without chromaticity were searched: red " +
                                      std::to_string(dead[0]) + ", green " +
                                      std::to_string(dead[1]) + ", blue " +
                                      std::to_string(dead[2]) + ")"
                                : std::string()));
  }
}

void WriteCalibrationOutputs(Calibration& calibration, const MeasuredScreen& measured,
                             const CalibrationOutputs& files) {
  CalibrationReport& report = calibration.report;
  try {
    CheckCalibration(report);
  } catch (const CommandError&) {
    PrintCalibrationReport(std::cout, report);
    throw;
  }
  OutputTransaction outputs;
  if (!files.result.empty()) outputs.Add(files.result, EngineFileBytes(calibration.handle.get()));
  if (!files.plot.empty()) {
    Timed(report.timings, "gamut plot",
          [&] { outputs.Add(files.plot, GamutPlotPng(measured.leds, report)); });
  }
  report.outputs = outputs.Targets();
  if (!files.json.empty()) {
    report.outputs.push_back(files.json);
    outputs.Add(files.json, JsonText(CalibrationReportJson(report)));
  }
  outputs.Commit();
}

}  // namespace tool
}  // namespace aimhue
