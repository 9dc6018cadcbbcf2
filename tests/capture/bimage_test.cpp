#include <aimhue/bimage.h>
#include <aimhue/shot.h>
#include <aimhue/status.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>

#include "support/log_capture.h"
#include "support/temp_dir.h"

namespace aimhue {
namespace {

using ::aimhue::testing::LogCapture;
using ::aimhue::testing::TempDir;
using Bytes = std::vector<uint8_t>;
using Lines = std::vector<std::string>;

std::string Text(const Bytes& bytes) { return std::string(bytes.begin(), bytes.end()); }

const char kNotDngLine[] = "        Error :: file not dng image \n";

// The sample pattern of write_tiff.py: both bytes of a sample differ.
cv::Mat TiffPattern(int rows, int cols) {
  cv::Mat expected(rows, cols, CV_16UC1);
  for (int r = 0; r < rows; ++r) {
    for (int c = 0; c < cols; ++c) {
      expected.at<uint16_t>(r, c) =
          static_cast<uint16_t>((static_cast<uint64_t>(r * cols + c) * 1031 + 7) % 65536);
    }
  }
  return expected;
}

// Writes a TIFF with tifffile; rows_per_strip 0 gives one strip.
std::string WriteTiff(const TempDir& dir, const std::string& name, int rows, int cols,
                      const std::string& order, int rows_per_strip) {
  const std::string fullname = dir.Path(name);
  const std::string command = std::string(AIMHUE_PYTHON) + " " + AIMHUE_TEST_SCRIPTS_DIR +
                              "/capture/write_tiff.py " + fullname + " " + std::to_string(rows) +
                              " " + std::to_string(cols) + " " + order + " " +
                              std::to_string(rows_per_strip);
  EXPECT_EQ(std::system(command.c_str()), 0) << command;
  return fullname;
}

bool SameImage(const cv::Mat& a, const cv::Mat& b) {
  return a.type() == b.type() && a.size() == b.size() && cv::norm(a, b, cv::NORM_INF) == 0.0;
}

void PutU16(Bytes& bytes, size_t at, uint16_t value) {
  if (bytes.size() < at + 2) bytes.resize(at + 2);
  bytes[at] = value & 0xff;
  bytes[at + 1] = value >> 8;
}

void PutU32(Bytes& bytes, size_t at, uint32_t value) {
  if (bytes.size() < at + 4) bytes.resize(at + 4);
  for (int i = 0; i < 4; ++i) bytes[at + i] = (value >> (8 * i)) & 0xff;
}

// A DNG of the readers' own shape: little-endian header and directory at 8
// with the three tags; the strip-offsets value is `strip_value`.
Bytes MakeDng(const char order[2], uint32_t width, uint32_t length, uint32_t strip_value) {
  Bytes bytes = {static_cast<uint8_t>(order[0]), static_cast<uint8_t>(order[1])};
  PutU16(bytes, 2, 42);
  PutU32(bytes, 4, 8);
  PutU16(bytes, 8, 3);
  const uint32_t values[3] = {width, length, strip_value};
  const uint16_t tags[3] = {256, 257, 273};
  for (int i = 0; i < 3; ++i) {
    PutU16(bytes, 10 + 12 * i, tags[i]);
    PutU16(bytes, 12 + 12 * i, 4);
    PutU32(bytes, 14 + 12 * i, 1);
    PutU32(bytes, 18 + 12 * i, values[i]);
  }
  return bytes;  // 46 bytes
}

TEST(RawReader, ExactSizeIsReadLowByteFirst) {
  TempDir dir;
  const Bytes bytes = {0x01, 0x02, 0xff, 0x00, 0x00, 0xff, 0x34, 0x12, 0x00, 0x00, 0xcd, 0xab};
  const cv::Mat image = BImage::ReadOrvoRaw(dir.Write("a.raw", Text(bytes)), 2, 3);
  const cv::Mat expected = (cv::Mat_<uint16_t>(2, 3) << 0x0201, 0x00ff, 0xff00, 0x1234, 0, 0xabcd);
  EXPECT_TRUE(SameImage(image, expected));
}

TEST(RawReader, SizeOffByOneIsRefusedAndTheShotReportsIt) {
  LogCapture log;
  TempDir dir;
  const std::string short_file = dir.Write("short.raw", Text(Bytes(11)));
  const std::string long_file = dir.Write("long.raw", Text(Bytes(13)));
  EXPECT_TRUE(BImage::ReadOrvoRaw(short_file, 2, 3).empty());
  EXPECT_TRUE(BImage::ReadOrvoRaw(long_file, 2, 3).empty());
  EXPECT_TRUE(BImage::ReadOrvoRaw(short_file, -2, -3).empty());
  EXPECT_TRUE(BImage::ReadOrvoRaw(dir.Path("missing.raw"), 2, 3).empty());
  EXPECT_EQ(log.Errors(),
            (Lines{"BImage::ReadOrvoRaw -- Check file size, fullname = " + short_file,
                   "BImage::ReadOrvoRaw -- Check file size, fullname = " + long_file,
                   "BImage::ReadOrvoRaw -- Check file size, fullname = " + short_file,
                   "BImage::ReadOrvoRaw -- Open file failure, fullname = " + dir.Path("missing.raw")}));
  Shot shot;
  log.Clear();
  EXPECT_EQ(shot.CreateFromRaw(short_file, CAM_G, 3, 2, 0), kOpenReadFailed);
  EXPECT_EQ(log.Errors().back(), "Shot::CreateFromRaw -- Error Read raw file = " + short_file);
  EXPECT_TRUE(shot.image.empty());
}

TEST(RawReader, CameraTypesGiveTheirGeometry) {
  LogCapture log;
  TempDir dir;
  Shot shot;
  EXPECT_EQ(shot.CreateFromRaw(dir.Path("never-opened.raw"), 5, CAM_G), kUnknownCameraType);
  EXPECT_EQ(log.Errors(), Lines{"Shot::CreateFromRaw -- Error CameraType"});
  const std::string file = dir.Write("cam.raw", Text(Bytes(24123000, 0x11)));
  ASSERT_EQ(shot.CreateFromRaw(file, 120016, CAM_G), kOk);
  EXPECT_EQ(shot.image.rows, 2838);
  EXPECT_EQ(shot.image.cols, 4250);
  EXPECT_EQ(shot.image.at<uint16_t>(2837, 4249), 0x1111);
  log.Clear();
  EXPECT_EQ(shot.CreateFromRaw(file, 320012, CAM_G), kOpenReadFailed);
  EXPECT_EQ(log.Errors().back(), "Shot::CreateFromRaw -- Error Read raw file=" + file);
  EXPECT_EQ(shot.image.rows, 2838);  // unchanged
}

TEST(DngReader, IndependentlyWrittenTiffsReadPixelForPixel) {
  TempDir dir;
  const cv::Mat expected = TiffPattern(7, 5);
  cv::Mat flipped;
  cv::flip(expected, flipped, 0);
  for (const std::string order : {"le", "be"}) {
    // Several contiguous strips: the strip-offsets value points at the array.
    const std::string strips = WriteTiff(dir, order + "-strips.tif", 7, 5, order, 2);
    EXPECT_TRUE(SameImage(BImage::ReadRggbDng(strips), expected)) << order;
    // One strip: the value is the data position itself.
    const std::string single = WriteTiff(dir, order + "-single.tif", 7, 5, order, 0);
    EXPECT_TRUE(SameImage(BImage::ReadDngToup(single), flipped)) << order;
  }
}

TEST(DngReader, OwnShapeSamplesFollowTheByteOrderOnly) {
  TempDir dir;
  // Toup: data position 46 directly; 2 x 2 samples 1, 2 / 3, 4 come back flipped.
  Bytes toup = MakeDng("II", 2, 2, 46);
  for (uint16_t v : {1, 2, 3, 4}) PutU16(toup, toup.size(), v);
  EXPECT_TRUE(SameImage(BImage::ReadDngToup(dir.Write("toup.dng", Text(toup))),
                        (cv::Mat_<uint16_t>(2, 2) << 3, 4, 1, 2)));
  // "MM" with a little-endian header: the samples alone are big-endian.
  Bytes rggb = MakeDng("MM", 3, 1, 46);
  PutU32(rggb, 46, 50);
  rggb.insert(rggb.end(), {0x01, 0x02, 0x00, 0xff, 0xab, 0xcd});
  EXPECT_TRUE(SameImage(BImage::ReadRggbDng(dir.Write("mm.dng", Text(rggb))),
                        (cv::Mat_<uint16_t>(1, 3) << 0x0102, 0x00ff, 0xabcd)));
}

TEST(DngReader, WrongMagicWritesTheLineOnStandardOutput) {
  LogCapture log;
  TempDir dir;
  Bytes bytes = MakeDng("II", 1, 1, 46);
  PutU16(bytes, 2, 43);
  PutU16(bytes, 46, 7);
  const std::string file = dir.Write("magic.dng", Text(bytes));
  ::testing::internal::CaptureStdout();
  const cv::Mat image = BImage::ReadRggbDng(file);
  EXPECT_EQ(::testing::internal::GetCapturedStdout(), kNotDngLine);
  EXPECT_TRUE(image.empty());
  Shot shot;
  ::testing::internal::CaptureStdout();
  EXPECT_EQ(shot.ReadDng(file, CAM_G, 0), kOpenReadFailed);
  EXPECT_EQ(shot.ReadDngToupTek(file, CAM_G), kOpenReadFailed);
  ::testing::internal::GetCapturedStdout();
  EXPECT_EQ(log.Errors(), (Lines{"Shot::ReadDng--Error ::Error Read dng file = " + file,
                                 "Shot::ReadDng--Error ::Error Read dng file = " + file}));
}

TEST(DngReader, DamagedFilesAreRefusedWithoutReadingOutside) {
  TempDir dir;
  Bytes good = MakeDng("II", 2, 2, 46);
  PutU32(good, 46, 50);
  for (uint16_t v : {1, 2, 3, 4}) PutU16(good, good.size(), v);
  ASSERT_FALSE(BImage::ReadRggbDng(dir.Write("good.dng", Text(good))).empty());

  std::vector<std::pair<std::string, Bytes>> damaged;
  damaged.emplace_back("pixels-short", Bytes(good.begin(), good.end() - 1));
  Bytes huge = good;  // 2^32 - 1 squared samples promised by a 58-byte file
  PutU32(huge, 18, 0xffffffffu);
  PutU32(huge, 30, 0xffffffffu);
  damaged.emplace_back("huge", huge);
  Bytes directory = good;
  PutU32(directory, 4, 57);
  damaged.emplace_back("directory-past-end", directory);
  Bytes entries = good;
  PutU16(entries, 8, 5);  // five entries need bytes up to 70
  entries.resize(69);
  damaged.emplace_back("entries-past-end", entries);
  Bytes strips = good;
  PutU32(strips, 42, 56);
  damaged.emplace_back("strip-array-past-end", strips);
  Bytes data = good;
  PutU32(data, 46, 0xfffffff0u);
  damaged.emplace_back("data-past-end", data);
  Bytes no_width = good;
  PutU16(no_width, 10, 999);
  damaged.emplace_back("no-width", no_width);
  damaged.emplace_back("header-only", Bytes(good.begin(), good.begin() + 5));
  for (const auto& [name, bytes] : damaged) {
    LogCapture log;
    const std::string file = dir.Write(name + ".dng", Text(bytes));
    ::testing::internal::CaptureStdout();
    const bool refused = BImage::ReadRggbDng(file).empty();
    ::testing::internal::GetCapturedStdout();
    EXPECT_TRUE(refused) << name;
  }
  // The direct data position of ReadDngToup: past the end, or short data.
  Bytes toup = MakeDng("II", 2, 2, 0xfffffff0u);
  toup.resize(54);
  EXPECT_TRUE(BImage::ReadDngToup(dir.Write("toup-past-end.dng", Text(toup))).empty());
  PutU32(toup, 42, 46);
  toup.resize(53);
  EXPECT_TRUE(BImage::ReadDngToup(dir.Write("toup-short.dng", Text(toup))).empty());
  toup.resize(54);
  EXPECT_FALSE(BImage::ReadDngToup(dir.Write("toup-whole.dng", Text(toup))).empty());

  LogCapture log;
  EXPECT_TRUE(BImage::ReadDngToup(dir.Path("missing.dng")).empty());
  EXPECT_EQ(log.Errors(), Lines{"BImage::ReadDngToup -- Failed to Open file. fullname = " +
                                dir.Path("missing.dng")});
}

TEST(PgmReader, OpenCvWrittenPgmReadsBack) {
  TempDir dir;
  cv::Mat expected(5, 7, CV_16UC1);
  cv::randu(expected, 0, 65536);
  const std::string file = dir.Path("a.pgm");
  ASSERT_TRUE(cv::imwrite(file, expected));
  cv::Mat image;
  ASSERT_TRUE(BImage::ReadPgm(file, image));
  EXPECT_TRUE(SameImage(image, expected));
}

TEST(PgmReader, BadFilesLeaveTheImageAndSayWhy) {
  TempDir dir;
  const cv::Mat original(1, 1, CV_16UC1, cv::Scalar(77));
  struct Case {
    std::string name;
    std::string content;
    std::string message;
  } cases[] = {{"blank.pgm", "P5 \n1 1\n65535\n\x01\x02", "Version error\n"},
               {"p2.pgm", "P2\n1 1\n65535\n1\n", "Version error\n"},
               {"comment.pgm", "P5\n# made here\n1 1\n65535\n\x01\x02", "Header error\n"},
               {"negative.pgm", "P5\n-1 1\n65535\n\x01\x02", "Header error\n"},
               {"short.pgm", "P5\n2 1\n65535\n\x01\x02\x03", "Size error\n"},
               {"huge.pgm", "P5\n2147483647 2147483647\n65535\n\x01\x02", "Size error\n"}};
  for (const Case& item : cases) {
    cv::Mat image = original;
    ::testing::internal::CaptureStderr();
    EXPECT_FALSE(BImage::ReadPgm(dir.Write(item.name, item.content), image)) << item.name;
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), item.message) << item.name;
    EXPECT_EQ(image.data, original.data);
  }
  cv::Mat image;
  ::testing::internal::CaptureStdout();
  EXPECT_FALSE(BImage::ReadPgm(dir.Path("missing.pgm"), image));
  EXPECT_EQ(::testing::internal::GetCapturedStdout(),
            "Open file failure, fullname = " + dir.Path("missing.pgm") + "\n");
}

}  // namespace
}  // namespace aimhue
