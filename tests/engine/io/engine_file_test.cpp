#include <aimhue/status.h>
#include <gtest/gtest.h>

#include <cstring>

#include "engine/aimhue.h"
#include "support/log_capture.h"
#include "support/temp_dir.h"

namespace aimhue {
namespace {

using ::aimhue::testing::LogCapture;
using ::aimhue::testing::ReadFileBytes;
using ::aimhue::testing::TempDir;
using Lines = std::vector<std::string>;

std::string Image(const Aimhue& engine) {
  std::string buffer(169, '\0');
  uint64_t size = buffer.size();
  EXPECT_EQ(engine.ToBuffer(buffer.data(), &size), kOk);
  return buffer;
}

// A record with distinct values in every stored field and non-default
// settings.
Aimhue Searched() {
  Aimhue engine;
  float value = 0.25f;
  for (TargetBlock* block : {&engine.target, &engine.searchEnd, &engine.searchStart}) {
    for (TargetLxy& point : *block) point = {value += 1.0f, value += 0.001f, value += 0.002f};
  }
  engine.percentCalcChroma = {0.5f, 0.25f, 0.125f, 1.0f};
  engine.ngLimit = 0.71f;
  engine.ngThresh = 0.2f;
  engine.percentEnd = {0.9f, 0.9f, 0.9f, 0.9f};
  return engine;
}

bool SameBytes(const void* a, const void* b, size_t size) { return std::memcmp(a, b, size) == 0; }

TEST(EngineFile, FreshImageStartsWithMarkVersionFractionsAndLimit) {
  const std::string image = Image(Aimhue());
  const unsigned char start[] = {0x4C, 0x01, 0x00, 0x00, 0x00, 0x00, 0x00, 0x80, 0x3F,
                                 0x00, 0x00, 0x80, 0x3F, 0x00, 0x00, 0x80, 0x3F, 0x00,
                                 0x00, 0x80, 0x3F, 0xCD, 0xCC, 0x4C, 0x3F};
  ASSERT_EQ(image.size(), 169u);
  EXPECT_TRUE(SameBytes(image.data(), start, sizeof start));
  EXPECT_EQ(image.substr(25), std::string(144, '\0'));  // zeroed blocks
  uint64_t size = 0;
  EXPECT_EQ(Aimhue().GetBufferSize(&size), kOk);
  EXPECT_EQ(size, 169u);
}

TEST(EngineFile, SaveAndLoadRestoreResultsAndKeepTheSettings) {
  TempDir dir;
  const Aimhue saved = Searched();
  ASSERT_EQ(saved.Save(dir.Path("run.aimhue")), kOk);
  EXPECT_EQ(ReadFileBytes(dir.Path("run.aimhue")), Image(saved));

  for (int viaBuffer = 0; viaBuffer < 2; ++viaBuffer) {
    Aimhue loaded;
    loaded.ngThresh = 0.3f;
    if (viaBuffer) {
      const std::string image = Image(saved);
      ASSERT_EQ(loaded.FromBuffer(image.data(), static_cast<int64_t>(image.size())), kOk);
    } else {
      ASSERT_EQ(loaded.Load(dir.Path("run.aimhue")), kOk);
    }
    EXPECT_EQ(Image(loaded), Image(saved));
    EXPECT_TRUE(SameBytes(&loaded.searchStart, &saved.searchStart, sizeof saved.searchStart));
    EXPECT_EQ(loaded.ngThresh, 0.3f);
    EXPECT_EQ(loaded.percentEnd, Aimhue().percentEnd);
    EXPECT_EQ(loaded.whiteScale, 1.1f);
  }
}

TEST(EngineFile, BufferSizeRules) {
  const Aimhue engine = Searched();
  std::string buffer(200, '#');
  uint64_t size = 168;
  EXPECT_EQ(engine.ToBuffer(buffer.data(), &size), kBufferTooSmall);
  EXPECT_EQ(size, 168u);
  EXPECT_EQ(buffer, std::string(200, '#'));
  EXPECT_EQ(engine.ToBuffer(nullptr, &size), kNullInput);
  EXPECT_EQ(engine.ToBuffer(buffer.data(), nullptr), kNullInput);
  EXPECT_EQ(engine.GetBufferSize(nullptr), kNullInput);
  size = 200;
  EXPECT_EQ(engine.ToBuffer(buffer.data(), &size), kOk);
  EXPECT_EQ(size, 169u);
  EXPECT_EQ(buffer.substr(169), std::string(31, '#'));
}

// Every refused load leaves the record's bytes exactly as they were.
class EngineRefusal : public ::testing::Test {
 protected:
  void ExpectRefused(const std::string& bytes, int status, const Lines& bufferErrors,
                     const Lines& fileErrors) {
    Aimhue engine = Searched();
    const Aimhue before = engine;
    {
      LogCapture log;
      EXPECT_EQ(engine.FromBuffer(bytes.data(), static_cast<int64_t>(bytes.size())), status);
      EXPECT_EQ(log.Errors(), bufferErrors);
    }
    EXPECT_TRUE(SameBytes(&engine, &before, sizeof engine));
    LogCapture log;
    EXPECT_EQ(engine.Load(dir_.Write("bad.aimhue", bytes)), status);
    EXPECT_EQ(log.Errors(), fileErrors);
    EXPECT_TRUE(SameBytes(&engine, &before, sizeof engine));
  }
  void ExpectRefused(const std::string& bytes, int status, const std::string& problem) {
    ExpectRefused(bytes, status, {"Aimhue::FromBuffer -- " + problem},
                  {"Aimhue::Load -- " + problem});
  }
  TempDir dir_;
};

TEST_F(EngineRefusal, MarkVersionAndShortImages) {
  std::string image = Image(Aimhue());
  image[0] = 'B';
  ExpectRefused(image, kBadByteOrderMark, "Error file endianness.");
  image = Image(Aimhue());
  image[1] = 2;
  ExpectRefused(image, kBadVersion, "Error version in file.");
  ExpectRefused("L", kBadVersion, "Error version in file.");
  for (size_t length : {size_t{5}, size_t{6}, size_t{100}, size_t{168}}) {
    ExpectRefused(Image(Aimhue()).substr(0, length), kBadVersion, "Error data in file.");
  }
}

TEST_F(EngineRefusal, NullBufferAndNegativeSize) {
  Aimhue engine;
  LogCapture log;
  EXPECT_EQ(engine.FromBuffer(nullptr, 169), kNullInput);
  const std::string image = Image(Aimhue());
  EXPECT_EQ(engine.FromBuffer(image.data(), -1), kOutOfRange);
  EXPECT_EQ(log.Errors(), Lines{"Aimhue::FromBuffer--Error :: negative buffer size."});
}

TEST(EngineFile, NamesAndOpenFailures) {
  TempDir dir;
  const Aimhue engine;
  Aimhue loaded;
  LogCapture log;
  EXPECT_EQ(engine.Save(dir.Path("run.txt")), kBadExtension);
  EXPECT_FALSE(std::filesystem::exists(dir.Path("run.txt")));
  EXPECT_EQ(engine.Save(".aimhue"), kBadExtension);
  EXPECT_EQ(loaded.Load(dir.Path("run.AIMHUE")), kBadExtension);
  EXPECT_EQ(engine.Save(dir.Path("no/run.aimhue")), kOpenWriteFailed);
  EXPECT_EQ(loaded.Load(dir.Path("none.aimhue")), kOpenReadFailed);
  EXPECT_EQ(log.Errors(),
            (Lines{"Aimhue::Save--Error :: ext filename mismatch.",
                   "Aimhue::Save--Error :: ext filename mismatch.",
                   "Aimhue::Load--Error :: ext filename mismatch.",
                   "Aimhue::Save -- Failed to Open file. fullname = " + dir.Path("no/run.aimhue"),
                   "Aimhue::Load -- Failed to Open file. fullname = " +
                       dir.Path("none.aimhue")}));
}

}  // namespace
}  // namespace aimhue
