#include <aimhue/plume_log.h>
#include <aimhue/status.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "support/log_capture.h"

namespace aimhue {
namespace {

using ::aimhue::testing::LogCapture;

TEST(PlumeLog, NullSinkRestoresStandardErrorWithLevelFilter) {
  {
    LogCapture log;
    PlumeLogError("captured");
  }
  const int saved = PlumeLogGetLevel();
  PlumeLogSetLevel(PLUME_LOG_INFO);
  ::testing::internal::CaptureStderr();
  PlumeLogDebug("hidden below the level");
  PlumeLogInfo("Aimhue::CalcWhite");
  PlumeLogError("shown %d", 7);
  std::string printed = ::testing::internal::GetCapturedStderr();
  PlumeLogSetLevel(PLUME_LOG_OFF);
  ::testing::internal::CaptureStderr();
  PlumeLogError("silenced");
  std::string silenced = ::testing::internal::GetCapturedStderr();
  PlumeLogSetLevel(saved);
  EXPECT_EQ(printed, "[info] Aimhue::CalcWhite\n[error] shown 7\n");
  EXPECT_EQ(silenced, "");
}

TEST(PlumeLog, LevelNamesAndEnvironment) {
  int level = -1;
  EXPECT_EQ(PlumeLogParseLevel("debug", &level), 1);
  EXPECT_EQ(level, PLUME_LOG_DEBUG);
  EXPECT_EQ(PlumeLogParseLevel("off", &level), 1);
  EXPECT_EQ(level, PLUME_LOG_OFF);
  EXPECT_EQ(PlumeLogParseLevel("verbose", &level), 0);
  EXPECT_EQ(PlumeLogParseLevel(nullptr, &level), 0);
  EXPECT_EQ(level, PLUME_LOG_OFF);

  const int saved = PlumeLogGetLevel();
  setenv("AIMHUE_LOG", "info", 1);
  EXPECT_EQ(PlumeLogUseEnvironment(), 1);
  EXPECT_EQ(PlumeLogGetLevel(), PLUME_LOG_INFO);
  setenv("AIMHUE_LOG", "loud", 1);
  EXPECT_EQ(PlumeLogUseEnvironment(), 0);
  EXPECT_EQ(PlumeLogGetLevel(), PLUME_LOG_INFO);
  unsetenv("AIMHUE_LOG");
  EXPECT_EQ(PlumeLogUseEnvironment(), 1);
  PlumeLogSetLevel(saved);
}

}  // namespace
}  // namespace aimhue
