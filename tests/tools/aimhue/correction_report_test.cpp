#include "correction_report.h"

#include <aimhue/correction.h>

#include <gtest/gtest.h>
#include <synthetic/synthetic_screen.h>

#include <cmath>
#include <sstream>

#include "correction_inspection.h"
#include "panel_table.h"
#include "support/chroma_sets.h"
#include "support/temp_dir.h"

namespace aimhue {
namespace tool {
namespace {

// A synthetic screen corrected to targets a little inside its primaries.
class CorrectedScreen : public ::testing::Test {
 protected:
  void SetUp() override {
    meters_ = synthetic::GenerateMeters(::aimhue::testing::SmallScreen(30, 40, 11, 15, 20));
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
}

}  // namespace
}  // namespace tool
}  // namespace aimhue
