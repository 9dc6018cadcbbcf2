// The shared conventions as such; the formats' own tests cover the header,
// the open failures and the buffer rules with their exact messages.
#include "capture/file_format.h"

#include <aimhue/status.h>
#include <gtest/gtest.h>

#include "support/log_capture.h"
#include "support/temp_dir.h"

namespace aimhue {
namespace {

using ::aimhue::testing::LogCapture;
using ::aimhue::testing::TempDir;

TEST(FileFormat, ExtensionMustEndTheNameExactlyAndLeaveSomethingBeforeIt) {
  EXPECT_TRUE(HasExtension("a.meter", ".meter"));
  EXPECT_TRUE(HasExtension("/dir.x/b.c.meter", ".meter"));
  for (const char* name : {".meter", "a.METER", "a.meter.txt", "meter", ""}) {
    EXPECT_FALSE(HasExtension(name, ".meter")) << name;
  }
}

TEST(FileFormat, OnlyRegularFilesAreRead) {
  TempDir dir;
  std::filesystem::create_directory(dir.Path("folder.x"));
  LogCapture log;
  bool parsed = false;
  EXPECT_EQ(LoadFormatFile("X::Load", dir.Path("folder.x"), ".x",
                           [&](const char*, size_t) {
                             parsed = true;
                             return 0;
                           }),
            kOpenReadFailed);
  std::string bytes = "kept";
  EXPECT_FALSE(ReadWholeFile("/dev/zero", bytes));  // would never end
  EXPECT_EQ(bytes, "kept");
  EXPECT_FALSE(parsed);
  EXPECT_EQ(log.Errors(), std::vector<std::string>{"X::Load -- Failed to Open file. fullname = " +
                                                   dir.Path("folder.x")});
}

}  // namespace
}  // namespace aimhue
