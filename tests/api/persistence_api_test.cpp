// The exported wrappers add the handle and file-name checks; the image
// itself is tested with the engine's file format.
#include <aimhue/api.h>
#include <aimhue/status.h>
#include <gtest/gtest.h>

#include <array>
#include <cstring>

#include "engine/aimhue.h"
#include "support/temp_dir.h"

namespace aimhue::testing {
namespace {


TEST(PersistenceApi, ResultsTravelThroughFilesAndBuffersBetweenHandles) {
  TempDir dir;
  AimhueHandle saved = nullptr;
  AimhueHandle loaded = nullptr;
  ASSERT_EQ(AimhueCreateHandle(&saved), kOk);
  ASSERT_EQ(AimhueCreateHandle(&loaded), kOk);
  saved->searchStart[2] = {5.0f, 0.25f, 0.125f};
  const float fractions[4] = {0.5f, 0.5f, 0.5f, 1.0f};
  ASSERT_EQ(AimhueSetPercentCalcChroma(saved, fractions), kOk);

  const std::string name = dir.Path("run.aimhue");
  ASSERT_EQ(AimhueSave(saved, name.c_str()), kOk);
  ASSERT_EQ(AimhueLoad(loaded, name.c_str()), kOk);
  EXPECT_EQ(std::memcmp(loaded, saved, sizeof(Aimhue)), 0);

  uint64_t size = 0;
  ASSERT_EQ(AimhueGetBufferSize(saved, &size), kOk);
  ASSERT_EQ(size, 169u);
  std::array<char, 169> buffer;
  ASSERT_EQ(AimhueToBuffer(saved, buffer.data(), &size), kOk);
  AimhueRelease(loaded);
  ASSERT_EQ(AimhueFromBuffer(loaded, buffer.data(), static_cast<int64_t>(size)), kOk);
  EXPECT_EQ(std::memcmp(loaded, saved, sizeof(Aimhue)), 0);
  AimhueDestroyHandle(saved);
  AimhueDestroyHandle(loaded);
}

TEST(PersistenceApi, NullHandlesNamesAndBuffersAreRefused) {
  AimhueHandle handle = nullptr;
  ASSERT_EQ(AimhueCreateHandle(&handle), kOk);
  std::array<char, 169> buffer{};
  uint64_t size = buffer.size();
  EXPECT_EQ(AimhueSave(nullptr, "a.aimhue"), kNullInput);
  EXPECT_EQ(AimhueLoad(nullptr, "a.aimhue"), kNullInput);
  EXPECT_EQ(AimhueSave(handle, nullptr), kNullInput);
  EXPECT_EQ(AimhueLoad(handle, nullptr), kNullInput);
  EXPECT_EQ(AimhueToBuffer(nullptr, buffer.data(), &size), kNullInput);
  EXPECT_EQ(AimhueToBuffer(handle, nullptr, &size), kNullInput);
  EXPECT_EQ(AimhueFromBuffer(nullptr, buffer.data(), 169), kNullInput);
  EXPECT_EQ(AimhueFromBuffer(handle, nullptr, 169), kNullInput);
  EXPECT_EQ(AimhueGetBufferSize(nullptr, &size), kNullInput);
  EXPECT_EQ(AimhueGetBufferSize(handle, nullptr), kNullInput);
  AimhueDestroyHandle(handle);
}

}  // namespace
}  // namespace aimhue::testing
