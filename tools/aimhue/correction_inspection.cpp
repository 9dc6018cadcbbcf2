// Descriptions of correction files.
#include "correction_inspection.h"

#include <aimhue/correction.h>

#include <cstdio>

#include "command_error.h"
#include "correction_report.h"
#include "panel_table.h"

namespace aimhue {
namespace tool {
namespace {

const char* const kPrimaryNames[3] = {"red", "green", "blue"};
const char* const kChannelNames[4] = {"red", "green", "blue", "white"};

ReportJson PercentilesJson(const Percentiles& p) {
  return ReportJson{{"p50", p.p50}, {"p95", p.p95}, {"p99", p.p99}, {"max", p.max}};
}

std::string Text(const ReportJson& value) {
  if (value.is_number_float()) return FloatText(value.get<float>());
  if (value.is_string()) return value.get<std::string>();
  return value.dump();
}

std::string Cell(const ReportJson& value) {
  char text[32];
  if (!value.is_number()) return "n/a";
  std::snprintf(text, sizeof text, "%.6f", static_cast<double>(value.get<float>()));
  return text;
}

ReportJson LedJson(const std::string& file, const Correction& correction, const LedPosition& led) {
  const cv::Mat& coeff = correction.coeff;
  if (led.row >= coeff.rows || led.col >= coeff.cols) {
    throw CommandError(kExitUsage, "--led " + std::to_string(led.row) + "," +
                                       std::to_string(led.col) + " lies outside the screen of " +
                                       std::to_string(coeff.rows) + " rows x " +
                                       std::to_string(coeff.cols) + " columns");
  }
  const float* c = coeff.ptr<float>(led.row) + 9 * led.col;
  ReportJson matrix = ReportJson::array();
  for (int emitter = 0; emitter < 3; ++emitter) {
    matrix.push_back(ReportJson::array({c[3 * emitter], c[3 * emitter + 1], c[3 * emitter + 2]}));
  }
  const uint8_t flags = correction.flags.at<uint8_t>(led.row, led.col);
  const cv::Vec4f before = correction.deltaEBefore.at<cv::Vec4f>(led.row, led.col);
  const cv::Vec4f after = correction.deltaEAfter.at<cv::Vec4f>(led.row, led.col);
  ReportJson json{{"file", file}, {"kind", "corr-led"}, {"row", led.row}, {"col", led.col},
                  {"coefficients", matrix}, {"flags", FlagText(flags)}, {"flagBits", flags},
                  {"gain", correction.gain.at<float>(led.row, led.col)}};
  for (int i = 0; i < 4; ++i) {
    json["deltaE2000"]["before"][kChannelNames[i]] = before[i];
    json["deltaE2000"]["after"][kChannelNames[i]] = after[i];
  }
  if (correction.settings.bits > 0) json["bits"] = correction.settings.bits;
  return json;
}

void PrintLed(std::ostream& out, const ReportJson& json) {
  out << "  LED row " << json["row"].get<int>() << ", column " << json["col"].get<int>() << "\n";
  out << "  flags  " << json["flags"].get<std::string>() << "\n";
  out << "  gain   " << Text(json["gain"]) << "\n";
  out << "  coefficients: each emitter's drive for each input primary\n";
  char line[160];
  std::snprintf(line, sizeof line, "    %-15s %12s %12s %12s\n", "", "red in", "green in",
                "blue in");
  out << line;
  for (int emitter = 0; emitter < 3; ++emitter) {
    const ReportJson& row = json["coefficients"][static_cast<std::size_t>(emitter)];
    std::snprintf(line, sizeof line, "    %-15s %12s %12s %12s\n",
                  (std::string(kPrimaryNames[emitter]) + " emitter").c_str(), Cell(row[0]).c_str(),
                  Cell(row[1]).c_str(), Cell(row[2]).c_str());
    out << line;
  }
  out << "  CIEDE2000        red    green     blue    white\n";
  for (const char* when : {"before", "after"}) {
    std::snprintf(line, sizeof line, "    %-8s", when);
    out << line;
    for (const char* channel : kChannelNames) {
      const ReportJson& value = json["deltaE2000"][when][channel];
      std::snprintf(line, sizeof line, " %8.3f",
                    value.is_number() ? static_cast<double>(value.get<float>()) : NAN);
      out << line;
    }
    out << "\n";
  }
}

}  // namespace

ReportJson InspectCorrection(const std::string& file, const std::optional<LedPosition>& led) {
  Correction correction;
  CheckStatus(correction.Load(file), "cannot load correction");
  if (led) return LedJson(file, correction, *led);
  const CorrectionCounts& n = correction.counts;
  ReportJson json{{"file", file}, {"kind", "corr"}};
  json["screen"] = {{"rows", correction.coeff.rows}, {"cols", correction.coeff.cols}};
  json["settings"] = {{"quantile", correction.settings.quantile},
                      {"mode", ModeName(correction.settings.mode)},
                      {"bits", correction.settings.bits}};
  json["scale"] = correction.scale;
  TargetBlock targets{};
  std::copy(correction.targets, correction.targets + 4, targets.begin());
  json["targets"] = TargetBlockJson(targets);
  json["counts"] = {{"corrected", n.corrected},     {"dead", n.dead},
                    {"notFinite", n.notFinite},     {"singular", n.singular},
                    {"clippedRed", n.clippedRed},   {"clippedGreen", n.clippedGreen},
                    {"clippedBlue", n.clippedBlue}, {"dimmed", n.dimmed},
                    {"roundingRepaired", n.roundingRepaired}};
  std::vector<float> values = DifferenceChannel(correction.deltaEBefore, 3);
  json["whiteDeltaE2000"]["before"] = PercentilesJson(FinitePercentiles(values));
  values = DifferenceChannel(correction.deltaEAfter, 3);
  json["whiteDeltaE2000"]["after"] = PercentilesJson(FinitePercentiles(values));
  return json;
}

void PrintCorrectionInspection(std::ostream& out, const ReportJson& json) {
  if (json["kind"] == "corr-led") {
    PrintLed(out, json);
    return;
  }
  const ReportJson& s = json["settings"];
  out << "  correction (.corr): " << json["screen"]["cols"].get<int>() << " x "
      << json["screen"]["rows"].get<int>() << " LEDs, mode " << s["mode"].get<std::string>()
      << ", quantile " << Text(s["quantile"]) << ", bits " << s["bits"].get<int>() << "\n";
  out << "  scale k     " << Text(json["scale"]) << "\n";
  out << "  scaled targets\n";
  for (const char* point : {"red", "green", "blue", "white"}) {
    const ReportJson& p = json["targets"][point];
    char line[160];
    std::snprintf(line, sizeof line, "    %-6s L %-14s x %-12s y %s\n", point,
                  Text(p["L"]).c_str(), Text(p["x"]).c_str(), Text(p["y"]).c_str());
    out << line;
  }
  const ReportJson& n = json["counts"];
  out << "  LEDs        " << n["corrected"].get<int64_t>() << " corrected; dead "
      << n["dead"].get<int64_t>() << ", not finite " << n["notFinite"].get<int64_t>()
      << ", singular " << n["singular"].get<int64_t>() << "; clipped red "
      << n["clippedRed"].get<int64_t>() << ", green " << n["clippedGreen"].get<int64_t>()
      << ", blue " << n["clippedBlue"].get<int64_t>() << "; dimmed " << n["dimmed"].get<int64_t>()
      << "; rounding repaired " << n["roundingRepaired"].get<int64_t>() << "\n";
  for (const char* when : {"before", "after"}) {
    const ReportJson& p = json["whiteDeltaE2000"][when];
    out << "  white CIEDE2000 " << when << ": p50 " << Text(p["p50"]) << ", p95 "
        << Text(p["p95"]) << ", p99 " << Text(p["p99"]) << ", max " << Text(p["max"]) << "\n";
  }
}

}  // namespace tool
}  // namespace aimhue
