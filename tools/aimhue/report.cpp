// Terminal and JSON reports.
#include "report.h"

#include <charconv>
#include <cmath>

#include "text_format.h"

namespace aimhue {
namespace tool {
namespace {

const char* const kPrimaryNames[] = {"red", "green", "blue"};
const char* const kTargetNames[] = {"red", "green", "blue", "white"};

std::string Percent(float fraction) {
  if (std::isnan(fraction)) return "n/a";
  return Format("%.2f %%", static_cast<double>(fraction) * 100.0);
}

std::string Milliseconds(double seconds) { return Format("%.1f ms", seconds * 1000.0); }

ReportJson FloatArray(const float* values, std::size_t count) {
  ReportJson array = ReportJson::array();
  for (std::size_t i = 0; i < count; ++i) array.push_back(values[i]);
  return array;
}

ReportJson ScreenJson(const ScreenSize& screen) {
  return ReportJson{{"cols", screen.cols}, {"rows", screen.rows},
                    {"leds", static_cast<int64_t>(screen.cols) * screen.rows}};
}

void PrintScreen(std::ostream& out, const std::string& source, const ScreenSize& screen) {
  out << "Measurement   " << source << "\n";
  out << Format("Screen        %d x %d LEDs (%lld)\n", screen.cols, screen.rows,
                static_cast<long long>(screen.cols) * screen.rows);
}

void PrintDead(std::ostream& out, const std::array<int64_t, 3>& found) {
  out << Format("Dead LEDs     red %lld, green %lld, blue %lld (X = Y = Z = 0)\n",
                static_cast<long long>(found[0]), static_cast<long long>(found[1]),
                static_cast<long long>(found[2]));
}

void PrintCoverage(std::ostream& out, const Coverage& coverage) {
  out << "Coverage      share of LEDs whose own gamut holds the target\n";
  out << Format("  %-8s %10s\n  %-8s %10s\n  %-8s %10s\n  %-8s %10s\n", "red",
                Percent(coverage.red).c_str(), "green", Percent(coverage.green).c_str(), "blue",
                Percent(coverage.blue).c_str(), "all", Percent(coverage.all).c_str());
}

}  // namespace

std::string FloatText(float value) {
  if (std::isnan(value)) return "nan";
  if (std::isinf(value)) return value > 0 ? "inf" : "-inf";
  char text[32];
  const auto result = std::to_chars(text, text + sizeof text, value);
  return std::string(text, result.ptr);
}

ReportJson TargetBlockJson(const TargetBlock& block) {
  ReportJson object = ReportJson::object();
  for (std::size_t i = 0; i < block.size(); ++i) {
    object[kTargetNames[i]] = ReportJson{{"L", block[i].L}, {"x", block[i].x}, {"y", block[i].y}};
  }
  return object;
}

ReportJson CoverageJson(const Coverage& coverage) {
  return ReportJson{{"red", coverage.red},
                    {"green", coverage.green},
                    {"blue", coverage.blue},
                    {"all", coverage.all}};
}

void PrintTargetBlock(std::ostream& out, const char* title, const TargetBlock& block) {
  out << Format("%-13s %14s %12s %12s\n", title, "L", "x", "y");
  for (std::size_t i = 0; i < block.size(); ++i) {
    out << Format("  %-11s %14s %12s %12s\n", kTargetNames[i], FloatText(block[i].L).c_str(),
                  FloatText(block[i].x).c_str(), FloatText(block[i].y).c_str());
  }
}

void PrintCalibrationReport(std::ostream& out, const CalibrationReport& report) {
  PrintScreen(out, report.source, report.screen);
  PrintDead(out, report.dead.found);
  const int64_t found = report.dead.found[0] + report.dead.found[1] + report.dead.found[2];
  const int64_t left =
      report.dead.remaining[0] + report.dead.remaining[1] + report.dead.remaining[2];
  if (found == 0) {
    out << "              nothing to repair\n";
  } else if (report.dead.repaired) {
    out << Format("              marked in the state planes and replaced by the 3 x 3 median of"
                  " their neighbours; %lld still dead after the repair\n",
                  static_cast<long long>(left));
  } else {
    out << "              kept as measured (--keep-dead): they have no chromaticity and make the"
           " search's means NaN\n";
  }
  out << Format("Settings      required coverage %s, %s, %s, %s; fractions %s, %s, %s, %s\n",
                FloatText(report.percentEnd[0]).c_str(), FloatText(report.percentEnd[1]).c_str(),
                FloatText(report.percentEnd[2]).c_str(), FloatText(report.percentEnd[3]).c_str(),
                FloatText(report.fractions[0]).c_str(), FloatText(report.fractions[1]).c_str(),
                FloatText(report.fractions[2]).c_str(), FloatText(report.fractions[3]).c_str());
  out << Format("              white %s (%s, %s), scale %s, gains %s; NG threshold %s\n",
                report.white.name.c_str(), FloatText(report.white.x).c_str(),
                FloatText(report.white.y).c_str(), FloatText(report.scale).c_str(),
                report.uncapped ? "uncapped" : "capped", FloatText(report.ngThresh).c_str());
  out << "\n";
  PrintTargetBlock(out, "Search start", report.searchStart);
  out << "              (the primaries' mean chromaticities; white not set by the search)\n";
  PrintTargetBlock(out, "Targets", report.targets);
  if (!report.gamut.empty()) {
    out << "              (the " << report.gamut << " primaries at the searched luminances, not"
        << " the searched chromaticities)\n";
  }
  out << "\n";
  PrintCoverage(out, report.coverage);
  if (!report.gamut.empty()) {
    const int64_t all = static_cast<int64_t>(report.screen.cols) * report.screen.rows;
    out << Format("              %lld of %lld LEDs can show the whole %s gamut\n",
                  static_cast<long long>(all - report.ledsMissingTargets),
                  static_cast<long long>(all), report.gamut.c_str());
  }
  out << Format("NG limit      %s (coverage of all three minus the threshold); this measurement:"
                " %s\n",
                FloatText(report.ngLimit).c_str(), report.ng ? "NG" : "pass");
  const int64_t leds = static_cast<int64_t>(report.screen.cols) * report.screen.rows;
  out << Format("Outliers      left out of the search's means: red %d, green %d, blue %d\n"
                "              LEDs whose gamut misses a target: %lld of %lld\n",
                report.outliers[0], report.outliers[1], report.outliers[2],
                static_cast<long long>(report.ledsMissingTargets), static_cast<long long>(leds));
  out << "\nTimings\n";
  double total = 0.0;
  for (const TimedStep& step : report.timings) {
    out << Format("  %-26s %12s\n", step.name.c_str(), Milliseconds(step.seconds).c_str());
    total += step.seconds;
  }
  out << Format("  %-26s %12s\n", "total", Milliseconds(total).c_str());
  if (!report.outputs.empty()) {
    out << "\nWrote\n";
    for (const std::string& file : report.outputs) out << "  " << file << "\n";
  }
}

ReportJson CalibrationReportJson(const CalibrationReport& report) {
  ReportJson json;
  json["source"] = report.source;
  json["screen"] = ScreenJson(report.screen);
  json["deadLeds"] = {
      {"found", ReportJson::object()},
      {"remaining", ReportJson::object()},
      {"repaired", report.dead.repaired}};
  for (std::size_t p = 0; p < 3; ++p) {
    json["deadLeds"]["found"][kPrimaryNames[p]] = report.dead.found[p];
    json["deadLeds"]["remaining"][kPrimaryNames[p]] = report.dead.remaining[p];
  }
  json["settings"] = {
      {"percentEnd", FloatArray(report.percentEnd.data(), 4)},
      {"fractions", FloatArray(report.fractions.data(), 4)},
      {"white", {{"name", report.white.name}, {"x", report.white.x}, {"y", report.white.y}}},
      {"gamut", report.gamut.empty() ? ReportJson() : ReportJson(report.gamut)},
      {"scale", report.scale},
      {"uncapped", report.uncapped},
      {"ngThresh", report.ngThresh}};
  json["searchStart"] = TargetBlockJson(report.searchStart);
  json["searchEnd"] = TargetBlockJson(report.searchEnd);
  json["targets"] = TargetBlockJson(report.targets);
  json["coverage"] = CoverageJson(report.coverage);
  json["ngLimit"] = report.ngLimit;
  json["ng"] = report.ng;
  json["outliers"] = {{"red", report.outliers[0]},
                      {"green", report.outliers[1]},
                      {"blue", report.outliers[2]},
                      {"ledsMissingTargets", report.ledsMissingTargets}};
  ReportJson timings = ReportJson::object();
  for (const TimedStep& step : report.timings) {
    timings[step.name] = static_cast<float>(step.seconds);
  }
  json["timingsSeconds"] = timings;
  json["outputs"] = report.outputs;
  return json;
}

void PrintCoverageReport(std::ostream& out, const CoverageReport& report) {
  PrintScreen(out, report.source, report.screen);
  PrintDead(out, report.deadLeds);
  out << "              not repaired: a dead LED reaches no target\n";
  out << "Targets from  " << report.targetsFile << "\n";
  if (!report.maskFile.empty()) out << "Mask          " << report.maskFile << "\n";
  out << "\n";
  PrintTargetBlock(out, "Targets", report.targets);
  out << "\n";
  PrintCoverage(out, report.coverage);
  if (report.judged) {
    out << Format("NG limit      %s\nVerdict       %s\n", FloatText(report.ngLimit).c_str(),
                  report.ng ? "NG (coverage of all three below the limit)" : "pass");
  }
}

ReportJson CoverageReportJson(const CoverageReport& report) {
  ReportJson json;
  json["source"] = report.source;
  json["targetsFile"] = report.targetsFile;
  if (!report.maskFile.empty()) json["maskFile"] = report.maskFile;
  json["screen"] = ScreenJson(report.screen);
  json["deadLeds"] = ReportJson::object();
  for (std::size_t p = 0; p < 3; ++p) json["deadLeds"][kPrimaryNames[p]] = report.deadLeds[p];
  json["targets"] = TargetBlockJson(report.targets);
  json["coverage"] = CoverageJson(report.coverage);
  if (report.judged) {
    json["ngLimit"] = report.ngLimit;
    json["ng"] = report.ng;
  }
  return json;
}

}  // namespace tool
}  // namespace aimhue
