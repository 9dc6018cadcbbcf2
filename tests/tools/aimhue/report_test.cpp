#include "report.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <random>
#include <sstream>

namespace aimhue {
namespace tool {
namespace {

uint32_t Bits(float value) {
  uint32_t bits = 0;
  std::memcpy(&bits, &value, sizeof bits);
  return bits;
}

TEST(FloatText, IsTheShortestTextThatReadsBackToTheSameFloat) {
  EXPECT_EQ(FloatText(0.3127f), "0.3127");
  EXPECT_EQ(FloatText(1.0f), "1");
  EXPECT_EQ(FloatText(0.1f + 0.2f), "0.3");
  EXPECT_EQ(FloatText(1e-8f), "1e-08");
  EXPECT_EQ(FloatText(std::nextafter(0.8f, 1.0f)), "0.8000001");
  EXPECT_EQ(FloatText(std::numeric_limits<float>::quiet_NaN()), "nan");
  EXPECT_EQ(FloatText(-std::numeric_limits<float>::infinity()), "-inf");
}

TEST(FloatText, RoundTripsRandomFloatsBitForBit) {
  std::mt19937 random(7);
  std::uniform_int_distribution<uint32_t> any_bits;
  for (int i = 0; i < 20000; ++i) {
    const uint32_t bits = any_bits(random);
    float value = 0.0f;
    std::memcpy(&value, &bits, sizeof value);
    if (!std::isfinite(value)) continue;
    const std::string text = FloatText(value);
    EXPECT_EQ(Bits(std::strtof(text.c_str(), nullptr)), bits) << text;
  }
}

// The JSON writer must print every float in its shortest round-trip form
// too, and what it writes must read back to the same bits.
TEST(ReportJson, WritesFloatsInTheirShortestRoundTripForm) {
  std::mt19937 random(11);
  std::uniform_real_distribution<float> chromaticity(0.0f, 0.8f);
  for (int i = 0; i < 2000; ++i) {
    const float value = chromaticity(random);
    ReportJson json;
    json["v"] = value;
    const std::string text = json.dump();
    EXPECT_EQ(text, "{\"v\":" + FloatText(value) + "}") << text;
    const ReportJson back = ReportJson::parse(text);
    EXPECT_EQ(Bits(back["v"].get<float>()), Bits(value));
  }
  ReportJson json;
  json["nan"] = std::numeric_limits<float>::quiet_NaN();
  EXPECT_EQ(json.dump(), "{\"nan\":null}");
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
  report.gains = {0.95f, 1.1f, 0.8f};
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
  EXPECT_EQ(json["gains"]["green"].get<float>(), 1.1f);
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
                               "red 2, green 0, blue 1", "misses a target: 6 of 12"}) {
    EXPECT_NE(text.find(expected), std::string::npos) << expected << "\n" << text;
  }
}

TEST(LedsMissingTargets, RoundsTheShareToTheNearestCount) {
  EXPECT_EQ(LedsMissingTargets({1, 1, 1, 0.999f}, 1000), 1);
  EXPECT_EQ(LedsMissingTargets({1, 1, 1, 1.0f}, 1000), 0);
  EXPECT_EQ(LedsMissingTargets({1, 1, 1, std::nanf("")}, 1000), 0);
}

}  // namespace
}  // namespace tool
}  // namespace aimhue
