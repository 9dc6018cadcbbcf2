#include "correction_report.h"

#include <aimhue/correction.h>

#include <gtest/gtest.h>
#include <synthetic/synthetic_screen.h>

#include <cmath>
#include <sstream>

#include "command_error.h"
#include "correction_inspection.h"
#include "panel_table.h"
#include "support/temp_dir.h"

namespace aimhue {
namespace tool {
namespace {

// A synthetic screen corrected to targets a little inside its primaries.
class CorrectedScreen : public ::testing::Test {
 protected:
  void SetUp() override {
    synthetic::ScreenOptions options;
    options.cols = 40;
    options.rows = 30;
    options.moduleCols = 20;
    options.moduleRows = 15;
    options.seed = 11;
    options.deadCount = 0;
    meters_ = synthetic::GenerateMeters(options);
    for (auto& primary : meters_) {
      for (LedMeter& meter : primary) meter.state = cv::Mat::zeros(30, 40, CV_8UC1);
    }
    meters_[0][0].state.at<uint8_t>(3, 4) = 1;  // one LED marked dead
    const TargetLxy targets[4] = {{250.0f, 0.68f, 0.305f}, {700.0f, 0.18f, 0.70f},
                                  {60.0f, 0.14f, 0.056f}, {0.0f, 0.3127f, 0.329f}};
    const LedMeter* triples[3][3];
    for (int p = 0; p < 3; ++p) {
      for (int c = 0; c < 3; ++c) triples[p][c] = &meters_[p][c];
    }
    ASSERT_EQ(CalcCorrection(targets, triples[0], triples[1], triples[2], CorrectionSettings{},
                             &correction_),
              0);
  }

  Meters meters_;
  Correction correction_;
};

// The tool's white luminance after correction (emitter Y times its row sum)
// must be the model's: every LED that is neither skipped, clipped nor
// dimmed shows exactly the scaled target white.
TEST_F(CorrectedScreen, WhiteLuminanceAfterIsTheScaledTargetWhite) {
  const CorrectionSummary summary = SummariseCorrection(correction_, meters_);
  double white = 0.0;
  for (int p = 0; p < 3; ++p) white += correction_.targets[p].L;
  EXPECT_DOUBLE_EQ(summary.whiteLuminance, white);
  std::vector<double> before;
  std::vector<double> after;
  WhiteLuminances(correction_, meters_, &before, &after);
  ASSERT_EQ(static_cast<int64_t>(after.size()), correction_.counts.corrected);
  std::size_t i = 0;
  int64_t exact = 0;
  for (int r = 0; r < 30; ++r) {
    for (int c = 0; c < 40; ++c) {
      const uint8_t flags = correction_.flags.at<uint8_t>(r, c);
      if ((flags & kCorrectionSkipped) != 0) continue;
      if (flags == 0) {
        EXPECT_NEAR(after[i], white, 1e-4 * white) << r << "," << c;
        ++exact;
      } else if ((flags & kCorrectionDimmed) != 0) {
        EXPECT_LT(after[i], white * 1.0001);
      }
      ++i;
    }
  }
  EXPECT_GT(exact, 1000);
  EXPECT_LT(summary.whiteAfter.relativeStdDev, summary.whiteBefore.relativeStdDev);
  EXPECT_EQ(summary.after[3].count, correction_.counts.corrected);
  EXPECT_LE(summary.after[3].p50, summary.after[3].p95);
}

TEST_F(CorrectedScreen, WorstLedsComeLargestFirstAndSkipTheSkipped) {
  const std::vector<WorstLed> worst = WorstLeds(correction_, 5);
  ASSERT_EQ(worst.size(), 5u);
  for (std::size_t i = 1; i < worst.size(); ++i) {
    EXPECT_GE(worst[i - 1].after[3], worst[i].after[3]);
  }
  std::vector<float> values = DifferenceChannel(correction_.deltaEAfter, 3);
  EXPECT_EQ(worst[0].after[3], FinitePercentiles(values).max);
  EXPECT_EQ(WorstLeds(correction_, 5000).size(),
            static_cast<std::size_t>(correction_.counts.corrected));
  EXPECT_TRUE(WorstLeds(correction_, 0).empty());
}

TEST_F(CorrectedScreen, ReportAndJsonCarryTheCounts) {
  CorrectionReport report = MakeCorrectionReport(correction_, meters_);
  report.worst = WorstLeds(correction_, 2);
  std::ostringstream text;
  PrintCorrectionReport(text, report);
  EXPECT_NE(text.str().find("1199 corrected, 1 skipped (dead 1,"), std::string::npos) << text.str();
  EXPECT_NE(text.str().find("Worst LEDs"), std::string::npos);
  const ReportJson json = CorrectionReportJson(report);
  EXPECT_EQ(json["counts"]["dead"].get<int64_t>(), 1);
  EXPECT_EQ(json["scale"].get<float>(), correction_.scale);
  EXPECT_EQ(json["worst"].size(), 2u);
  EXPECT_EQ(json["settings"]["mode"], "chroma");
}

TEST_F(CorrectedScreen, InspectionShowsOneLedOfASavedFile) {
  testing::TempDir folder;
  const std::string file = folder.Path("screen.corr");
  ASSERT_EQ(correction_.Save(file), 0);
  const ReportJson led = InspectCorrection(file, LedPosition{7, 9});
  const float* coeff = correction_.coeff.ptr<float>(7) + 9 * 9;
  for (int k = 0; k < 3; ++k) {
    for (int j = 0; j < 3; ++j) {
      EXPECT_EQ(led["coefficients"][k][j].get<float>(), coeff[3 * k + j]) << k << j;
    }
  }
  EXPECT_EQ(led["gain"].get<float>(), correction_.gain.at<float>(7, 9));
  EXPECT_EQ(InspectCorrection(file, LedPosition{3, 4})["flags"], "dead");
  const ReportJson whole = InspectCorrection(file, std::nullopt);
  EXPECT_EQ(whole["counts"]["corrected"].get<int64_t>(), correction_.counts.corrected);
  try {
    InspectCorrection(file, LedPosition{30, 0});
    ADD_FAILURE() << "an LED below the last row was accepted";
  } catch (const CommandError& error) {
    EXPECT_EQ(error.exit_status(), kExitUsage);
  }
  const std::string cut = folder.Write("cut.corr", testing::ReadFileBytes(file).substr(0, 200));
  try {
    InspectCorrection(cut, std::nullopt);
    ADD_FAILURE() << "a truncated file was accepted";
  } catch (const CommandError& error) {
    EXPECT_EQ(error.exit_status(), kExitLibrary);
  }
}

}  // namespace
}  // namespace tool
}  // namespace aimhue
