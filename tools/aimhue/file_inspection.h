// What the library's files hold, for `aimhue inspect`: each file becomes a
// JSON object, which is printed as text for people or as it is for
// programs.
#ifndef AIMHUE_TOOLS_FILE_INSPECTION_H_
#define AIMHUE_TOOLS_FILE_INSPECTION_H_

#include <ostream>
#include <string>

#include "report.h"

namespace aimhue {
namespace tool {

// Loads `file` by its extension (.aimhue, .meter, .shot or .corr) and
// describes it: "file" and "kind" ("aimhue", "meter", "shot" or "corr") and
// the content.
// CommandError naming the library's status when the file cannot be loaded
// (exit status 3), or for an unknown extension (exit status 2).
ReportJson InspectFile(const std::string& file);

// The description as text.
void PrintInspection(std::ostream& out, const ReportJson& inspection);

}  // namespace tool
}  // namespace aimhue

#endif  // AIMHUE_TOOLS_FILE_INSPECTION_H_
