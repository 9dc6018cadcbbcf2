// Per-panel figures of a correction.
#include "panel_table.h"

#include <cmath>
#include <cstdio>

namespace aimhue {
namespace tool {
namespace {

std::string Number(double value) {
  if (!std::isfinite(value)) return "";
  char text[32];
  std::snprintf(text, sizeof text, "%.6g", value);
  return text;
}

}  // namespace

const std::array<FlagName, 8>& CorrectionFlagNames() {
  static const std::array<FlagName, 8> kNames = {{
      {kCorrectionDead, "dead"},
      {kCorrectionNotFinite, "not-finite"},
      {kCorrectionSingular, "singular"},
      {kCorrectionClippedRed, "clipped-red"},
      {kCorrectionClippedGreen, "clipped-green"},
      {kCorrectionClippedBlue, "clipped-blue"},
      {kCorrectionDimmed, "dimmed"},
      {kCorrectionRoundingRepaired, "rounding-repaired"},
  }};
  return kNames;
}

std::string FlagText(uint8_t flags) {
  std::string text;
  for (const FlagName& flag : CorrectionFlagNames()) {
    if ((flags & flag.bit) == 0) continue;
    text += (text.empty() ? "" : "+") + std::string(flag.name);
  }
  return text.empty() ? "-" : text;
}

std::vector<PanelRow> PanelRows(const cv::Mat& flags, const cv::Mat& gain,
                                const cv::Mat& deltaEBefore, const cv::Mat& deltaEAfter,
                                const ScreenSize& panel) {
  std::vector<PanelRow> rows;
  if (panel.cols <= 0 || panel.rows <= 0) return rows;
  const auto& names = CorrectionFlagNames();
  std::vector<float> before;
  std::vector<float> after;
  for (int top = 0, panel_row = 0; top < flags.rows; top += panel.rows, ++panel_row) {
    for (int left = 0, panel_col = 0; left < flags.cols; left += panel.cols, ++panel_col) {
      PanelRow row;
      row.panelRow = panel_row;
      row.panelCol = panel_col;
      row.row = top;
      row.col = left;
      row.rows = std::min(panel.rows, flags.rows - top);
      row.cols = std::min(panel.cols, flags.cols - left);
      before.clear();
      after.clear();
      double gain_sum = 0.0;
      for (int r = top; r < top + row.rows; ++r) {
        const uint8_t* f = flags.ptr<uint8_t>(r);
        const float* g = gain.ptr<float>(r);
        const cv::Vec4f* b = deltaEBefore.ptr<cv::Vec4f>(r);
        const cv::Vec4f* a = deltaEAfter.ptr<cv::Vec4f>(r);
        for (int c = left; c < left + row.cols; ++c) {
          for (std::size_t i = 0; i < names.size(); ++i) row.flagCounts[i] += (f[c] & names[i].bit) != 0;
          if ((f[c] & kCorrectionSkipped) != 0) continue;
          ++row.corrected;
          gain_sum += static_cast<double>(g[c]);
          before.push_back(b[c][3]);
          after.push_back(a[c][3]);
        }
      }
      row.meanGain = row.corrected > 0 ? gain_sum / static_cast<double>(row.corrected) : NAN;
      row.whiteBefore = FinitePercentiles(before);
      row.whiteAfter = FinitePercentiles(after);
      rows.push_back(row);
    }
  }
  return rows;
}

void WritePanelCsv(std::ostream& out, const std::vector<PanelRow>& rows) {
  out << "panel_row,panel_col,led_row,led_col,rows,cols,corrected";
  for (const FlagName& flag : CorrectionFlagNames()) out << "," << flag.name;
  out << ",mean_gain,white_before_p50,white_before_p95,white_before_max,white_after_p50,"
         "white_after_p95,white_after_max\n";
  for (const PanelRow& row : rows) {
    out << row.panelRow << "," << row.panelCol << "," << row.row << "," << row.col << ","
        << row.rows << "," << row.cols << "," << row.corrected;
    for (const int64_t count : row.flagCounts) out << "," << count;
    out << "," << Number(row.meanGain) << "," << Number(row.whiteBefore.p50) << ","
        << Number(row.whiteBefore.p95) << "," << Number(row.whiteBefore.max) << ","
        << Number(row.whiteAfter.p50) << "," << Number(row.whiteAfter.p95) << ","
        << Number(row.whiteAfter.max) << "\n";
  }
}

}  // namespace tool
}  // namespace aimhue
