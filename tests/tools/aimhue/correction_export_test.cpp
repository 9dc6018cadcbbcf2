#include "correction_export.h"

#include <aimhue/correction.h>
#include <gtest/gtest.h>

namespace aimhue {
namespace tool {
namespace {

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
