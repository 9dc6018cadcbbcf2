// The rules every record format shares (file names, open failures, caller
// buffers, damaged headers and cut contents), checked once for any record
// with Save, Load, FromBuffer and ToBuffer.
#ifndef AIMHUE_TESTS_SUPPORT_FILE_RULES_H_
#define AIMHUE_TESTS_SUPPORT_FILE_RULES_H_

#include <aimhue/status.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <filesystem>
#include <initializer_list>
#include <string>
#include <vector>

#include "support/log_capture.h"
#include "support/temp_dir.h"

namespace aimhue::testing {

// 32-bit words, low byte first, as the formats store them.
inline std::string Words(std::initializer_list<uint32_t> words) {
  std::string bytes;
  for (uint32_t word : words) {
    for (int i = 0; i < 4; ++i) bytes.push_back(static_cast<char>(word >> (8 * i) & 0xff));
  }
  return bytes;
}

// The content a record writes: as many bytes as GetBufferSize names, or at
// most 4096 for a record that cannot name its size (an empty shot or meter).
template <typename Record>
std::string Content(const Record& record) {
  uint64_t size = 0;
  std::string bytes(record.GetBufferSize(&size) == kOk ? size : 4096, '\0');
  size = bytes.size();
  EXPECT_EQ(record.ToBuffer(bytes.data(), &size), kOk);
  bytes.resize(size);
  return bytes;
}

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

// `record` serialises to `length` bytes: a buffer one byte short gives 13
// with the size and the bytes untouched, null pointers give 1, and a large
// enough buffer receives exactly `length` bytes with the size set to it.
template <typename Record>
void ExpectCallerBufferRules(const Record& record, uint64_t length) {
  const std::string untouched(length + 31, '#');
  std::string buffer = untouched;
  uint64_t size = length - 1;
  EXPECT_EQ(record.ToBuffer(buffer.data(), &size), kBufferTooSmall);
  EXPECT_EQ(size, length - 1);
  EXPECT_EQ(buffer, untouched);
  EXPECT_EQ(record.ToBuffer(nullptr, &size), kNullInput);
  EXPECT_EQ(record.ToBuffer(buffer.data(), nullptr), kNullInput);
  EXPECT_EQ(record.GetBufferSize(nullptr), kNullInput);
  size = buffer.size();
  EXPECT_EQ(record.ToBuffer(buffer.data(), &size), kOk);
  EXPECT_EQ(size, length);
  EXPECT_EQ(buffer.substr(length), std::string(31, '#'));
}

// The good `content` with another byte-order mark gives 10, with another
// version 3, and cut at any length 3: from a buffer and from a file named
// "*<extension>" alike,
// with one line each ("<who>::FromBuffer -- Error file endianness.", then
// "version in file." for a cut inside the header and "data in file." after
// it), and `record` as `bytes` showed it before.
template <typename Record, typename Bytes>
void ExpectDamagedContentRules(Record& record, const std::string& content, const std::string& who,
                               const std::string& extension, Bytes bytes) {
  struct Case {
    std::string content;
    int status;
    std::string problem;
  };
  std::string version = content;
  version[1] = 2;
  std::vector<Case> cases = {{"B" + content.substr(1), kBadByteOrderMark, "file endianness."},
                             {version, kBadVersion, "version in file."}};
  for (size_t length = 1; length < content.size(); ++length) {
    cases.push_back({content.substr(0, length), kBadVersion,
                     length < 5 ? "version in file." : "data in file."});
  }
  TempDir dir;
  const std::string before = bytes(record);
  for (const Case& c : cases) {
    SCOPED_TRACE(c.content.size());
    LogCapture log;
    EXPECT_EQ(record.FromBuffer(c.content.data(), c.content.size()), c.status);
    EXPECT_EQ(record.Load(dir.Write("bad" + extension, c.content)), c.status);
    EXPECT_EQ(log.Errors(), (std::vector<std::string>{who + "::FromBuffer -- Error " + c.problem,
                                                      who + "::Load -- Error " + c.problem}));
    EXPECT_EQ(bytes(record), before);
  }
}

}  // namespace aimhue::testing

#endif  // AIMHUE_TESTS_SUPPORT_FILE_RULES_H_
