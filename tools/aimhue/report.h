// The reports of the tool's commands, for people (a terminal layout) and for
// programs (JSON).
//
// Every 32-bit float of a JSON report is written in its shortest decimal
// form that reads back to the same float, so a program that parses the
// report and rounds each number to 32 bits gets the library's values bit for
// bit. A NaN (for example the coverage of a mask that counts no LED) is
// written as null.
#ifndef AIMHUE_TOOLS_REPORT_H_
#define AIMHUE_TOOLS_REPORT_H_

#include <cstdint>
#include <map>
#include <ostream>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "report_types.h"

namespace aimhue {
namespace tool {

// JSON whose numbers are 32-bit floats; its writer prints each float in the
// shortest form that reads back to the same float.
using ReportJson = nlohmann::basic_json<std::map, std::vector, std::string, bool, std::int64_t,
                                        std::uint64_t, float>;

// The shortest decimal text that reads back to exactly `value` as a 32-bit
// float ("0.3127", "1", "1e-08"); "nan", "inf" or "-inf" for non-finite
// values.
std::string FloatText(float value);

void PrintCalibrationReport(std::ostream& out, const CalibrationReport& report);
ReportJson CalibrationReportJson(const CalibrationReport& report);

void PrintCoverageReport(std::ostream& out, const CoverageReport& report);
ReportJson CoverageReportJson(const CoverageReport& report);

// Shared pieces, also used by `inspect`.
ReportJson TargetBlockJson(const TargetBlock& block);
ReportJson CoverageJson(const Coverage& coverage);
void PrintTargetBlock(std::ostream& out, const char* title, const TargetBlock& block);

}  // namespace tool
}  // namespace aimhue

#endif  // AIMHUE_TOOLS_REPORT_H_
