// The ".corr" file and buffer format: round trips and refused contents.
#include <aimhue/correction.h>
#include <aimhue/status.h>
#include <gtest/gtest.h>

#include <cstring>

#include "support/file_rules.h"
#include "support/log_capture.h"
#include "support/temp_dir.h"

namespace aimhue::testing {
namespace {

using Lines = std::vector<std::string>;

// A 2 x 3 record with distinct values in every plane and field.
Correction Sample() {
  Correction record;
  cv::RNG random(5);
  for (auto [plane, type] : {std::pair{&record.coeff, CV_32FC(9)},
                             {&record.gain, CV_32FC1},
                             {&record.deltaEBefore, CV_32FC4},
                             {&record.deltaEAfter, CV_32FC4}}) {
    plane->create(2, 3, type);
    random.fill(*plane, cv::RNG::UNIFORM, 0.0, 2.0);
  }
  record.flags =
      (cv::Mat_<uint8_t>(2, 3) << 0, kCorrectionDead, kCorrectionDimmed | kCorrectionClippedRed,
       kCorrectionSingular, kCorrectionRoundingRepaired, kCorrectionClippedBlue);
  record.scale = 0.8125f;
  for (int j = 0; j < 4; ++j)
    record.targets[j] = {10.0f * (j + 1), 0.1f * (j + 1), 0.2f + 0.1f * j};
  record.settings = {0.95f, CorrectionMode::Brightness, 12};
  return record;
}

TEST(CorrectionFile, FileAndBufferRoundTripsRestoreEveryFieldAndRecount) {
  const Correction saved = Sample();
  const std::string content = Content(saved);
  // Header 69 bytes, five matrix blocks, end tag.
  EXPECT_EQ(content.size(), 69u + 16 * 5 + 6 * (36 + 1 + 4 + 16 + 16) + 4);
  EXPECT_EQ(content.substr(0, 5), std::string("L\x01\0\0\0", 5));
  ExpectCallerBufferRules(saved, content.size());

  TempDir dir;
  ASSERT_EQ(saved.Save(dir.Path("screen.corr")), kOk);
  EXPECT_EQ(ReadFileBytes(dir.Path("screen.corr")), content);
  Correction fromFile, fromBuffer;
  ASSERT_EQ(fromFile.Load(dir.Path("screen.corr")), kOk);
  ASSERT_EQ(fromBuffer.FromBuffer(content.data(), content.size()), kOk);
  for (const Correction* loaded : {&fromFile, &fromBuffer}) {
    EXPECT_EQ(Content(*loaded), content);
    const CorrectionCounts& n = loaded->counts;
    EXPECT_EQ(std::vector<int64_t>({n.corrected, n.dead, n.singular, n.dimmed, n.clippedRed,
                                    n.clippedBlue, n.roundingRepaired}),
              std::vector<int64_t>({4, 1, 1, 1, 1, 1, 1}));
  }
  // A record never computed is stored as empty blocks and loads as one.
  uint64_t size = 0;
  EXPECT_EQ(Correction().GetBufferSize(&size), kEmptyInput);
  ASSERT_EQ(Correction().Save(dir.Path("empty.corr")), kOk);
  ASSERT_EQ(fromFile.Load(dir.Path("empty.corr")), kOk);
  EXPECT_TRUE(fromFile.coeff.empty() && fromFile.flags.empty());
}

TEST(CorrectionFile, DamagedContentIsRefusedAndLeavesTheRecord) {
  const std::string good = Content(Sample());
  const auto corrupt = [&](size_t offset, const void* bytes, size_t count) {
    std::string content = good;
    std::memcpy(&content[offset], bytes, count);
    return content;
  };
  const auto withPlane = [](cv::Mat Correction::*plane, const cv::Mat& value) {
    Correction record = Sample();
    record.*plane = value;
    return record;
  };
  const int32_t badMode = 7, badBits = 20, eight = 8;
  const float nan = NAN;
  const size_t coeffBlock = 69;
  const std::string dataError = "Correction::FromBuffer -- Error data in file.";
  const struct {
    std::string content;
    int status;
    std::string error;
  } cases[] = {
      {good.substr(0, good.size() - 4) + "ABCD", kBadVersion, dataError},
      {corrupt(57, &nan, 4), kBadVersion, dataError},  // quantile
      {corrupt(61, &badMode, 4), kBadVersion, dataError},
      {corrupt(65, &badBits, 4), kBadVersion, dataError},
      {corrupt(coeffBlock + 12, &eight, 4), kBadVersion, dataError},  // 8 channels
      {Content(withPlane(&Correction::gain, cv::Mat::zeros(3, 2, CV_32FC1))), kBadVersion,
       dataError},
      {Content(withPlane(&Correction::flags, cv::Mat::zeros(2, 3, CV_16UC1))), kBadVersion,
       dataError},
  };
  Correction record = Sample();
  const std::string before = Content(record);
  for (const auto& refused : cases) {
    LogCapture log;
    EXPECT_EQ(record.FromBuffer(refused.content.data(), refused.content.size()), refused.status)
        << refused.error;
    EXPECT_EQ(log.Errors(), Lines{refused.error});
    EXPECT_EQ(Content(record), before);
  }
  // A huge declared plane is refused before it is allocated; the shared rules.
  const int32_t huge = 1 << 30;
  const std::string hostile = corrupt(coeffBlock, &huge, 4);
  EXPECT_EQ(record.FromBuffer(hostile.data(), hostile.size()), kBadVersion);
  EXPECT_EQ(record.FromBuffer(nullptr, 4), kNullInput);
  EXPECT_EQ(Content(record), before);
  ExpectDamagedContentRules(record, good, "Correction", ".corr", Content<Correction>);
  ExpectFileNameAndOpenRules(Sample(), record, "Correction", ".corr");
}

}  // namespace
}  // namespace aimhue::testing
