// The file-name and open rules every record format shares, checked once for
// any record with Save and Load.
#ifndef AIMHUE_TESTS_SUPPORT_FILE_RULES_H_
#define AIMHUE_TESTS_SUPPORT_FILE_RULES_H_

#include <aimhue/status.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <string>
#include <vector>

#include "support/log_capture.h"
#include "support/temp_dir.h"

namespace aimhue::testing {

// A name in another case, with a further ending, or the extension alone is
// refused with 8 before any file is touched; saving into a missing folder
// gives 4 and loading a missing file 2. Each refusal writes one error line
// under `who` ("LedMeter", ...); `loadGap` is what the format's load line
// writes between "file." and "fullname".
template <typename Record>
void ExpectFileNameAndOpenRules(const Record& saved, Record& loading, const std::string& who,
                                const std::string& extension, const std::string& loadGap = " ") {
  TempDir dir;
  std::string upper = extension;
  std::transform(upper.begin(), upper.end(), upper.begin(),
                 [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
  const std::string missing = dir.Path("missing/a" + extension);
  const std::string mismatch = "--Error :: ext filename mismatch.";
  LogCapture log;
  EXPECT_EQ(saved.Save(dir.Path("a" + upper)), kBadExtension);
  EXPECT_EQ(saved.Save(extension), kBadExtension);
  EXPECT_EQ(loading.Load(dir.Path("a" + extension + ".bak")), kBadExtension);
  EXPECT_TRUE(std::filesystem::is_empty(dir.Path("")));
  EXPECT_FALSE(std::filesystem::exists(extension));
  EXPECT_EQ(saved.Save(missing), kOpenWriteFailed);
  EXPECT_EQ(loading.Load(missing), kOpenReadFailed);
  EXPECT_EQ(log.Errors(),
            (std::vector<std::string>{
                who + "::Save" + mismatch, who + "::Save" + mismatch, who + "::Load" + mismatch,
                who + "::Save -- Failed to Open file. fullname = " + missing,
                who + "::Load -- Failed to Open file." + loadGap + "fullname = " + missing}));
}

}  // namespace aimhue::testing

#endif  // AIMHUE_TESTS_SUPPORT_FILE_RULES_H_
