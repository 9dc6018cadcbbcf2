// Terminal and JSON reports of a correction.
#include "correction_report.h"

#include <algorithm>
#include <cmath>

#include "panel_table.h"
#include "text_format.h"

namespace aimhue {
namespace tool {
namespace {

const char* const kChannelNames[kDifferenceChannels] = {"red", "green", "blue", "white"};

std::string Fixed(double value, int decimals = 2) {
  if (!std::isfinite(value)) return "n/a";
  return Format("%.*f", decimals, value);
}

std::string Share(double fraction) {
  if (!std::isfinite(fraction)) return "n/a";
  return Format("%.2f %%", fraction * 100.0);
}

long long Count(int64_t value) { return static_cast<long long>(value); }

ReportJson PercentilesJson(const Percentiles& p) {
  return ReportJson{{"p50", p.p50}, {"p95", p.p95}, {"p99", p.p99}, {"max", p.max}};
}

ReportJson UniformityJson(const Uniformity& u) {
  return ReportJson{{"mean", static_cast<float>(u.mean)},
                    {"minOverMax", static_cast<float>(u.minOverMax)},
                    {"relativeStdDev", static_cast<float>(u.relativeStdDev)}};
}

ReportJson DifferencesJson(const cv::Vec4f& differences) {
  ReportJson json = ReportJson::object();
  for (int i = 0; i < kDifferenceChannels; ++i) json[kChannelNames[i]] = differences[i];
  return json;
}

void PrintDifferences(std::ostream& out, const char* when,
                      const std::array<Percentiles, kDifferenceChannels>& table) {
  for (int i = 0; i < kDifferenceChannels; ++i) {
    const Percentiles& p = table[i];
    out << Format("  %-7s %-6s %8s %8s %8s %8s\n", i == 0 ? when : "", kChannelNames[i],
                  Fixed(p.p50).c_str(), Fixed(p.p95).c_str(), Fixed(p.p99).c_str(),
                  Fixed(p.max).c_str());
  }
}

std::string SettingsText(const CorrectionSettings& settings) {
  return std::string(settings.mode == CorrectionMode::Chroma
                         ? "3 x 3 mix per LED (chroma)"
                         : "one gain per emitter (brightness)") +
         ", quantile " + FloatText(settings.quantile) + ", " +
         (settings.bits == 0 ? std::string("32-bit float coefficients")
                             : std::to_string(settings.bits) + "-bit coefficients");
}

}  // namespace

const char* ModeName(CorrectionMode mode) {
  return mode == CorrectionMode::Brightness ? "brightness" : "chroma";
}

std::vector<WorstLed> WorstLeds(const Correction& correction, int count) {
  struct Candidate {
    float white;
    int row;
    int col;
  };
  std::vector<Candidate> candidates;
  if (count <= 0) return {};
  candidates.reserve(correction.deltaEAfter.total());
  for (int r = 0; r < correction.deltaEAfter.rows; ++r) {
    const cv::Vec4f* after = correction.deltaEAfter.ptr<cv::Vec4f>(r);
    for (int c = 0; c < correction.deltaEAfter.cols; ++c) {
      if (std::isfinite(after[c][3])) candidates.push_back({after[c][3], r, c});
    }
  }
  const std::size_t kept = std::min(candidates.size(), static_cast<std::size_t>(count));
  std::partial_sort(candidates.begin(), candidates.begin() + static_cast<std::ptrdiff_t>(kept),
                    candidates.end(), [](const Candidate& a, const Candidate& b) {
                      if (a.white != b.white) return a.white > b.white;
                      return a.row != b.row ? a.row < b.row : a.col < b.col;
                    });
  std::vector<WorstLed> worst;
  for (std::size_t i = 0; i < kept; ++i) {
    const int r = candidates[i].row;
    const int c = candidates[i].col;
    worst.push_back({r, c, correction.flags.at<uint8_t>(r, c), correction.gain.at<float>(r, c),
                     correction.deltaEBefore.at<cv::Vec4f>(r, c),
                     correction.deltaEAfter.at<cv::Vec4f>(r, c)});
  }
  return worst;
}

CorrectionReport MakeCorrectionReport(const Correction& correction, const Meters& meters) {
  CorrectionReport report;
  report.screen = ScreenSize{correction.flags.cols, correction.flags.rows};
  report.settings = correction.settings;
  report.scale = correction.scale;
  std::copy(correction.targets, correction.targets + 4, report.targets.begin());
  report.counts = correction.counts;
  report.summary = SummariseCorrection(correction, meters);
  return report;
}

void PrintCorrectionReport(std::ostream& out, const CorrectionReport& report) {
  const CorrectionCounts& n = report.counts;
  const int64_t leds = static_cast<int64_t>(report.screen.cols) * report.screen.rows;
  out << "Correction    " << SettingsText(report.settings) << "\n";
  if (!report.source.empty()) out << "Measurement   " << report.source << "\n";
  if (!report.targetsFile.empty()) out << "Targets from  " << report.targetsFile << "\n";
  out << Format("Screen        %d x %d LEDs (%lld)", report.screen.cols, report.screen.rows,
                static_cast<long long>(leds));
  if (report.panel.cols > 0 && report.panel.rows > 0) {
    out << Format(", panels of %d x %d LEDs", report.panel.cols, report.panel.rows);
  }
  out << "\n\n";
  out << Format("Scale k       %s: every target luminance times k, so that all but %.3g %% of"
                " the LEDs\n              reach the targets without driving an emitter beyond"
                " full scale\n",
                FloatText(report.scale).c_str(),
                (1.0 - static_cast<double>(report.settings.quantile)) * 100.0);
  out << Format("White         luminance %s after correction (the sum of the scaled red, green"
                " and blue)\n",
                Fixed(report.summary.whiteLuminance, 4).c_str());
  PrintTargetBlock(out, "Scaled targets", report.targets);
  out << "\n";
  out << Format("LEDs          %lld corrected, %lld skipped (dead %lld, not finite %lld, singular"
                " %lld)\n",
                Count(n.corrected), Count(n.dead + n.notFinite + n.singular), Count(n.dead),
                Count(n.notFinite), Count(n.singular));
  out << Format("  clipped     red %lld, green %lld, blue %lld: the target lies outside the"
                " LED's own gamut\n",
                Count(n.clippedRed), Count(n.clippedGreen), Count(n.clippedBlue));
  out << Format("  dimmed      %lld: scaled down so that no emitter exceeds full drive\n",
                Count(n.dimmed));
  if (report.settings.bits > 0) {
    out << Format("  rounding    %lld rows lowered to fit full scale after rounding\n",
                  Count(n.roundingRepaired));
  }
  out << "\n";
  out << Format("CIEDE2000 colour difference %12s %8s %8s %8s\n", "p50", "p95", "p99", "max");
  out << "  before: each LED's own primaries and white against the screen's median\n";
  PrintDifferences(out, "before", report.summary.before);
  out << "  after: the corrected LED against the scaled targets (predicted)\n";
  PrintDifferences(out, "after", report.summary.after);
  out << Format("Within        white after at most 1.0: %s of the corrected LEDs; at most 2.0:"
                " %s\n",
                Share(report.summary.shareWithin1).c_str(),
                Share(report.summary.shareWithin2).c_str());
  out << Format("White luminance uniformity %8s %16s\n", "min/max", "rel. std. dev.");
  out << Format("  before %26s %16s\n", Fixed(report.summary.whiteBefore.minOverMax, 4).c_str(),
                Share(report.summary.whiteBefore.relativeStdDev).c_str());
  out << Format("  after  %26s %16s\n", Fixed(report.summary.whiteAfter.minOverMax, 4).c_str(),
                Share(report.summary.whiteAfter.relativeStdDev).c_str());
  if (!report.worst.empty()) {
    out << "\nWorst LEDs    largest white difference after correction\n";
    out << Format("  %5s %5s  %-26s %6s  %-27s  %s\n", "row", "col", "flags", "gain",
                  "after: red green blue white", "white before");
    for (const WorstLed& led : report.worst) {
      out << Format("  %5d %5d  %-26s %6.3f  %6.2f %6.2f %6.2f %6.2f  %12.2f\n", led.row,
                    led.col, FlagText(led.flags).c_str(), static_cast<double>(led.gain),
                    static_cast<double>(led.after[0]), static_cast<double>(led.after[1]),
                    static_cast<double>(led.after[2]), static_cast<double>(led.after[3]),
                    static_cast<double>(led.before[3]));
    }
  }
  if (!report.timings.empty()) {
    out << "\nTimings\n";
    double total = 0.0;
    for (const TimedStep& step : report.timings) {
      out << Format("  %-26s %9.1f ms\n", step.name.c_str(), step.seconds * 1000.0);
      total += step.seconds;
    }
    out << Format("  %-26s %9.1f ms\n", "total", total * 1000.0);
  }
  if (!report.outputs.empty()) {
    out << "\nWrote\n";
    for (const std::string& file : report.outputs) out << "  " << file << "\n";
  }
}

ReportJson CorrectionReportJson(const CorrectionReport& report) {
  const CorrectionCounts& n = report.counts;
  ReportJson json;
  json["source"] = report.source;
  json["targetsFile"] = report.targetsFile;
  json["screen"] = {{"cols", report.screen.cols}, {"rows", report.screen.rows}};
  if (report.panel.cols > 0) json["panel"] = {{"cols", report.panel.cols}, {"rows", report.panel.rows}};
  json["settings"] = {{"quantile", report.settings.quantile},
                      {"mode", ModeName(report.settings.mode)},
                      {"bits", report.settings.bits}};
  json["scale"] = report.scale;
  json["whiteLuminance"] = static_cast<float>(report.summary.whiteLuminance);
  json["targets"] = TargetBlockJson(report.targets);
  json["counts"] = {{"corrected", n.corrected},       {"dead", n.dead},
                    {"notFinite", n.notFinite},       {"singular", n.singular},
                    {"clippedRed", n.clippedRed},     {"clippedGreen", n.clippedGreen},
                    {"clippedBlue", n.clippedBlue},   {"dimmed", n.dimmed},
                    {"roundingRepaired", n.roundingRepaired}};
  for (int i = 0; i < kDifferenceChannels; ++i) {
    json["deltaE2000"]["before"][kChannelNames[i]] = PercentilesJson(report.summary.before[i]);
    json["deltaE2000"]["after"][kChannelNames[i]] = PercentilesJson(report.summary.after[i]);
  }
  json["shareWhiteAfterWithin"] = {{"1.0", static_cast<float>(report.summary.shareWithin1)},
                                   {"2.0", static_cast<float>(report.summary.shareWithin2)}};
  json["whiteLuminanceUniformity"] = {{"before", UniformityJson(report.summary.whiteBefore)},
                                      {"after", UniformityJson(report.summary.whiteAfter)}};
  json["worst"] = ReportJson::array();
  for (const WorstLed& led : report.worst) {
    json["worst"].push_back({{"row", led.row}, {"col", led.col}, {"flags", FlagText(led.flags)},
                             {"gain", led.gain}, {"before", DifferencesJson(led.before)},
                             {"after", DifferencesJson(led.after)}});
  }
  ReportJson timings = ReportJson::object();
  for (const TimedStep& step : report.timings) timings[step.name] = static_cast<float>(step.seconds);
  json["timingsSeconds"] = timings;
  json["outputs"] = report.outputs;
  return json;
}

}  // namespace tool
}  // namespace aimhue
