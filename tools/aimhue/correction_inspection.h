// What a correction file (.corr) holds, for `aimhue inspect`: the whole
// screen's figures, or one LED's coefficients.
#ifndef AIMHUE_TOOLS_CORRECTION_INSPECTION_H_
#define AIMHUE_TOOLS_CORRECTION_INSPECTION_H_

#include <optional>
#include <ostream>
#include <string>

#include "report.h"

namespace aimhue {
namespace tool {

// An LED's position on the screen: row and column from 0.
struct LedPosition {
  int row = 0;
  int col = 0;
};

// Loads a .corr file and describes it ("kind": "corr"): screen size,
// settings, scale, scaled targets, flag counts and the white CIEDE2000
// percentiles before and after. With `led`, describes that LED instead
// ("kind": "corr-led"): its 3 x 3 coefficients, flags, gain and colour
// differences. CommandError: exit status 3 when the file cannot be loaded,
// 2 when the LED lies outside the screen.
ReportJson InspectCorrection(const std::string& file, const std::optional<LedPosition>& led);

// The description as text.
void PrintCorrectionInspection(std::ostream& out, const ReportJson& inspection);

}  // namespace tool
}  // namespace aimhue

#endif  // AIMHUE_TOOLS_CORRECTION_INSPECTION_H_
