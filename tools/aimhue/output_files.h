// The files the tool writes besides the engine's own results: the JSON
// report and the gamut plot.
#ifndef AIMHUE_TOOLS_OUTPUT_FILES_H_
#define AIMHUE_TOOLS_OUTPUT_FILES_H_

#include <string>

#include "meter_set.h"
#include "report.h"

namespace aimhue {
namespace tool {

// Writes `json` indented by two blanks, with a final line end;
// CommandError (exit status 4) when the file cannot be written.
void WriteJsonFile(const std::string& file, const ReportJson& json);

// Draws the gamut plot of the meters' LEDs (at most 300000 per primary) and
// of the report's mean and target triangles, and writes it as a PNG file;
// CommandError (exit status 4) when it cannot be written.
void WriteGamutPlot(const std::string& file, const Meters& meters, const CalibrationReport& report);

}  // namespace tool
}  // namespace aimhue

#endif  // AIMHUE_TOOLS_OUTPUT_FILES_H_
