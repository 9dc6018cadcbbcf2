#include "report.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <sstream>

namespace aimhue {
namespace tool {
namespace {

TEST(FloatText, WritesTheShortestFormAndNamesNonFiniteValues) {
  EXPECT_EQ(FloatText(0.1f + 0.2f), "0.3");
  EXPECT_EQ(FloatText(std::nextafter(0.8f, 1.0f)), "0.8000001");
  EXPECT_EQ(FloatText(std::numeric_limits<float>::quiet_NaN()), "nan");
  EXPECT_EQ(FloatText(-std::numeric_limits<float>::infinity()), "-inf");
}

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

TEST(CalibrationReport, JsonHoldsTheReportedNumbers) {
  const ReportJson json = ReportJson::parse(CalibrationReportJson(SampleReport()).dump());
  EXPECT_EQ(json["targets"]["red"]["x"].get<float>(), 0.64f);
  EXPECT_EQ(json["targets"]["white"]["L"].get<float>(), 35.5f);
  EXPECT_EQ(json["coverage"]["all"].get<float>(), 0.5f);
  EXPECT_EQ(json["ngLimit"].get<float>(), 0.42f);
  EXPECT_EQ(json["outliers"]["red"].get<int32_t>(), 3);
  EXPECT_EQ(json["deadLeds"]["found"]["red"].get<int64_t>(), 2);
  EXPECT_EQ(json["outliers"]["ledsMissingTargets"].get<int64_t>(), 6);
  EXPECT_EQ(json["screen"]["leds"].get<int64_t>(), 12);
  EXPECT_FALSE(json["ng"].get<bool>());
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
