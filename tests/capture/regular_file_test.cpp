#include "capture/regular_file.h"

#include <aimhue/bimage.h>
#include <aimhue/bio.h>
#include <aimhue/led_meter.h>
#include <aimhue/shot.h>
#include <aimhue/status.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <functional>

#include "support/log_capture.h"
#include "support/temp_dir.h"

namespace aimhue::testing {
namespace {

// Runs `check` in a child process that is killed after two seconds, so that a
// reader that blocks on a FIFO or reads a device without end fails the test
// instead of hanging the suite or filling the memory. True when the child
// finished in time and `check` held.
bool HoldsWithinTwoSeconds(const std::function<bool()>& check) {
  const pid_t child = fork();
  if (child == 0) {
    alarm(2);
    _exit(check() ? 0 : 1);
  }
  int status = 0;
  return child > 0 && waitpid(child, &status, 0) == child && WIFEXITED(status) &&
         WEXITSTATUS(status) == 0;
}

// A reader of files named "*<extension>": `fails` runs it and tells whether
// it failed; its one error line is `line` followed by the name (no line at
// all when `line` is empty).
struct Reader {
  const char* extension;
  std::string line;
  std::function<bool(const std::string&)> fails;
};

const std::string kOpenFailure = " -- Failed to Open file. fullname = ";

const Reader kReaders[] = {
    {".bin", "BIO::LoadBinToMat" + kOpenFailure,
     [](const std::string& name) {
       cv::Mat mat;
       return !BIO::LoadBinToMat(name, mat);
     }},
    {".txt", "BIO::LoadTxtToMat" + kOpenFailure,
     [](const std::string& name) {
       cv::Mat mat;
       const int size[2] = {2, 2};
       return !BIO::LoadTxtToMat(name, size, mat) && mat.empty();
     }},
    {".list", "BIO::ReadFullNameListTxt" + kOpenFailure,
     [](const std::string& name) {
       std::vector<std::string> names;
       return !BIO::ReadFullNameListTxt(name, names) && names.empty();
     }},
    {".raw", "BImage::ReadOrvoRaw -- Open file failure, fullname = ",
     [](const std::string& name) { return BImage::ReadOrvoRaw(name, 2, 2).empty(); }},
    {".dng", "BImage::ReadRggbDng" + kOpenFailure,
     [](const std::string& name) { return BImage::ReadRggbDng(name).empty(); }},
    {".dng", "BImage::ReadDngToup" + kOpenFailure,
     [](const std::string& name) { return BImage::ReadDngToup(name).empty(); }},
    {".pgm", "",  // this reader writes its message on standard output
     [](const std::string& name) {
       cv::Mat image;
       return !BImage::ReadPgm(name, image) && image.empty();
     }},
    {".shot", "Shot::Load -- Failed to Open file.fullname = ",
     [](const std::string& name) { return Shot().Load(name) == kOpenReadFailed; }},
    // (the .aimhue and .corr loads share the .meter load's file reader)
    {".meter", "LedMeter::Load" + kOpenFailure,
     [](const std::string& name) { return LedMeter().Load(name) == kOpenReadFailed; }},
};

// A save to a FIFO that no process reads is refused at once instead of
// waiting for a reader forever.
TEST(RegularFile, SavingToAnUnreadFifoIsRefusedAtOnce) {
  TempDir dir;
  const std::string fifo = dir.Path("unread.meter");
  ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
  EXPECT_TRUE(HoldsWithinTwoSeconds([&fifo] {
    LogCapture log;
    LedMeter meter;
    meter.chroma = cv::Mat::ones(2, 2, CV_32FC1);
    return meter.Save(fifo) == kOpenWriteFailed;
  }));
}

TEST(RegularFile, EveryReaderRefusesFifosDevicesAndDirectoriesAtOnce) {
  TempDir dir;
  for (const Reader& reader : kReaders) {
    const std::string fifo = dir.Path(std::string("fifo") + reader.extension);
    const std::string zero = dir.Path(std::string("zero") + reader.extension);
    const std::string folder = dir.Path(std::string("folder") + reader.extension);
    if (!std::filesystem::exists(folder)) {
      ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
      std::filesystem::create_symlink("/dev/zero", zero);
      std::filesystem::create_directory(folder);
    }
    for (const std::string& name : {fifo, zero, folder}) {
      const auto refused = [&] {
        LogCapture log;
        const std::vector<std::string> line{reader.line + name};
        return reader.fails(name) &&
               log.Errors() == (reader.line.empty() ? std::vector<std::string>{} : line);
      };
      EXPECT_TRUE(HoldsWithinTwoSeconds(refused)) << name;
    }
  }
}

}  // namespace
}  // namespace aimhue::testing
