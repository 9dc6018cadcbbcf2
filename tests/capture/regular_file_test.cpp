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

#include "engine/aimhue.h"
#include "support/log_capture.h"
#include "support/temp_dir.h"

namespace aimhue {
namespace {

using ::aimhue::testing::LogCapture;
using ::aimhue::testing::TempDir;

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

// A reader opened on `fullname`: true when it refused the file as one that
// cannot be opened, with its usual status and line.
struct Reader {
  const char* extension;
  std::function<bool(const std::string& fullname)> refuses;
};

bool OneError(const LogCapture& log, const std::string& line) {
  return log.Errors() == std::vector<std::string>{line};
}

std::vector<Reader> EveryReader() {
  const auto open_failure = [](const char* who, const std::string& fullname) {
    return std::string(who) + " -- Failed to Open file. fullname = " + fullname;
  };
  return {
      {".bin",
       [=](const std::string& name) {
         LogCapture log;
         cv::Mat mat;
         return !BIO::LoadBinToMat(name, mat) && OneError(log, open_failure("BIO::LoadBinToMat", name));
       }},
      {".txt",
       [=](const std::string& name) {
         LogCapture log;
         cv::Mat mat;
         const int size[2] = {2, 2};
         return !BIO::LoadTxtToMat(name, size, mat) && mat.empty() &&
                OneError(log, open_failure("BIO::LoadTxtToMat", name));
       }},
      {".list",
       [=](const std::string& name) {
         LogCapture log;
         std::vector<std::string> names;
         return !BIO::ReadFullNameListTxt(name, names) && names.empty() &&
                OneError(log, open_failure("BIO::ReadFullNameListTxt", name));
       }},
      {".raw",
       [](const std::string& name) {
         LogCapture log;
         return BImage::ReadOrvoRaw(name, 2, 2).empty() &&
                OneError(log, "BImage::ReadOrvoRaw -- Open file failure, fullname = " + name);
       }},
      {".dng",
       [=](const std::string& name) {
         LogCapture log;
         return BImage::ReadRggbDng(name).empty() && BImage::ReadDngToup(name).empty() &&
                log.Errors() == std::vector<std::string>{open_failure("BImage::ReadRggbDng", name),
                                                         open_failure("BImage::ReadDngToup", name)};
       }},
      {".pgm",
       [](const std::string& name) {
         cv::Mat image;
         return !BImage::ReadPgm(name, image) && image.empty();
       }},
      {".shot",
       [](const std::string& name) {
         LogCapture log;
         Shot shot;
         return shot.Load(name) == kOpenReadFailed &&
                OneError(log, "Shot::Load -- Failed to Open file.fullname = " + name);
       }},
      {".meter",
       [=](const std::string& name) {
         LogCapture log;
         LedMeter meter;
         return meter.Load(name) == kOpenReadFailed &&
                OneError(log, open_failure("LedMeter::Load", name));
       }},
      {".aimhue",
       [=](const std::string& name) {
         LogCapture log;
         Aimhue engine;
         return engine.Load(name) == kOpenReadFailed &&
                OneError(log, open_failure("Aimhue::Load", name));
       }},
  };
}

TEST(RegularFile, EveryReaderRefusesFifosDevicesAndDirectoriesAtOnce) {
  TempDir dir;
  for (const Reader& reader : EveryReader()) {
    const std::string fifo = dir.Path(std::string("fifo") + reader.extension);
    const std::string zero = dir.Path(std::string("zero") + reader.extension);
    const std::string folder = dir.Path(std::string("folder") + reader.extension);
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
    std::filesystem::create_symlink("/dev/zero", zero);
    std::filesystem::create_directory(folder);
    for (const std::string& name : {fifo, zero, folder}) {
      EXPECT_TRUE(HoldsWithinTwoSeconds([&] { return reader.refuses(name); })) << name;
    }
  }
}

TEST(RegularFile, ReadsNoMoreThanTheSizeItHadWhenOpened) {
  TempDir dir;
  const std::string name = dir.Write("growing", "12345");
  RegularFile file;
  ASSERT_TRUE(file.Open(name));
  std::ofstream(name, std::ios::app) << "6789";
  char bytes[16] = {};
  EXPECT_EQ(file.size(), 5u);
  EXPECT_EQ(file.ReadUpTo(bytes, sizeof bytes), 5);
  EXPECT_EQ(std::string(bytes), "12345");
  EXPECT_EQ(file.ReadUpTo(bytes, sizeof bytes), 0);
}

}  // namespace
}  // namespace aimhue
