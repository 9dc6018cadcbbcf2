// The content of the result, report and plot files.
#include "output_files.h"

#include <aimhue/picture_files.h>

#include <vector>


#include "command_error.h"
#include "gamut_plot.h"

namespace aimhue {
namespace tool {
std::string EngineFileBytes(AimhueHandle handle) {
  uint64_t size = 0;
  CheckStatus(AimhueGetBufferSize(handle, &size), "cannot size the engine's results");
  std::string bytes(static_cast<std::size_t>(size), '\0');
  CheckStatus(AimhueToBuffer(handle, bytes.data(), &size), "cannot read the engine's results");
  bytes.resize(static_cast<std::size_t>(size));
  return bytes;
}

std::string JsonText(const ReportJson& json) {
  return json.dump(2, ' ', false, ReportJson::error_handler_t::replace) + "\n";
}

std::string GamutPlotPng(const std::array<std::vector<cv::Point2f>, kPrimaryCount>& leds,
                        const CalibrationReport& report) {
  GamutPlotInput input;
  input.title = "aimhue gamut plot - " + report.source;
  input.whiteName = report.white.name;
  input.leds = leds;
  input.searchStart = report.searchStart;
  input.targets = report.targets;
  std::vector<uint8_t> png;
  if (!EncodePicture(".png", DrawGamutPlot(input), png)) throw CommandError(kExitOutput, "cannot encode the gamut plot");
  return std::string(png.begin(), png.end());
}

}  // namespace tool
}  // namespace aimhue
