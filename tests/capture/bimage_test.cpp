#include <aimhue/bimage.h>

#include <cstdlib>
#include <opencv2/imgcodecs.hpp>

#include "support/temp_dir.h"
#include "support/test_meters.h"

namespace aimhue::testing {
namespace {

using ::testing::internal::CaptureStderr;
using ::testing::internal::CaptureStdout;
using ::testing::internal::GetCapturedStderr;
using ::testing::internal::GetCapturedStdout;

// `bytes` with `value` written low byte first over `width` bytes at `at`.
std::string Put(std::string bytes, size_t at, uint32_t value, int width = 4) {
  if (bytes.size() < at + width) bytes.resize(at + width);
  for (int i = 0; i < width; ++i) bytes.at(at + i) = static_cast<char>(value >> (8 * i) & 0xff);
  return bytes;
}

// A DNG of the readers' own shape: little-endian header, a directory at 8
// with width, length and strip offsets (`strip_value`), 46 bytes in all.
std::string MakeDng(const char* order, uint32_t width, uint32_t length, uint32_t strip_value) {
  std::string bytes = Put(Put(Put(order, 2, 42, 2), 4, 8), 8, 3, 2);
  const uint32_t tags[3] = {256, 257, 273}, values[3] = {width, length, strip_value};
  for (size_t i = 0, at = 10; i < 3; ++i, at += 12) {
    bytes = Put(Put(Put(Put(bytes, at, tags[i], 2), at + 2, 4, 2), at + 4, 1), at + 8, values[i]);
  }
  return bytes;
}

TEST(RawReader, RefusalsOfTheShotReaders) {
  TempDir dir;
  Shot shot;
  const std::string small = dir.Write("small.raw", std::string(11, '\0'));
  const std::string dng = dir.Write("magic.dng", Put(MakeDng("II", 2, 2, 46), 2, 43, 2));
  const std::string size_line = "BImage::ReadOrvoRaw -- Check file size, fullname = ";
  const std::string read_line = "Shot::CreateFromRaw -- Error Read raw file";
  const std::string dng_line = "Shot::ReadDng--Error ::Error Read dng file = " + dng;
  const auto camera = [](std::string name, int cam) {
    return [=](Shot& s) { return s.CreateFromRaw(name, cam, CAM_G); };
  };
  const auto read_dng = [&](bool toup) {
    return [=](Shot& s) {
      CaptureStdout();  // the "not dng" line
      const int status = toup ? s.ReadDngToupTek(dng, CAM_G) : s.ReadDng(dng, CAM_G, 0);
      GetCapturedStdout();
      return status;
    };
  };
  const auto sized = [&](Shot& s) { return s.CreateFromRaw(small, CAM_G, 3, 2, 0); };
  const Lines sized_lines = {size_line + small, read_line + " = " + small};
  ExpectRefusals<Shot>(
      shot, {{sized, kOpenReadFailed, sized_lines},
             {camera(small, 5), kUnknownCameraType, {"Shot::CreateFromRaw -- Error CameraType"}},
             {read_dng(false), kOpenReadFailed, {dng_line}},
             {read_dng(true), kOpenReadFailed, {dng_line}}});
}

// A 7 x 5 TIFF written by tifffile (write_tiff.py); rows_per_strip 0 gives one strip.
std::string WriteTiff(const TempDir& dir, const std::string& order, int rows_per_strip) {
  const std::string strips = std::to_string(rows_per_strip);
  const std::string name = dir.Path(order + strips + ".tif");
  const std::string command = std::string(AIMHUE_PYTHON) + " " + AIMHUE_TEST_SCRIPTS_DIR +
                              "/capture/write_tiff.py " + name + " 7 5 " + order + " " + strips;
  EXPECT_EQ(std::system(command.c_str()), 0) << command;
  return name;
}

TEST(CameraFileReaders, IndependentWritersAndOwnShapeFiles) {
  TempDir dir;
  cv::Mat expected(7, 5, CV_16UC1), flipped, written(5, 7, CV_16UC1), image;
  for (int i = 0; i < 35; ++i) expected.at<uint16_t>(i / 5, i % 5) = (i * 1031 + 7) % 65536;
  cv::flip(expected, flipped, 0);
  for (const std::string order : {"le", "be"}) {
    // Several strips: the strip-offsets value points at their array; one strip: at the data.
    EXPECT_TRUE(SameImage(BImage::ReadRggbDng(WriteTiff(dir, order, 2)), expected)) << order;
    EXPECT_TRUE(SameImage(BImage::ReadDngToup(WriteTiff(dir, order, 0)), flipped)) << order;
  }
  cv::randu(written, 0, 65536);
  ASSERT_TRUE(cv::imwrite(dir.Path("a.pgm"), written));
  ASSERT_TRUE(BImage::ReadPgm(dir.Path("a.pgm"), image));
  EXPECT_TRUE(SameImage(image, written));
  const std::string raw("\x01\x02\xff\x00\x00\xff\x34\x12\x00\x00\xcd\xab", 12);
  EXPECT_TRUE(SameImage(BImage::ReadOrvoRaw(dir.Write("a.raw", raw), 2, 3),
                        (cv::Mat_<uint16_t>(2, 3) << 0x0201, 0xff, 0xff00, 0x1234, 0, 0xabcd)));
  // Rows of samples at 46 come back flipped; "MM" makes the samples alone big-endian.
  const std::string toup = dir.Write("t.dng", MakeDng("II", 2, 2, 46) + raw.substr(0, 8));
  EXPECT_TRUE(SameImage(BImage::ReadDngToup(toup),  // data up to the last byte
                        (cv::Mat_<uint16_t>(2, 2) << 0xff00, 0x1234, 0x0201, 0xff)));
  const std::string mm = dir.Write("mm.dng", Put(MakeDng("MM", 3, 1, 46), 46, 50) + raw);
  EXPECT_TRUE(SameImage(BImage::ReadRggbDng(mm), (cv::Mat_<uint16_t>(1, 3) << 258, 0xff00, 255)));
}

TEST(CameraFileReaders, HostileFilesAreRefusedAndSayWhy) {
  using Read = std::function<bool(const std::string&, cv::Mat&)>;
  const Read rggb = [](auto& file, auto&) { return !BImage::ReadRggbDng(file).empty(); };
  const Read toup = [](auto& file, auto&) { return !BImage::ReadDngToup(file).empty(); };
  const Read pgm = [](auto& file, cv::Mat& image) { return BImage::ReadPgm(file, image); };
  const auto raw = [](int rows, int cols) -> Read {
    return [=](auto& file, auto&) { return !BImage::ReadOrvoRaw(file, rows, cols).empty(); };
  };
  const std::string good = Put(MakeDng("II", 2, 2, 46), 46, 50) + "12345678";
  const std::string past_end = "BImage::ReadRggbDng -- Error pixel data past the end of file.";
  const std::string raw_size = "BImage::ReadOrvoRaw -- Check file size,";
  const std::string not_dng = "        Error :: file not dng image \n";
  TempDir dir;
  ASSERT_FALSE(BImage::ReadRggbDng(dir.Write("good", good)).empty());
  const struct {
    std::string name;  // names starting "missing" are not written
    std::string bytes;
    Read read;
    std::string printed;  // on standard output and error
    std::string error;    // the error line without " fullname = <file>"
  } cases[] = {{"raw-short", std::string(11, '\0'), raw(2, 3), "", raw_size},
               {"magic", Put(good, 2, 43, 2), rggb, not_dng, ""},
               {"pixels-short", good.substr(0, good.size() - 1), rggb, "", past_end},
               {"huge", Put(Put(good, 18, 0xffffffffu), 30, 0xffffffffu), rggb, "", past_end},
               {"strip-array-past-end", Put(good, 42, 56), rggb, "",
                "BImage::ReadRggbDng -- Error strip offsets past the end of file."},
               {"toup-past-end", MakeDng("II", 2, 2, 0xfffffff0u) + "12345678", toup, "",
                "BImage::ReadDngToup -- Error pixel data past the end of file."},
               {"short.pgm", "P5\n2 1\n65535\n\x01\x02\x03", pgm, "Size error\n", ""},
               {"huge.pgm", "P5\n2147483647 2147483647\n65535\n\x01\x02", pgm, "Size error\n", ""},
               {"missing.pgm", "", pgm,
                "Open file failure, fullname = " + dir.Path("missing.pgm") + "\n", ""}};
  for (const auto& item : cases) {
    const bool missing = item.name.rfind("missing", 0) == 0;
    const std::string file = missing ? dir.Path(item.name) : dir.Write(item.name, item.bytes);
    const cv::Mat original(1, 1, CV_16UC1, cv::Scalar(77));
    cv::Mat kept = original;
    LogCapture log;
    CaptureStdout();
    CaptureStderr();
    EXPECT_FALSE(item.read(file, kept)) << item.name;
    EXPECT_EQ(GetCapturedStdout() + GetCapturedStderr(), item.printed) << item.name;
    EXPECT_EQ(kept.data, original.data) << item.name;
    const Lines errors = {item.error + " fullname = " + file};
    EXPECT_EQ(log.Errors(), item.error.empty() ? Lines{} : errors) << item.name;
  }
}

}  // namespace
}  // namespace aimhue::testing
