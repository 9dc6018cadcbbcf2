#include "arguments.h"

#include <gtest/gtest.h>

namespace aimhue {
namespace tool {
namespace {

TEST(ParseScreenSize, AcceptsWidthByHeightOnlyAndUpToTheLargestScreen) {
  const auto upper = ParseScreenSize(" 64X48 ");
  ASSERT_TRUE(upper);
  EXPECT_EQ(upper->cols, 64);
  EXPECT_EQ(upper->rows, 48);
  for (const char* text : {"", "1920", "x1080", "1920x", "0x10", "10x0", "-5x10", "10x10x10",
                           "1.5x10", "10 x 10", "0x1e3", "99999999999x1", "100001x1000"}) {
    EXPECT_FALSE(ParseScreenSize(text)) << text;
  }
  EXPECT_TRUE(ParseScreenSize("10000x10000"));  // exactly the largest screen
}

TEST(ParseFloatList, ReadsExactlyTheRequestedCount) {
  const auto values = ParseFloatList("0.98, 0.98,0.97 ,0.95", 4);
  ASSERT_TRUE(values);
  EXPECT_EQ(*values, (std::vector<float>{0.98f, 0.98f, 0.97f, 0.95f}));
  EXPECT_FALSE(ParseFloatList("0.98,0.98,0.97", 4));
  EXPECT_FALSE(ParseFloatList("0.98,0.98,0.97,0.95,1", 4));
  EXPECT_FALSE(ParseFloatList("0.98,,0.97,0.95", 4));
}

TEST(ParseFloat, RejectsNonFiniteAndTrailingText) {
  EXPECT_TRUE(IsDecimalNumber("1e-40"));  // a number, but no normal 32-bit float
  EXPECT_FALSE(ParseFloat("1e-40"));
  EXPECT_FALSE(IsDecimalNumber("nan"));
  EXPECT_EQ(ParseFloat("1e-3"), 0.001f);
  EXPECT_EQ(ParseFloat("-0.5"), -0.5f);
  for (const char* text : {"nan", "NaN", "inf", "-inf", "0x1p3", "1e39", "0.5abc", "", "0.5 0.5",
                           "1,5"}) {
    EXPECT_FALSE(ParseFloat(text)) << text;
  }
}

TEST(ParseWhitePoint, TakesANamedWhiteOrAChromaticityInsideTheTriangleOfValidPoints) {
  ASSERT_TRUE(ParseWhitePoint("d65"));
  EXPECT_EQ(ParseWhitePoint("d65")->name, "D65");
  const auto white = ParseWhitePoint("0.30, 0.32");
  ASSERT_TRUE(white);
  EXPECT_EQ(white->x, 0.30f);
  EXPECT_EQ(white->y, 0.32f);
  for (const char* text : {"D66", "0.3", "0,0.3", "0.3,0", "0.6,0.4", "0.7,0.5", "-0.1,0.3",
                           "nan,0.3"}) {
    EXPECT_FALSE(ParseWhitePoint(text)) << text;
  }
}

TEST(ParseWhitePoint, TakesAColourTemperatureOnTheDaylightLocusOnly) {
  const auto at_6500 = ParseWhitePoint(" 6500k ");
  ASSERT_TRUE(at_6500);
  EXPECT_EQ(at_6500->name, "6500k");
  EXPECT_NE(at_6500->x, 0.3127f);  // not D65
  EXPECT_TRUE(ParseWhitePoint("4000K"));
  EXPECT_TRUE(ParseWhitePoint("25000K"));
  for (const char* text : {"3999K", "25001K", "K", "nanK", "6500 K", "6500Kelvin", "-6500K"}) {
    EXPECT_FALSE(ParseWhitePoint(text)) << text;
  }
  EXPECT_EQ(ParseKelvin("3999K"), 3999.0);  // read, so the caller can say why it is refused
}

}  // namespace
}  // namespace tool
}  // namespace aimhue
