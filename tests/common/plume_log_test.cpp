#include <aimhue/plume_log.h>
#include <aimhue/status.h>
#include <gtest/gtest.h>

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

}  // namespace
}  // namespace aimhue
