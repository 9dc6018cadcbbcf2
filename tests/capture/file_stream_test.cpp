#include "capture/file_stream.h"

#include <aimhue/bio.h>
#include <aimhue/led_meter.h>
#include <aimhue/shot.h>
#include <aimhue/status.h>
#include <gtest/gtest.h>

#include <atomic>
#include <fstream>
#include <thread>

#include "capture/matrix_block.h"
#include "support/file_rules.h"
#include "support/log_capture.h"
#include "support/temp_dir.h"
#include "support/test_meters.h"

namespace aimhue::testing {
namespace {

// Planes larger than the reader's window and staging runs, so that loading
// takes the direct, windowed and interleaving paths.
LedMeter LargeMeter() { return MeterWithEveryRecord(211, 307); }

std::string BlockBytes(const cv::Mat& mat) {
  std::string bytes;
  ByteWriter out(bytes);
  WriteMatrixBlock(mat, out);
  return bytes;
}

// Files are written and read as streams; their bytes and what they load
// must be those of the caller's-buffer paths.
TEST(FileStream, FilesHoldAndLoadWhatBuffersHoldAndLoad) {
  TempDir dir;
  const LedMeter meter = LargeMeter();
  const std::string content = Content(meter);
  ASSERT_EQ(meter.Save(dir.Path("large.meter")), kOk);
  EXPECT_EQ(ReadFileBytes(dir.Path("large.meter")), content);
  LedMeter fromFile;
  LedMeter fromBuffer;
  ASSERT_EQ(fromFile.Load(dir.Path("large.meter")), kOk);
  ASSERT_EQ(fromBuffer.FromBuffer(content.data(), content.size()), kOk);
  EXPECT_EQ(Content(fromFile), content);
  EXPECT_EQ(Content(fromBuffer), content);

  for (const int type : {CV_16UC3, CV_32FC3, CV_8UC1}) {
    Shot shot;
    shot.image.create(190, 230, type);
    cv::randu(shot.image, 0, 70000);
    shot.SetColor(4);
    shot.SetDevice(Device{"camera", 320012, "lens", 7});
    shot.SetPattern(Pattern{1, 2, 2, 1, 0, -1, -1});
    ASSERT_EQ(shot.Save(dir.Path("large.shot")), kOk);
    EXPECT_EQ(ReadFileBytes(dir.Path("large.shot")), Content(shot)) << type;
    Shot loaded;
    ASSERT_EQ(loaded.Load(dir.Path("large.shot")), kOk);
    EXPECT_EQ(Content(loaded), Content(shot)) << type;
  }

  for (const int type : {CV_64FC2, CV_8UC4, CV_16SC3, CV_32FC1}) {
    cv::Mat mat(170, 260, type);
    cv::randu(mat, -100, 100);
    ASSERT_TRUE(BIO::SaveMatToBin(dir.Path("m.bin"), mat));
    EXPECT_EQ(ReadFileBytes(dir.Path("m.bin")), "L" + BlockBytes(mat)) << type;
    cv::Mat loaded;
    ASSERT_TRUE(BIO::LoadBinToMat(dir.Path("m.bin"), loaded));
    EXPECT_EQ(BlockBytes(loaded), BlockBytes(mat)) << type;
  }
}

// A meter file rewritten, cut and grown by another thread while it is
// loaded again and again: every load either gives the whole meter or is
// refused as damaged data with the meter unchanged; nothing crashes or
// reads past the data (the sanitizer builds check that).
TEST(FileStream, MeterFileChangingWhileLoadedIsWholeOrRefused) {
  TempDir dir;
  const LedMeter meter = LargeMeter();
  const std::string content = Content(meter);
  const std::string name = dir.Write("moving.meter", content);
  std::atomic<bool> done{false};
  std::thread writer([&] {
    for (size_t round = 0; !done; ++round) {
      const size_t cut = round * 7919 % (content.size() + 1);
      std::ofstream file(name, std::ios::binary | std::ios::trunc);
      file.write(content.data(), static_cast<std::streamsize>(cut));
      file.flush();
      if (round % 3 == 0) file.write(content.data() + cut, content.size() - cut) << "tail";
    }
  });
  LogCapture log;
  int whole = 0;
  for (int attempt = 0; attempt < 200; ++attempt) {
    LedMeter loaded;
    loaded.color = 77;
    const int status = loaded.Load(name);
    if (status == kOk) {
      EXPECT_EQ(Content(loaded), content);
      ++whole;
    } else {
      EXPECT_TRUE(status == kBadVersion || status == kBadByteOrderMark) << status;
      EXPECT_EQ(loaded.color, 77u);
      EXPECT_TRUE(loaded.chroma.empty());
    }
  }
  done = true;
  writer.join();
  for (const std::string& line : log.Errors()) {
    EXPECT_TRUE(line == "LedMeter::Load -- Error data in file." ||
                line == "LedMeter::Load -- Error version in file." ||
                line == "LedMeter::Load -- Error file endianness.")
        << line;
  }
  RecordProperty("whole_loads", whole);
}

}  // namespace
}  // namespace aimhue::testing
