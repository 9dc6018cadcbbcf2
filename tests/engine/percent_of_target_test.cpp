#include "engine/percent_of_target.h"

#include <aimhue/status.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include "support/chroma_sets.h"

namespace aimhue {
namespace {

using ::aimhue::testing::Bits;
using ::aimhue::testing::LiteralCoverage;
using ::aimhue::testing::LiteralInGamut;
using ::aimhue::testing::MakeRandomPanel;
using ::aimhue::testing::RandomPanel;
using ::aimhue::testing::SetFromPlanes;
using ::aimhue::testing::TargetBlockOf;
using ::aimhue::testing::UniformSet;

constexpr Chromaticity kRed{0.64f, 0.33f};
constexpr Chromaticity kGreen{0.30f, 0.60f};
constexpr Chromaticity kBlue{0.15f, 0.06f};

TEST(InGamut, MatchesTheLiteralTestBitForBit) {
  std::mt19937 random(20261121);
  std::uniform_real_distribution<float> anywhere(-0.1f, 1.0f);
  std::uniform_int_distribution<int> grid(0, 16);
  int inside = 0;
  for (int trial = 0; trial < 400000; ++trial) {
    Chromaticity p[4];
    const bool dyadic = trial % 2 == 0;  // exact corners, edges and collinear triangles
    for (Chromaticity& point : p) {
      point = dyadic ? Chromaticity{grid(random) / 16.0f, grid(random) / 16.0f}
                     : Chromaticity{anywhere(random), anywhere(random)};
    }
    const bool expected = LiteralInGamut(p[0], p[1], p[2], p[3]);
    inside += expected;
    ASSERT_EQ(InGamut(p[0], p[1], p[2], p[3]), expected)
        << "trial " << trial << " q (" << p[3].x << ", " << p[3].y << ")";
  }
  EXPECT_GT(inside, 10000);  // both answers are well represented
}

TEST(InGamut, CornersAndEdgesCountCollinearAndNaNNever) {
  EXPECT_TRUE(InGamut(kRed, kGreen, kBlue, kRed));
  EXPECT_TRUE(InGamut(kRed, kGreen, kBlue, kGreen));
  EXPECT_TRUE(InGamut(kRed, kGreen, kBlue, kBlue));
  EXPECT_TRUE(InGamut({0.0f, 0.0f}, {0.5f, 0.0f}, {0.0f, 0.5f}, {0.25f, 0.0f}));
  EXPECT_TRUE(InGamut({0.0f, 0.0f}, {0.5f, 0.0f}, {0.0f, 0.5f}, {0.25f, 0.25f}));
  EXPECT_FALSE(InGamut({0.0f, 0.0f}, {0.5f, 0.0f}, {0.0f, 0.5f}, {0.25f, 0.26f}));
  const Chromaticity a{0.125f, 0.125f};
  const Chromaticity b{0.25f, 0.25f};
  const Chromaticity c{0.5f, 0.5f};
  for (Chromaticity q : {a, b, c, Chromaticity{0.375f, 0.375f}}) {
    EXPECT_FALSE(InGamut(a, b, c, q));
  }
  EXPECT_FALSE(InGamut(kRed, kRed, kBlue, kRed));  // two corners equal
  const float nan = std::numeric_limits<float>::quiet_NaN();
  EXPECT_FALSE(InGamut({nan, 0.33f}, kGreen, kBlue, {0.3f, 0.3f}));
  EXPECT_FALSE(InGamut(kRed, kGreen, kBlue, {nan, nan}));
}

TEST(PercentOfTarget, EveryKernelMatchesTheLiteralCountOnRandomPanels) {
  std::vector<CountKernel> kernels;
  for (CountKernel kernel : {CountKernel::kPortable, CountKernel::kAvx2, CountKernel::kAvx512}) {
    if (CountKernelAvailable(kernel)) kernels.push_back(kernel);
  }
  std::mt19937 random(7);
  for (int trial = 0; trial < 3000; ++trial) {
    const RandomPanel panel = MakeRandomPanel(random, trial % 2 == 1);
    const Coverage expected =
        LiteralCoverage(panel.red, panel.green, panel.blue, panel.targets.data(), panel.mask);
    for (CountKernel kernel : kernels) {
      Coverage coverage{-1.0f, -1.0f, -1.0f, -1.0f};
      ASSERT_EQ(PercentOfTargetOn(kernel, &panel.red, &panel.green, &panel.blue,
                                  panel.targets.data(), coverage, panel.mask),
                kOk);
      ASSERT_EQ(Bits(coverage), Bits(expected))
          << "trial " << trial << " kernel " << static_cast<int>(kernel);
    }
    Coverage widest;
    ASSERT_EQ(PercentOfTarget(&panel.red, &panel.green, &panel.blue, panel.targets.data(), widest,
                              panel.mask),
              kOk);
    ASSERT_EQ(Bits(widest), Bits(expected)) << "trial " << trial;
  }
}

TEST(PercentOfTarget, CountsEachTargetAndAllThree) {
  // Three LEDs: the first reaches every target, the second only the red one
  // (its gamut is a sliver around the red corner), the third none (its
  // corners are collinear).
  cv::Mat rx = (cv::Mat_<float>(1, 3) << kRed.x, kRed.x, 0.125f);
  cv::Mat ry = (cv::Mat_<float>(1, 3) << kRed.y, kRed.y, 0.125f);
  cv::Mat gx = (cv::Mat_<float>(1, 3) << kGreen.x, 0.62f, 0.25f);
  cv::Mat gy = (cv::Mat_<float>(1, 3) << kGreen.y, 0.33f, 0.25f);
  cv::Mat bx = (cv::Mat_<float>(1, 3) << kBlue.x, 0.62f, 0.5f);
  cv::Mat by = (cv::Mat_<float>(1, 3) << kBlue.y, 0.32f, 0.5f);
  const ChromaLxy red = SetFromPlanes(rx, ry);
  const ChromaLxy green = SetFromPlanes(gx, gy);
  const ChromaLxy blue = SetFromPlanes(bx, by);
  // The red target is the LEDs' own red corner; the collinear LED has the
  // green target (0.25, 0.25) as a corner and still does not reach it.
  const auto targets = TargetBlockOf(kRed, {0.25f, 0.25f}, {0.2f, 0.2f});
  Coverage coverage;
  ASSERT_EQ(PercentOfTarget(&red, &green, &blue, targets.data(), coverage, cv::Mat()), kOk);
  EXPECT_EQ(coverage.red, static_cast<float>(2.0 / 3.0));
  EXPECT_EQ(coverage.green, static_cast<float>(1.0 / 3.0));
  EXPECT_EQ(coverage.blue, static_cast<float>(1.0 / 3.0));
  EXPECT_EQ(coverage.all, static_cast<float>(1.0 / 3.0));

  // Masking out the first LED leaves one reaching red out of two counted.
  const cv::Mat mask = (cv::Mat_<uint8_t>(1, 3) << 0, 1, 7);
  ASSERT_EQ(PercentOfTarget(&red, &green, &blue, targets.data(), coverage, mask), kOk);
  EXPECT_EQ(coverage.red, 0.5f);
  EXPECT_EQ(coverage.all, 0.0f);
}

TEST(PercentOfTarget, MaskOfZerosCountsNothingAndGivesNaN) {
  const ChromaLxy red = UniformSet(4, 5, kRed.x, kRed.y);
  const ChromaLxy green = UniformSet(4, 5, kGreen.x, kGreen.y);
  const ChromaLxy blue = UniformSet(4, 5, kBlue.x, kBlue.y);
  const auto targets = TargetBlockOf(kRed, kGreen, kBlue);
  Coverage coverage{1.0f, 1.0f, 1.0f, 1.0f};
  ASSERT_EQ(PercentOfTarget(&red, &green, &blue, targets.data(), coverage,
                            cv::Mat::zeros(4, 5, CV_8U)),
            kOk);
  EXPECT_TRUE(std::isnan(coverage.red));
  EXPECT_TRUE(std::isnan(coverage.green));
  EXPECT_TRUE(std::isnan(coverage.blue));
  EXPECT_TRUE(std::isnan(coverage.all));
}

class PercentOfTargetInputs : public ::testing::Test {
 protected:
  // Calls the count and checks that a failure leaves `out` as it was.
  int Count(const ChromaLxy* red, const ChromaLxy* green, const ChromaLxy* blue,
            const float* targets = nullptr, const cv::Mat& mask = cv::Mat()) {
    Coverage coverage{-1.0f, -2.0f, -3.0f, -4.0f};
    const int status = PercentOfTarget(red, green, blue, targets == nullptr ? targets_.data() : targets,
                                       coverage, mask);
    if (status != kOk) {
      EXPECT_EQ(Bits(coverage), Bits(Coverage{-1.0f, -2.0f, -3.0f, -4.0f}));
    }
    return status;
  }

