// The per-LED correction as `correct` and `demo` run it: the library's
// CalcCorrection on loaded meters, its refusals as command errors, and the
// files it writes.
#ifndef AIMHUE_TOOLS_CORRECTION_RUN_H_
#define AIMHUE_TOOLS_CORRECTION_RUN_H_

#include <aimhue/correction.h>

#include <ostream>
#include <string>
#include <vector>

#include <opencv2/core.hpp>

#include "correction_report.h"
#include "meter_set.h"
#include "output_transaction.h"

namespace aimhue {
namespace tool {

// CalcCorrection of `targets` on the meters. CommandError (exit status 3)
// when the meters differ in size (naming them), when no LED is left to
// correct, when the targets form a degenerate triangle, or for any other
// refusal with the library's status. `targets_source` names the targets'
// origin in messages.
Correction ComputeCorrection(const Meters& meters, const TargetBlock& targets,
                             const CorrectionSettings& settings, const std::string& targets_source);

// CommandError (exit status 3) when a primary target lies outside the gamut
// of every corrected LED (chroma mode): no LED can show it, and the
// correction would quietly give every LED another colour.
void CheckTargetsReachable(const Correction& correction);

// The LED panel size the meters carry (the red X meter's panel record), or
// 0 x 0 when they carry none.
ScreenSize MeterPanelSize(const Meters& meters);

// The correction map of a correction and its report.
cv::Mat DrawMapOf(const Correction& correction, const CorrectionReport& report,
                  const std::string& title);

// Adds the map as a PNG, compressed hard: its noisy "before" view is large
// otherwise. Exit status 4 on failure.
void WriteMap(OutputTransaction& outputs, const std::string& target, const cv::Mat& map);

// Encodes a picture with OpenCV, in the format of the target's extension
// and with OpenCV's writer `parameters`, and adds it to the outputs;
// CommandError (exit status 4) naming `target` when it cannot be encoded.
void WriteImage(OutputTransaction& outputs, const std::string& target, const cv::Mat& image,
                const char* what, const std::vector<int>& parameters = {});

// Adds the correction record's ".corr" content (Correction::ToBuffer); exit
// status 3 when the library refuses.
void WriteCorrectionFile(OutputTransaction& outputs, const std::string& target,
                         const Correction& correction);

// The demo's last step: corrects the calibrated synthetic screen to its
// targets with the default settings, writes correction.corr and
// correction_map.png into `folder` and prints the report (with the five
// worst LEDs) to `out`.
void CorrectDemoScreen(const Meters& meters, const TargetBlock& targets, const std::string& source,
                       const std::string& folder, std::ostream& out);

}  // namespace tool
}  // namespace aimhue

#endif  // AIMHUE_TOOLS_CORRECTION_RUN_H_
