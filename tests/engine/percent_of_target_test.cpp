#include "engine/percent_of_target.h"

#include <vector>

#include "support/chroma_sets.h"

namespace aimhue {
namespace {

using namespace ::aimhue::testing;  // NOLINT: the engine's test helpers

constexpr Chromaticity kRed{0.64f, 0.33f}, kGreen{0.30f, 0.60f}, kBlue{0.15f, 0.06f};

TEST(InGamut, MatchesTheLiteralTestAndHandPickedCases) {
  int inside = 0;
  ForRandomInputs(20261121, 100000, [&inside](std::mt19937& random, int trial) {
    Chromaticity p[4];
    for (Chromaticity& point : p) {  // half on a grid: exact corners, edges, collinear triangles
      point = trial % 2 ? Chromaticity{Uniform(random, -0.1f, 1.0f), Uniform(random, -0.1f, 1.0f)}
                        : Chromaticity{Pick(random, 0, 16) / 16.0f, Pick(random, 0, 16) / 16.0f};
    }
    inside += LiteralInGamut(p[0], p[1], p[2], p[3]);
    ASSERT_EQ(InGamut(p[0], p[1], p[2], p[3]), LiteralInGamut(p[0], p[1], p[2], p[3]));
  });
  EXPECT_GT(inside, 2500);  // both answers are well represented
  // Corners and edges count; zero-area and NaN never.
  const Chromaticity o{0, 0}, a{0.5f, 0}, b{0, 0.5f}, c{0.125f, 0.125f}, d{0.25f, 0.25f}, e{0.5f, 0.5f};
  EXPECT_TRUE(InGamut(kRed, kGreen, kBlue, kGreen) && InGamut(o, a, b, {0.25f, 0}) && InGamut(o, a, b, d));
  EXPECT_FALSE(InGamut(c, d, e, d) || InGamut(kRed, kRed, kBlue, kRed));
  EXPECT_FALSE(InGamut({kNaN, 0.33f}, kGreen, kBlue, {0.3f, 0.3f}) || InGamut(kRed, kGreen, kBlue, {kNaN, kNaN}));
}

TEST(PercentOfTarget, EveryKernelMatchesTheLiteralCountOnRandomPanels) {
  std::vector<CountKernel> kernels;
  std::string ran;
  std::string skipped;
  const std::pair<CountKernel, const char*> all[] = {
      {CountKernel::kPortable, "portable"}, {CountKernel::kAvx2, "avx2"}, {CountKernel::kAvx512, "avx512"}};
  for (const auto& [kernel, name] : all) {
    if (CountKernelAvailable(kernel)) kernels.push_back(kernel);
    (CountKernelAvailable(kernel) ? ran : skipped) += std::string(" ") + name;
  }
  // Which kernels this machine checked, in the test log and the XML report.
  std::printf("coverage kernels compared with the literal count:%s; not on this processor:%s\n",
              ran.c_str(), skipped.empty() ? " none" : skipped.c_str());
  RecordProperty("kernels_run", ran);
  ForRandomInputs(7, 3000, [&kernels](std::mt19937& random, int trial) {
    const RandomPanel panel = MakeRandomPanel(random, trial % 2 == 1);
    const float* t = panel.targets.data();
    const Coverage expected = LiteralCoverage(panel.red, panel.green, panel.blue, t, panel.mask);
    const std::vector<uint8_t> expectedMisses = LiteralMisses(panel.red, panel.green, panel.blue, t, panel.mask);
    Coverage coverage{-1.0f, -1.0f, -1.0f, -1.0f};
    for (CountKernel kernel : kernels) {
      ASSERT_EQ(PercentOfTargetOn(kernel, &panel.red, &panel.green, &panel.blue, t, coverage, panel.mask),
                kOk);
      ASSERT_TRUE(SameBits(coverage, expected)) << "kernel " << static_cast<int>(kernel);
      std::vector<uint8_t> misses(expectedMisses.size(), 0xEE);  // the pass with the miss plane
      ASSERT_EQ(PercentOfTargetOn(kernel, &panel.red, &panel.green, &panel.blue, t, coverage, panel.mask,
                                  misses.data()),
                kOk);
      ASSERT_TRUE(SameBits(coverage, expected)) << "kernel " << static_cast<int>(kernel);
      ASSERT_EQ(misses, expectedMisses) << "kernel " << static_cast<int>(kernel);
    }
    ASSERT_EQ(PercentOfTarget(&panel.red, &panel.green, &panel.blue, t, coverage, panel.mask), kOk);
    ASSERT_TRUE(SameBits(coverage, expected));
  });
  // Planes that are views into larger ones (rows not contiguous) count as copies.
  std::mt19937 random(3);
  const RandomPanel big = MakeRandomPanel(random, true);
  const cv::Rect inner(0, 0, std::max(1, big.red.L.cols - 1), big.red.L.rows);
  const auto view = [&inner](const ChromaLxy& set) { return SetFromPlanes(set.x(inner), set.y(inner)); };
  const ChromaLxy red = view(big.red), green = view(big.green), blue = view(big.blue);
  Coverage coverage;
  ASSERT_EQ(PercentOfTarget(&red, &green, &blue, big.targets.data(), coverage, big.mask(inner)), kOk);
  EXPECT_TRUE(SameBits(coverage, LiteralCoverage(red, green, blue, big.targets.data(), big.mask(inner))));
}

// (The counting rules are compared with the literal count on random panels
// and masks above; here the rule that nothing counted gives NaN.)
TEST(PercentOfTarget, NothingCountedGivesNaN) {
  const ChromaLxy red = UniformSet(1, 3, kRed.x, kRed.y), green = UniformSet(1, 3, kGreen.x, kGreen.y);
  const ChromaLxy blue = UniformSet(1, 3, kBlue.x, kBlue.y);
  const auto targets = TargetBlockOf(kRed, {0.3f, 0.3f}, kBlue);
  Coverage coverage;
  ASSERT_EQ(PercentOfTarget(&red, &green, &blue, targets.data(), coverage, cv::Mat::zeros(1, 3, CV_8U)), kOk);
  EXPECT_TRUE(std::isnan(coverage.red) && std::isnan(coverage.green) && std::isnan(coverage.all));
  ASSERT_EQ(PercentOfTarget(&red, &green, &blue, targets.data(), coverage, cv::Mat()), kOk);
  EXPECT_TRUE(SameBits(coverage, Coverage{1, 1, 1, 1}));  // corners count
}

TEST(PercentOfTarget, RefusesNullThenEmptyThenSizeOrTypeLeavingTheResult) {
  const auto targets = TargetBlockOf(kRed, kGreen, kBlue);
  const ChromaLxy ok = UniformSet(100, 200, 0.3f, 0.3f), wide = UniformSet(100, 201, 0.3f, 0.3f);
  ChromaLxy e, noY = ok, noColumns = ok, byteL = ok;  // e: empty
  noY.y = cv::Mat();
  noColumns.x = cv::Mat(100, 0, CV_32F);
  byteL.L = cv::Mat(100, 200, CV_8U, cv::Scalar(1));
  Coverage coverage;
  EXPECT_EQ(PercentOfTarget(&e, &e, &e, nullptr, coverage, cv::Mat()), kNullInput);
  const auto mask = [](int rows, int cols, int type) { return cv::Mat(rows, cols, type, cv::Scalar(255)); };
  struct Case {
    const ChromaLxy *r, *g, *b;
    cv::Mat mask;
    int status;
  };
  // clang-format off
  std::vector<Case> cases = {
      {nullptr, &ok, &ok, {}, kNullInput}, {&ok, nullptr, &ok, {}, kNullInput}, {&ok, &ok, nullptr, {}, kNullInput},
      {&e, nullptr, &wide, {}, kNullInput}, {&e, &ok, &wide, {}, kEmptyPlane},
      {&ok, &wide, &e, {}, kEmptyPlane},  // blue is tested before green's size
      {&ok, &e, &ok, {}, kEmptyPlane}, {&ok, &noY, &wide, {}, kEmptyPlane}, {&noColumns, &ok, &ok, {}, kEmptyPlane},
      {&ok, &ok, &wide, {}, kOutOfRange}, {&ok, &wide, &ok, {}, kOutOfRange}, {&wide, &ok, &ok, {}, kOutOfRange},
      {&ok, &byteL, &ok, {}, kOutOfRange}, {&ok, &ok, &ok, mask(200, 100, CV_8U), kOutOfRange},
      {&ok, &ok, &ok, mask(100, 200, CV_16U), kOutOfRange}, {&ok, &ok, &ok, mask(100, 200, CV_8UC3), kOutOfRange},
      {&ok, &ok, &ok, mask(100, 200, CV_8U), kOk}};
  // clang-format on
  // Any x or y plane smaller than L either way, or not 32-bit single channel:
  // refused without reading outside it (an AddressSanitizer build would tell).
  std::vector<ChromaLxy> wrong;
  wrong.reserve(24);
  for (int plane = 0; plane < 6; ++plane) {
    for (const cv::Mat& m :
         {cv::Mat(99, 200, CV_32F, cv::Scalar(0.3)), cv::Mat(100, 199, CV_32F, cv::Scalar(0.3)),
          cv::Mat(100, 200, CV_64F, cv::Scalar(0.3)), cv::Mat(100, 200, CV_32FC2, cv::Scalar(0.3))}) {
      wrong.push_back(ok);
      (plane % 2 == 0 ? wrong.back().x : wrong.back().y) = m;
      const ChromaLxy* sets[3] = {&ok, &ok, &ok};
      sets[plane / 2] = &wrong.back();
      cases.push_back({sets[0], sets[1], sets[2], {}, kOutOfRange});
    }
  }
  for (const Case& c : cases) {
    Coverage result{-1.0f, -2.0f, -3.0f, -4.0f};
    EXPECT_EQ(PercentOfTarget(c.r, c.g, c.b, targets.data(), result, c.mask), c.status) << &c - cases.data();
    EXPECT_TRUE(c.status == kOk || SameBits(result, Coverage{-1.0f, -2.0f, -3.0f, -4.0f}))
        << &c - cases.data();
  }
}

}  // namespace
}  // namespace aimhue
