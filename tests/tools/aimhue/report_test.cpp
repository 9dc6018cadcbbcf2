#include "report.h"

#include <gtest/gtest.h>

#include <sstream>

namespace aimhue {
namespace tool {
namespace {

CalibrationReport SampleReport() {
  CalibrationReport report;
  report.source = "synthetic 4x3";
  report.screen = {4, 3};
  report.dead.found = {2, 0, 1};
  report.dead.remaining = {0, 0, 0};
  report.dead.repaired = true;
  report.percentEnd = {1, 1, 1, 1};
  report.fractions = {1, 1, 1, 1};
  report.white = {"D65", 0.3127f, 0.3290f};
  report.ngThresh = 0.08f;
  report.targets = {{{10.5f, 0.64f, 0.33f}, {20, 0.3f, 0.6f}, {5, 0.15f, 0.06f},
                     {35.5f, 0.3127f, 0.329f}}};
  report.outliers = {3, 0, 1};
  report.ledsMissingTargets = 6;
  report.coverage = {1.0f, 0.75f, 0.5f, 0.5f};
  report.ngLimit = 0.42f;
  report.timings = {{"search", 0.012}};
  return report;
}

TEST(CalibrationReport, TerminalReportShowsExactValuesAndPercentages) {
  std::ostringstream out;
  PrintCalibrationReport(out, SampleReport());
  const std::string text = out.str();
  for (const char* expected : {"0.3127", "75.00 %", "50.00 %", "0.42", "pass", "12.0 ms",
                               "red 2, green 0, blue 1", "means: red 3, green 0, blue 1",
                               "misses a target: 6 of 12"}) {
    EXPECT_NE(text.find(expected), std::string::npos) << expected << "\n" << text;
  }
}

}  // namespace
}  // namespace tool
}  // namespace aimhue
