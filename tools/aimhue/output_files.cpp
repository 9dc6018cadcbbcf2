// Writing the JSON report and the gamut plot.
#include "output_files.h"

#include <fstream>

#include <opencv2/imgcodecs.hpp>

#include "command_error.h"
#include "gamut_plot.h"

namespace aimhue {
namespace tool {
namespace {

constexpr std::size_t kPlottedLedsPerPrimary = 300000;

}  // namespace

void WriteJsonFile(const std::string& file, const ReportJson& json) {
  std::ofstream out(file, std::ios::binary | std::ios::trunc);
  out << json.dump(2) << "\n";
  out.close();
  if (!out) throw CommandError(kExitOutput, "cannot write the JSON report '" + file + "'");
}

void WriteGamutPlot(const std::string& file, const Meters& meters, const CalibrationReport& report) {
  GamutPlotInput input;
  input.title = "aimhue gamut plot - " + report.source;
  input.whiteName = report.white.name;
  for (int p = 0; p < 3; ++p) {
    input.leds[p] = LedChromaticities(meters[p][0].chroma, meters[p][1].chroma, meters[p][2].chroma,
                                      kPlottedLedsPerPrimary);
  }
  input.searchStart = report.searchStart;
  input.targets = report.targets;
  const cv::Mat image = DrawGamutPlot(input);
  bool written = false;
  try {
    written = cv::imwrite(file, image);
  } catch (const cv::Exception&) {
    written = false;  // an unknown extension: OpenCV throws instead of returning false
  }
  if (!written) throw CommandError(kExitOutput, "cannot write the gamut plot '" + file + "'");
}

}  // namespace tool
}  // namespace aimhue
