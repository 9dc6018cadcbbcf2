#include "capture/file_format.h"

#include <aimhue/status.h>
#include <gtest/gtest.h>

#include "support/log_capture.h"
#include "support/temp_dir.h"

namespace aimhue {
namespace {

using ::aimhue::testing::LogCapture;
using ::aimhue::testing::TempDir;
using Lines = std::vector<std::string>;

TEST(FileFormat, ExtensionMustEndTheNameExactlyAndLeaveSomethingBeforeIt) {
  EXPECT_TRUE(HasExtension("a.meter", ".meter"));
  EXPECT_TRUE(HasExtension("/dir.x/b.c.meter", ".meter"));
  EXPECT_FALSE(HasExtension(".meter", ".meter"));
  EXPECT_FALSE(HasExtension("a.METER", ".meter"));
  EXPECT_FALSE(HasExtension("a.meter.txt", ".meter"));
  EXPECT_FALSE(HasExtension("meter", ".meter"));
  EXPECT_FALSE(HasExtension("", ".meter"));

  LogCapture log;
  EXPECT_EQ(CheckExtension("X::Save", "a.txt", ".meter"), kBadExtension);
  EXPECT_EQ(log.Errors(), Lines{"X::Save--Error :: ext filename mismatch."});
}

TEST(FileFormat, HeaderNeedsTheMarkThenTheVersion) {
  struct Case {
    std::string bytes;
    int status;
    Lines errors;
  };
  const Case cases[] = {
      {std::string("L\x01\x00\x00\x00", 5), kOk, {}},
      {std::string("B\x01\x00\x00\x00", 5),
       kBadByteOrderMark,
       {"X::Load -- Error file endianness."}},
      {"", kBadByteOrderMark, {"X::Load -- Error file endianness."}},
      {std::string("L\x02\x00\x00\x00", 5), kBadVersion, {"X::Load -- Error version in file."}},
      {std::string("L\x01\x00", 3), kBadVersion, {"X::Load -- Error version in file."}},
  };
  for (const Case& c : cases) {
    LogCapture log;
    ByteReader in(c.bytes.data(), c.bytes.size());
    EXPECT_EQ(ReadHeader("X::Load", in, 1), c.status);
    EXPECT_EQ(log.Errors(), c.errors);
  }
}

// Load through the shared file side, keeping the bytes it parsed.
int LoadBytes(const std::string& fullname, std::string& bytes) {
  return LoadFormatFile("X::Load", fullname, ".x", [&](const char* data, size_t size) {
    bytes.assign(data, size);
    return 0;
  });
}

int SaveBytes(const std::string& fullname, const std::string& bytes) {
  return SaveFormatFile("X::Save", fullname, ".x", [&] { return bytes; });
}

TEST(FileFormat, FilesFailToOpenWithTheirNameAndFormatCode) {
  TempDir dir;
  LogCapture log;
  std::string bytes = "kept";
  EXPECT_EQ(LoadBytes(dir.Path("missing.x"), bytes), kOpenReadFailed);
  EXPECT_EQ(bytes, "kept");
  EXPECT_EQ(SaveBytes(dir.Path("no/such/dir.x"), "data"), kOpenWriteFailed);
  // A directory with the right extension is not a readable file.
  std::filesystem::create_directory(dir.Path("folder.x"));
  EXPECT_EQ(LoadBytes(dir.Path("folder.x"), bytes), kOpenReadFailed);
  EXPECT_EQ(log.Errors(),
            (Lines{"X::Load -- Failed to Open file. fullname = " + dir.Path("missing.x"),
                   "X::Save -- Failed to Open file. fullname = " + dir.Path("no/such/dir.x"),
                   "X::Load -- Failed to Open file. fullname = " + dir.Path("folder.x")}));
}

TEST(FileFormat, SaveRefusesTheNameBeforeProducingOrCreatingAnything) {
  TempDir dir;
  bool produced = false;
  EXPECT_EQ(SaveFormatFile("X::Save", dir.Path("a.txt"), ".x",
                           [&] {
                             produced = true;
                             return std::string("data");
                           }),
            kBadExtension);
  EXPECT_FALSE(produced);
  EXPECT_FALSE(std::filesystem::exists(dir.Path("a.txt")));
  ASSERT_EQ(SaveBytes(dir.Path("a.x"), std::string("d\0ta", 4)), kOk);
  std::string bytes;
  ASSERT_EQ(LoadBytes(dir.Path("a.x"), bytes), kOk);
  EXPECT_EQ(bytes, std::string("d\0ta", 4));
}

TEST(FileFormat, OutputBufferIsFilledOnlyWhenLargeEnough) {
  char buffer[8] = "-------";
  uint64_t size = 3;
  EXPECT_EQ(CopyToOutputBuffer("abcd", nullptr, &size), kNullInput);
  EXPECT_EQ(CopyToOutputBuffer("abcd", buffer, nullptr), kNullInput);
  EXPECT_EQ(CopyToOutputBuffer("abcd", buffer, &size), kBufferTooSmall);
  EXPECT_EQ(size, 3u);
  EXPECT_STREQ(buffer, "-------");
  size = 8;
  EXPECT_EQ(CopyToOutputBuffer("abcd", buffer, &size), kOk);
  EXPECT_EQ(size, 4u);
  EXPECT_STREQ(buffer, "abcd---");
}

TEST(ByteReader, ReadsLittleEndianAndNeverPastTheEnd) {
  const char bytes[] = {'\x78', '\x56', '\x34', '\x12', '\x00', '\x00', '\x80', '\x3F', '\x01'};
  ByteReader in(bytes, sizeof bytes);
  uint32_t word = 0;
  float value = 0.0f;
  ASSERT_TRUE(in.ReadU32(word));
  EXPECT_EQ(word, 0x12345678u);
  ASSERT_TRUE(in.ReadF32(value));
  EXPECT_EQ(value, 1.0f);
  EXPECT_FALSE(in.ReadU32(word));  // one byte left: nothing consumed
  EXPECT_EQ(in.Remaining(), 1u);
  uint8_t last = 0;
  EXPECT_TRUE(in.ReadU8(last));
  EXPECT_FALSE(in.ReadU8(last));
}

}  // namespace
}  // namespace aimhue
