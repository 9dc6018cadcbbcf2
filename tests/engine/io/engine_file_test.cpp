#include <aimhue/status.h>
#include <gtest/gtest.h>

#include <cstring>

#include "engine/aimhue.h"
#include "support/file_rules.h"
#include "support/log_capture.h"
#include "support/temp_dir.h"

namespace aimhue::testing {
namespace {

using Lines = std::vector<std::string>;

bool SameRecord(const Aimhue& a, const Aimhue& b) { return std::memcmp(&a, &b, sizeof a) == 0; }

// Distinct values in every stored field and non-default settings.
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

TEST(EngineFile, FreshImageStartsWithMarkVersionFractionsAndLimit) {
  const unsigned char start[] = {0x4C, 0x01, 0x00, 0x00, 0x00, 0x00, 0x00, 0x80, 0x3F,
                                 0x00, 0x00, 0x80, 0x3F, 0x00, 0x00, 0x80, 0x3F, 0x00,
                                 0x00, 0x80, 0x3F, 0xCD, 0xCC, 0x4C, 0x3F};
  const std::string image = Content(Aimhue());
  EXPECT_EQ(image.substr(0, 25), std::string(reinterpret_cast<const char*>(start), 25));
  EXPECT_EQ(image.substr(25), std::string(144, '\0'));  // zeroed blocks
  uint64_t size = 0;
  EXPECT_EQ(Aimhue().GetBufferSize(&size), kOk);
  EXPECT_EQ(size, 169u);
}

TEST(EngineFile, FileAndBufferLoadsRestoreResultsAndKeepTheSettings) {
  TempDir dir;
  const Aimhue saved = Searched();
  ASSERT_EQ(saved.Save(dir.Path("run.aimhue")), kOk);
  EXPECT_EQ(ReadFileBytes(dir.Path("run.aimhue")), Content(saved));

  Aimhue expected = saved;  // the results of `saved`, the settings of a fresh record
  const Aimhue fresh;
  expected.ngThresh = fresh.ngThresh;
  expected.percentEnd = fresh.percentEnd;
  Aimhue fromFile;
  ASSERT_EQ(fromFile.Load(dir.Path("run.aimhue")), kOk);
  EXPECT_TRUE(SameRecord(fromFile, expected));
  Aimhue fromBuffer;
  const std::string image = Content(saved) + "trailing bytes are ignored";
  ASSERT_EQ(fromBuffer.FromBuffer(image.data(), static_cast<int64_t>(image.size())), kOk);
  EXPECT_TRUE(SameRecord(fromBuffer, expected));
}

TEST(EngineFile, RefusedImagesNamesAndBuffers) {
  Aimhue engine = Searched();
  const auto record = [](const Aimhue& e) { return std::string(reinterpret_cast<const char*>(&e), sizeof e); };
  ExpectDamagedContentRules(engine, Content(Aimhue()), "Aimhue", ".aimhue", record);
  ExpectFileNameAndOpenRules(Aimhue(), engine, "Aimhue", ".aimhue");
  ExpectCallerBufferRules(Searched(), 169);
  LogCapture log;
  EXPECT_EQ(engine.FromBuffer(nullptr, 169), kNullInput);
  EXPECT_EQ(engine.FromBuffer(Content(Aimhue()).data(), -1), kOutOfRange);
  EXPECT_EQ(log.Errors(), Lines{"Aimhue::FromBuffer--Error :: negative buffer size."});
}

}  // namespace
}  // namespace aimhue::testing
