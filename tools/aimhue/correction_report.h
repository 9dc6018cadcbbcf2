// The report of a per-LED correction (`correct` and `demo`), for people and
// as JSON, and the list of the LEDs that stay farthest from the targets.
#ifndef AIMHUE_TOOLS_CORRECTION_REPORT_H_
#define AIMHUE_TOOLS_CORRECTION_REPORT_H_

#include <aimhue/correction.h>

#include <ostream>
#include <vector>

#include "correction_report_types.h"
#include "report.h"

namespace aimhue {
namespace tool {

// The `count` corrected LEDs with the largest white difference after
// correction, largest first (ties in row-major order); fewer when the
// screen has fewer corrected LEDs.
std::vector<WorstLed> WorstLeds(const Correction& correction, int count);

// The report's figures from a correction and the meters it was computed
// from; source, targetsFile, panel, worst, timings and outputs are left to
// the caller.
CorrectionReport MakeCorrectionReport(const Correction& correction, const Meters& meters);

void PrintCorrectionReport(std::ostream& out, const CorrectionReport& report);
ReportJson CorrectionReportJson(const CorrectionReport& report);

// The name of a mode as the --mode option spells it: "chroma", "brightness".
const char* ModeName(CorrectionMode mode);

}  // namespace tool
}  // namespace aimhue

#endif  // AIMHUE_TOOLS_CORRECTION_REPORT_H_
