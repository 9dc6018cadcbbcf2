// Running the correction and writing its files.
#include "correction_run.h"

#include <aimhue/picture_files.h>
#include <aimhue/status.h>

#include <cmath>
#include <filesystem>

#include <opencv2/imgcodecs.hpp>  // the codecs' parameter names

#include "command_error.h"
#include "correction_map.h"

namespace aimhue {
namespace tool {
namespace {

const char* const kPrimaryNames[3] = {"red", "green", "blue"};
const char* const kAxisNames[3] = {"X", "Y", "Z"};

// Twice the area of the targets' triangle in the chromaticity diagram.
double TriangleArea(const TargetBlock& t) {
  return std::fabs((static_cast<double>(t[1].x) - t[0].x) * (static_cast<double>(t[2].y) - t[0].y) -
                   (static_cast<double>(t[2].x) - t[0].x) * (static_cast<double>(t[1].y) - t[0].y));
}

void CheckMeterSizes(const Meters& meters) {
  const cv::Size size = meters[0][0].chroma.size();
  for (int p = 0; p < 3; ++p) {
    for (int c = 0; c < 3; ++c) {
      const cv::Size other = meters[p][c].chroma.size();
      if (other == size) continue;
      throw CommandError(
          kExitLibrary,
          "the meters are not of one screen: red X has " + std::to_string(size.width) + " x " +
              std::to_string(size.height) + " LEDs, " + kPrimaryNames[p] + " " + kAxisNames[c] +
              " has " + std::to_string(other.width) + " x " + std::to_string(other.height) +
              " (status 9, " + StatusText(kOutOfRange) + ")");
    }
  }
}

}  // namespace

Correction ComputeCorrection(const Meters& meters, const TargetBlock& targets,
                             const CorrectionSettings& settings, const std::string& targets_source) {
  CheckMeterSizes(meters);
  const MeterTriple red = Triple(meters, 0);
  const MeterTriple green = Triple(meters, 1);
  const MeterTriple blue = Triple(meters, 2);
  Correction correction;
  const int status =
      CalcCorrection(targets.data(), red.get(), green.get(), blue.get(), settings, &correction);
  if (status == kEmptyInput) {
    const ScreenSize screen = MeterScreen(meters);
    throw CommandError(kExitLibrary,
                       "no LED left to correct: all " +
                           std::to_string(static_cast<long long>(screen.cols) * screen.rows) +
                           " LEDs are dead, not finite or singular (status 5)");
  }
  if (status == kOutOfRange && TriangleArea(targets) < 1e-9) {
    throw CommandError(kExitLibrary, "the targets of " + targets_source +
                                         " form a degenerate triangle (red, green and blue lie"
                                         " on one line), so no mix of them shows other colours"
                                         " (status 9)");
  }
  CheckStatus(status, "the correction refused the targets of " + targets_source + " or the meters");
  return correction;
}

void CheckTargetsReachable(const Correction& correction) {
  if (correction.settings.mode != CorrectionMode::Chroma) return;
  const CorrectionCounts& n = correction.counts;
  const int64_t clipped[3] = {n.clippedRed, n.clippedGreen, n.clippedBlue};
  std::string unreachable;
  for (int p = 0; p < 3; ++p) {
    if (n.corrected > 0 && clipped[p] == n.corrected) {
      unreachable += (unreachable.empty() ? "" : " and ") + std::string(kPrimaryNames[p]);
    }
  }
  if (unreachable.empty()) return;
  throw CommandError(kExitLibrary, "the " + unreachable +
                                       " target lies outside the gamut of every LED: no LED can"
                                       " show it, so nothing was written (choose targets inside"
                                       " the screen's gamut, for example with calibrate)");
}

ScreenSize MeterPanelSize(const Meters& meters) {
  const LedPanel* panel = meters[0][0].led_panel.get();
  if (panel == nullptr || panel->w <= 0 || panel->h <= 0) return ScreenSize{};
  return ScreenSize{panel->w, panel->h};
}

cv::Mat DrawMapOf(const Correction& correction, const CorrectionReport& report,
                  const std::string& title) {
  CorrectionMapInput input;
  input.title = title;
  cv::extractChannel(correction.deltaEBefore, input.whiteBefore, 3);
  cv::extractChannel(correction.deltaEAfter, input.whiteAfter, 3);
  input.flags = correction.flags;
  input.panel = report.panel;
  input.before = report.summary.before[3];
  input.after = report.summary.after[3];
  return DrawCorrectionMap(input);
}

void CorrectDemoScreen(const Meters& meters, const TargetBlock& targets, const std::string& source,
                       const std::string& folder, std::ostream& out) {
  constexpr int kDemoWorstLeds = 5;
  std::vector<TimedStep> timings;
  Correction correction;
  Timed(timings, "correction", [&] {
    correction = ComputeCorrection(meters, targets, CorrectionSettings{}, "the calibration");
  });
  CorrectionReport report;
  Timed(timings, "statistics", [&] {
    report = MakeCorrectionReport(correction, meters);
    report.worst = WorstLeds(correction, kDemoWorstLeds);
  });
  report.source = source;
  report.panel = MeterPanelSize(meters);
  report.timings = timings;
  const std::string corr_file = (std::filesystem::path(folder) / "correction.corr").string();
  const std::string map_file = (std::filesystem::path(folder) / "correction_map.png").string();
  OutputTransaction outputs;
  Timed(report.timings, "outputs", [&] {
    WriteCorrectionFile(outputs, corr_file, correction);
    WriteMap(outputs, map_file, DrawMapOf(correction, report, "aimhue correction map - " + source));
  });
  outputs.Commit();
  report.outputs = {corr_file, map_file};
  out << "\nPer-LED correction to these targets\n\n";
  PrintCorrectionReport(out, report);
}

void WriteMap(OutputTransaction& outputs, const std::string& target, const cv::Mat& map) {
  constexpr int kHardestPngCompression = 9;
  WriteImage(outputs, target, map, "correction map",
             {cv::IMWRITE_PNG_COMPRESSION, kHardestPngCompression});
}

void WriteImage(OutputTransaction& outputs, const std::string& target, const cv::Mat& image,
                const char* what, const std::vector<int>& parameters) {
  std::vector<uint8_t> bytes;
  if (!EncodePicture(std::filesystem::path(target).extension().string(), image, bytes,
                     parameters)) {
    throw CommandError(kExitOutput, std::string("cannot encode the ") + what + " '" + target + "'");
  }
  outputs.Add(target, reinterpret_cast<const char*>(bytes.data()), bytes.size());
}

void WriteCorrectionFile(OutputTransaction& outputs, const std::string& target,
                         const Correction& correction) {
  uint64_t size = 0;
  CheckStatus(correction.GetBufferSize(&size), "cannot store the correction");
  std::string bytes(static_cast<std::size_t>(size), '\0');
  CheckStatus(correction.ToBuffer(bytes.data(), &size), "cannot store the correction");
  outputs.Add(target, bytes.data(), static_cast<std::size_t>(size));
}


}  // namespace tool
}  // namespace aimhue