  std::array<float, 12> targets_ = TargetBlockOf(kRed, kGreen, kBlue);
  ChromaLxy panel_ = UniformSet(100, 200, 0.3f, 0.3f);
  ChromaLxy wide_ = UniformSet(100, 201, 0.3f, 0.3f);
  ChromaLxy empty_;
};

TEST_F(PercentOfTargetInputs, NullBeforeEmptyBeforeSizeInTheCountsOrder) {
  EXPECT_EQ(Count(nullptr, &panel_, &panel_), kNullInput);
  EXPECT_EQ(Count(&panel_, nullptr, &panel_), kNullInput);
  EXPECT_EQ(Count(&panel_, &panel_, nullptr), kNullInput);
  Coverage coverage;
  EXPECT_EQ(PercentOfTarget(&empty_, &empty_, &empty_, nullptr, coverage, cv::Mat()), kNullInput);
  EXPECT_EQ(Count(&empty_, nullptr, &wide_), kNullInput);
  EXPECT_EQ(Count(&empty_, &panel_, &wide_), kEmptyPlane);
  EXPECT_EQ(Count(&panel_, &wide_, &empty_), kEmptyPlane);  // blue is tested before green's size
  EXPECT_EQ(Count(&panel_, &empty_, &panel_), kEmptyPlane);
  ChromaLxy noY = panel_;
  noY.y = cv::Mat();
  EXPECT_EQ(Count(&panel_, &noY, &wide_), kEmptyPlane);
  ChromaLxy zeroColumns = panel_;
  zeroColumns.x = cv::Mat(100, 0, CV_32F);
  EXPECT_EQ(Count(&zeroColumns, &panel_, &panel_), kEmptyPlane);
}

TEST_F(PercentOfTargetInputs, SetsOrMaskOfAnotherSizeGive9) {
  EXPECT_EQ(Count(&panel_, &panel_, &wide_), kOutOfRange);
  EXPECT_EQ(Count(&panel_, &wide_, &panel_), kOutOfRange);
  EXPECT_EQ(Count(&wide_, &panel_, &panel_), kOutOfRange);
  EXPECT_EQ(Count(&panel_, &panel_, &panel_, nullptr, cv::Mat(200, 100, CV_8U, cv::Scalar(255))),
            kOutOfRange);
  EXPECT_EQ(Count(&panel_, &panel_, &panel_, nullptr, cv::Mat(100, 200, CV_8U, cv::Scalar(255))),
            kOk);
}

TEST_F(PercentOfTargetInputs, PlanesOfAnotherSizeOrTypeGive9WithoutReadingOutside) {
  // Every x or y plane that is smaller than the L plane, in either
  // direction, or not 32-bit float; an AddressSanitizer build would report
  // a read beyond any of them.
  for (int plane = 0; plane < 6; ++plane) {
    for (const cv::Mat& wrong : {cv::Mat(99, 200, CV_32F, cv::Scalar(0.3)),
                                 cv::Mat(100, 199, CV_32F, cv::Scalar(0.3)),
                                 cv::Mat(100, 200, CV_64F, cv::Scalar(0.3)),
                                 cv::Mat(100, 200, CV_32FC2, cv::Scalar(0.3))}) {
      ChromaLxy sets[3] = {panel_, panel_, panel_};
      (plane % 2 == 0 ? sets[plane / 2].x : sets[plane / 2].y) = wrong;
      EXPECT_EQ(Count(&sets[0], &sets[1], &sets[2]), kOutOfRange) << "plane " << plane;
    }
  }
  ChromaLxy wrongL = panel_;
  wrongL.L = cv::Mat(100, 200, CV_8U, cv::Scalar(1));
  EXPECT_EQ(Count(&panel_, &wrongL, &panel_), kOutOfRange);
  // A mask of the panel's size that is not 8-bit single-channel.
  EXPECT_EQ(Count(&panel_, &panel_, &panel_, nullptr, cv::Mat(100, 200, CV_16U, cv::Scalar(1))),
            kOutOfRange);
  EXPECT_EQ(Count(&panel_, &panel_, &panel_, nullptr, cv::Mat(100, 200, CV_8UC3, cv::Scalar(1))),
            kOutOfRange);
}

TEST_F(PercentOfTargetInputs, PlanesThatAreViewsIntoLargerMatricesAreReadRowByRow) {
  // A panel cut out of larger planes (rows not contiguous) counts as a copy.
  std::mt19937 random(3);
  const RandomPanel big = MakeRandomPanel(random, true);
  const cv::Rect inner(0, 0, std::max(1, big.red.L.cols - 1), big.red.L.rows);
  auto view = [&](const ChromaLxy& set) { return SetFromPlanes(set.x(inner), set.y(inner)); };
  const ChromaLxy red = view(big.red);
  const ChromaLxy green = view(big.green);
  const ChromaLxy blue = view(big.blue);
  const cv::Mat mask = big.mask(inner);
  Coverage coverage;
  ASSERT_EQ(PercentOfTarget(&red, &green, &blue, big.targets.data(), coverage, mask), kOk);
  EXPECT_EQ(Bits(coverage), Bits(LiteralCoverage(red, green, blue, big.targets.data(), mask)));
}

}  // namespace
}  // namespace aimhue
