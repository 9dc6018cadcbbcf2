// The correction of a screen panel by panel: a screen is built from panels
// (modules) of a fixed LED size, and a panel whose LEDs stay far from the
// targets is usually one physical part to inspect or replace.
#ifndef AIMHUE_TOOLS_PANEL_TABLE_H_
#define AIMHUE_TOOLS_PANEL_TABLE_H_

#include <aimhue/correction.h>

#include <array>
#include <cstdint>
#include <ostream>
#include <vector>

#include <opencv2/core.hpp>

#include "arguments.h"
#include "correction_statistics.h"

namespace aimhue {
namespace tool {

// The eight flag bits in the order of the table's columns, with their names.
struct FlagName {
  uint8_t bit;
  const char* name;  // "dead", "not-finite", "singular", "clipped-red", ...
};
const std::array<FlagName, 8>& CorrectionFlagNames();

// The names of the bits set in `flags`, separated by '+' ("clipped-red+dimmed"),
// or "-" for none.
std::string FlagText(uint8_t flags);

// One panel: LEDs [row, row + rows) x [col, col + cols) of the screen. The
// panels of the last row and column are smaller when the screen is not a
// whole number of panels.
struct PanelRow {
  int panelRow = 0;
  int panelCol = 0;
  int row = 0;
  int col = 0;
  int rows = 0;
  int cols = 0;
  std::array<int64_t, 8> flagCounts{};  // in the order of CorrectionFlagNames()
  int64_t corrected = 0;                // LEDs not skipped
  double meanGain = 0.0;                // over the corrected LEDs; NaN without one
  Percentiles whiteBefore;              // white CIEDE2000 before correction
  Percentiles whiteAfter;
};

// The panels of `panel` size (cols x rows of LEDs) over the planes of a
// correction (flags CV_8UC1, gain CV_32FC1, differences CV_32FC4 of one
// size), in row-major order of panels.
std::vector<PanelRow> PanelRows(const cv::Mat& flags, const cv::Mat& gain,
                                const cv::Mat& deltaEBefore, const cv::Mat& deltaEAfter,
                                const ScreenSize& panel);

// The rows as CSV: a header line, then one line per panel. Numbers are
// written with enough digits to tell panels apart; NaN is written as an
// empty field.
void WritePanelCsv(std::ostream& out, const std::vector<PanelRow>& rows);

}  // namespace tool
}  // namespace aimhue

#endif  // AIMHUE_TOOLS_PANEL_TABLE_H_
