#include "help_text.h"

#include <gtest/gtest.h>

#include <sstream>

namespace aimhue {
namespace tool {
namespace {

TEST(WrapText, BreaksAtBlanksAndKeepsParagraphs) {
  EXPECT_EQ(WrapText("one two three four", 9), "one two\nthree\nfour");
  EXPECT_EQ(WrapText("first paragraph\n\nsecond", 80), "first paragraph\n\nsecond");
  EXPECT_EQ(WrapText("a verylongwordthatdoesnotfit b", 5), "a\nverylongwordthatdoesnotfit\nb");
  EXPECT_EQ(WrapText("", 10), "");
  const std::string wrapped = WrapText(std::string(300, 'x').replace(10, 1, " ") +
                                           " and more words to wrap at forty columns here",
                                       40);
  std::istringstream lines(wrapped);
  std::string line;
  while (std::getline(lines, line)) {
    if (line.find(' ') != std::string::npos) {
      EXPECT_LE(line.size(), 40u) << line;
    }
  }
}

}  // namespace
}  // namespace tool
}  // namespace aimhue
