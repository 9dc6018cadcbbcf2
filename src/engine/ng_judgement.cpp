// The NG limit from the current screen's coverage, and the NG verdict of a
// later measurement against it.
#include <aimhue/status.h>

#include "engine/aimhue.h"
#include "engine/percent_of_target.h"

namespace aimhue {

int Aimhue::CalcPercentNG(const ChromaLxy* red, const ChromaLxy* green, const ChromaLxy* blue,
                          Coverage* measured) {
  Coverage coverage;
  const int status = PercentOfTarget(red, green, blue, TargetFloats(target), coverage, cv::Mat());
  if (status != kOk) return status;
  SetNGLimit(coverage);
  if (measured != nullptr) *measured = coverage;
  return kOk;
}

bool Aimhue::JudgeNG(const ChromaLxy* red, const ChromaLxy* green, const ChromaLxy* blue,
                     Coverage* measured) {
  Coverage coverage;
  const int status = PercentOfTarget(red, green, blue, TargetFloats(target), coverage, cv::Mat());
  // Without a count there is nothing to judge: fail the screen.
  if (status != kOk) return true;
  if (measured != nullptr) *measured = coverage;
  return IsNG(coverage);
}

void Aimhue::SetNGLimit(const Coverage& coverage) { ngLimit = coverage.all - ngThresh; }

bool Aimhue::IsNG(const Coverage& coverage) const { return ngLimit > coverage.all; }

}  // namespace aimhue
