#include "correction_map.h"

#include <aimhue/correction.h>

#include <gtest/gtest.h>

#include <cmath>

#include "correction_export.h"

namespace aimhue {
namespace tool {
namespace {

// A screen reduced 2 : 1 where one LED of a block is far off and another
// block is all skipped: the reduced view keeps the worst LED and marks
// the skipped block.
TEST(CorrectionMap, ReductionKeepsTheWorstLedVisible) {
  const int cols = 2 * kMapViewWidth;
  const int rows = 8;
  CorrectionMapInput input;
  input.whiteBefore = cv::Mat(rows, cols, CV_32FC1, cv::Scalar(0.0f));
  input.whiteAfter = cv::Mat(rows, cols, CV_32FC1, cv::Scalar(0.0f));
  input.flags = cv::Mat::zeros(rows, cols, CV_8UC1);
  input.whiteAfter.at<float>(3, 101) = 50.0f;  // pixel (1, 50) of the reduced view
  for (int r = 4; r < 6; ++r) {
    for (int c = 10; c < 12; ++c) {          // pixel (2, 5): every LED skipped
      input.whiteBefore.at<float>(r, c) = input.whiteAfter.at<float>(r, c) = NAN;
      input.flags.at<uint8_t>(r, c) = kCorrectionDead;
    }
  }
  input.before.p99 = input.after.p99 = 0.5f;
  const cv::Mat image = DrawCorrectionMap(input);
  ASSERT_EQ(image.type(), CV_8UC3);
  // The views start at (30, 100): before, then after 30 pixels further on.
  const cv::Point after_origin(30 + kMapViewWidth + 30, 100);
  const cv::Vec3b worst = image.at<cv::Vec3b>(after_origin + cv::Point(50, 1));
  const cv::Vec3b plain = image.at<cv::Vec3b>(after_origin + cv::Point(52, 1));
  EXPECT_NE(worst, plain);
  EXPECT_GT(worst[1] + worst[2], plain[1] + plain[2]);  // the scale's bright end
  const cv::Vec3b skipped = image.at<cv::Vec3b>(after_origin + cv::Point(5, 2));
  EXPECT_GT(skipped[2], 150);  // red
  EXPECT_LT(skipped[1], 80);
  const cv::Point flags_origin(30 + 2 * (kMapViewWidth + 30), 100);
  EXPECT_EQ(image.at<cv::Vec3b>(flags_origin + cv::Point(5, 2)), skipped);
}

TEST(CorrectionExport, FixedPointPlanesHoldTheControllersIntegers) {
  Correction correction;
  correction.coeff = cv::Mat(1, 2, CV_32FC(9), cv::Scalar::all(0.0));
  correction.coeff.ptr<float>(0)[0] = static_cast<float>(4095.0 / 4095.0);
  correction.coeff.ptr<float>(0)[9 + 5] = static_cast<float>(1234.0 / 4095.0);
  correction.gain = cv::Mat(1, 2, CV_32FC1, cv::Scalar(1.0f));
  correction.gain.at<float>(0, 1) = 0.5f;
  correction.flags = cv::Mat::zeros(1, 2, CV_8UC1);
  correction.flags.at<uint8_t>(0, 1) = kCorrectionDimmed;
  correction.settings.bits = 12;
  const std::vector<ExportPlane> planes = CorrectionExportPlanes(correction);
  ASSERT_EQ(planes.size(), 11u);
  EXPECT_EQ(planes[0].name, "coefficient_red_for_red.tiff");
  EXPECT_EQ(planes[5].name, "coefficient_green_for_blue.tiff");  // channel 3 * 1 + 2
  EXPECT_EQ(planes[0].image.type(), CV_16UC1);
  EXPECT_EQ(planes[0].image.at<uint16_t>(0, 0), 4095);
  EXPECT_EQ(planes[5].image.at<uint16_t>(0, 1), 1234);
  EXPECT_EQ(planes[9].name, "gain.tiff");
  EXPECT_EQ(planes[9].image.at<uint16_t>(0, 1), 2048);  // 0.5 x 4095, ties to even
  EXPECT_EQ(planes[10].image.at<uint16_t>(0, 1), kCorrectionDimmed);

  correction.settings.bits = 0;
  const std::vector<ExportPlane> floats = CorrectionExportPlanes(correction);
  EXPECT_EQ(floats[5].image.type(), CV_32FC1);
  EXPECT_EQ(floats[5].image.at<float>(0, 1), correction.coeff.ptr<float>(0)[9 + 5]);
  EXPECT_EQ(floats[10].image.at<float>(0, 1), static_cast<float>(kCorrectionDimmed));
}

}  // namespace
}  // namespace tool
}  // namespace aimhue
