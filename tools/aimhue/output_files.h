// The bytes of the files the tool writes: the engine's results, the JSON
// reports and the gamut plot. Nothing here touches the disk; a command hands
// the bytes to its OutputTransaction.
#ifndef AIMHUE_TOOLS_OUTPUT_FILES_H_
#define AIMHUE_TOOLS_OUTPUT_FILES_H_

#include <aimhue/api.h>

#include <string>

#include "meter_set.h"
#include "report.h"

namespace aimhue {
namespace tool {

// The record's ".aimhue" content (AimhueGetBufferSize, AimhueToBuffer);
// CommandError (exit status 3) when the library refuses.
std::string EngineFileBytes(AimhueHandle handle);

// `json` indented by two blanks, with a final line end. Strings that are
// not valid UTF-8 have their bad bytes replaced by U+FFFD.
// How many LEDs of each primary the gamut plot shows at most.
constexpr std::size_t kPlottedLedsPerPrimary = 300000;

std::string JsonText(const ReportJson& json);

// The gamut plot of the LEDs' chromaticities (MeasureScreen's sample) and of
// the report's mean and target triangles, encoded as PNG; CommandError (exit
// status 4) when OpenCV cannot encode it.
std::string GamutPlotPng(const std::array<std::vector<cv::Point2f>, kPrimaryCount>& leds,
                        const CalibrationReport& report);

}  // namespace tool
}  // namespace aimhue

#endif  // AIMHUE_TOOLS_OUTPUT_FILES_H_
