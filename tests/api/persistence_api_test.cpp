#include <aimhue/api.h>
#include <aimhue/status.h>
#include <gtest/gtest.h>

#include <array>
#include <cstring>

#include "engine/aimhue.h"
#include "support/log_capture.h"
#include "support/temp_dir.h"

namespace aimhue {
namespace {

using ::aimhue::testing::LogCapture;
using ::aimhue::testing::TempDir;
using Lines = std::vector<std::string>;

class PersistenceApi : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(AimhueCreateHandle(&saved_), kOk);
    ASSERT_EQ(AimhueCreateHandle(&loaded_), kOk);
    float value = 0.5f;
    for (TargetBlock* block : {&saved_->target, &saved_->searchEnd, &saved_->searchStart}) {
      for (TargetLxy& point : *block) point = {value += 1.0f, value += 0.01f, value += 0.02f};
    }
    saved_->ngLimit = 0.6f;
  }
  void TearDown() override {
    AimhueDestroyHandle(saved_);
    AimhueDestroyHandle(loaded_);
  }
  std::array<float, 16> Results(AimhueHandle handle) {
    std::array<float, 16> results;
    EXPECT_EQ(AimhueGet(handle, results.data(), results.data() + 12), kOk);
    return results;
  }
  AimhueHandle saved_ = nullptr;
  AimhueHandle loaded_ = nullptr;
};

TEST_F(PersistenceApi, FileAndBufferRoundTripsKeepTheLoadersSettings) {
  TempDir dir;
  const float ends[4] = {0.7f, 0.7f, 0.7f, 0.7f};
  ASSERT_EQ(AimhueSetPercentEnd(loaded_, ends), kOk);
  ASSERT_EQ(AimhueSetNGThresh(loaded_, 0.2f), kOk);

  const std::string name = dir.Path("run.aimhue");
  ASSERT_EQ(AimhueSave(saved_, name.c_str()), kOk);
  ASSERT_EQ(AimhueLoad(loaded_, name.c_str()), kOk);
  EXPECT_EQ(Results(loaded_), Results(saved_));
  EXPECT_EQ(std::memcmp(&loaded_->searchStart, &saved_->searchStart, sizeof(TargetBlock)), 0);
  EXPECT_EQ(loaded_->ngLimit, 0.6f);
  EXPECT_EQ(loaded_->ngThresh, 0.2f);
  EXPECT_EQ(loaded_->percentEnd[0], 0.7f);

  uint64_t size = 0;
  ASSERT_EQ(AimhueGetBufferSize(saved_, &size), kOk);
  ASSERT_EQ(size, 169u);
  std::array<char, 169> buffer;
  ASSERT_EQ(AimhueToBuffer(saved_, buffer.data(), &size), kOk);
  AimhueHandle third = nullptr;
  ASSERT_EQ(AimhueCreateHandle(&third), kOk);
  ASSERT_EQ(AimhueFromBuffer(third, buffer.data(), static_cast<int64_t>(size)), kOk);
  EXPECT_EQ(Results(third), Results(saved_));
  AimhueDestroyHandle(third);
}

TEST_F(PersistenceApi, RefusalsReportTheirStatusAndLeaveTheHandleUnchanged) {
  TempDir dir;
  std::array<char, 169> buffer;
  uint64_t size = buffer.size();
  ASSERT_EQ(AimhueToBuffer(saved_, buffer.data(), &size), kOk);
  const auto before = Results(loaded_);

  EXPECT_EQ(AimhueSave(nullptr, "a.aimhue"), kNullInput);
  EXPECT_EQ(AimhueLoad(loaded_, nullptr), kNullInput);
  EXPECT_EQ(AimhueSave(saved_, nullptr), kNullInput);
  EXPECT_EQ(AimhueToBuffer(nullptr, buffer.data(), &size), kNullInput);
  EXPECT_EQ(AimhueFromBuffer(nullptr, buffer.data(), 169), kNullInput);
  EXPECT_EQ(AimhueGetBufferSize(nullptr, &size), kNullInput);
  EXPECT_EQ(AimhueGetBufferSize(saved_, nullptr), kNullInput);
  EXPECT_EQ(AimhueFromBuffer(loaded_, nullptr, 169), kNullInput);

  LogCapture log;
  EXPECT_EQ(AimhueSave(saved_, dir.Path("a.txt").c_str()), kBadExtension);
  EXPECT_EQ(AimhueLoad(loaded_, dir.Path("none.aimhue").c_str()), kOpenReadFailed);
  EXPECT_EQ(AimhueFromBuffer(loaded_, buffer.data(), 168), kBadVersion);
  buffer[0] = 'B';
  EXPECT_EQ(AimhueFromBuffer(loaded_, buffer.data(), 169), kBadByteOrderMark);
  size = 168;
  EXPECT_EQ(AimhueToBuffer(saved_, buffer.data(), &size), kBufferTooSmall);
  EXPECT_EQ(size, 168u);
  EXPECT_EQ(buffer[0], 'B');
  EXPECT_EQ(Results(loaded_), before);
  EXPECT_EQ(log.Errors(),
            (Lines{"Aimhue::Save--Error :: ext filename mismatch.",
                   "Aimhue::Load -- Failed to Open file. fullname = " + dir.Path("none.aimhue"),
                   "Aimhue::FromBuffer -- Error data in file.",
                   "Aimhue::FromBuffer -- Error file endianness."}));
}

}  // namespace
}  // namespace aimhue
