#include <aimhue/shot.h>
#include <aimhue/status.h>
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "support/log_capture.h"
#include "support/temp_dir.h"

namespace aimhue {
namespace {

using ::aimhue::testing::LogCapture;
using ::aimhue::testing::TempDir;
using Lines = std::vector<std::string>;

std::string Content(const Shot& shot) {
  std::string buffer(4096, '\0');
  size_t size = buffer.size();
  EXPECT_EQ(shot.ToBuffer(buffer.data(), &size), kOk);
  buffer.resize(size);
  return buffer;
}

std::string Words(std::initializer_list<uint32_t> values) {
  std::string bytes;
  for (uint32_t value : values) {
    for (int i = 0; i < 4; ++i) bytes.push_back(static_cast<char>(value >> (8 * i) & 0xff));
  }
  return bytes;
}

Shot FullShot() {
  Shot shot;
  shot.SetImageSingle((cv::Mat_<uint16_t>(2, 3) << 1, 2, 3, 4, 5, 65535), CAM_G);
  shot.SetPartition(Partition{1, 2, 3, 4, 10, 10});
  shot.SetLedPanel(LedPanel{1, 4, 0, 16, 8, 2.5f});
  shot.SetLayer(Layer{3, 0.5f, 128});
  shot.SetPattern(Pattern{1, 2, 2, 1, 0, -1, -1});
  shot.SetColor(2);
  Device device{};
  std::strcpy(device.id, "camera");
  std::strcpy(device.lens_id, "lens");
  device.cam_type = 320012;
  device.lens_type = 7;
  shot.SetDevice(device);
  shot.SetCapture(Capture{100, 2, 8, 0, 1});
  return shot;
}

TEST(ShotStream, LayoutOfSmallShots) {
  Shot empty;
  empty.type = CAM_R;
  EXPECT_EQ(Content(empty), "L" + Words({1, 0x10, 0, 0, 0, 0, 0xffffffffu}));

  Shot grey;
  grey.SetImageSingle((cv::Mat_<uint16_t>(2, 3) << 1, 2, 3, 4, 5, 6), CIE_Y);
  grey.SetColor(4);
  const std::string content = Content(grey);
  ASSERT_EQ(content.size(), 49u);
  EXPECT_EQ(content.substr(0, 25), "L" + Words({1, 2, 2, 3, 2, 1}));
  EXPECT_EQ(content.substr(37), Words({64, 4, 0xffffffffu}));
  size_t size = 0;
  EXPECT_EQ(grey.GetBufferSize(&size), kOk);
  EXPECT_EQ(size, 49u);
}

TEST(ShotStream, FileRoundTripKeepsEveryRecord) {
  TempDir dir;
  const Shot shot = FullShot();
  ASSERT_EQ(shot.Save(dir.Path("a.shot")), kOk);
  Shot loaded;
  ASSERT_EQ(loaded.Load(dir.Path("a.shot")), kOk);
  EXPECT_EQ(Content(loaded), Content(shot));
  EXPECT_EQ(std::memcmp(loaded.device.get(), shot.device.get(), sizeof(Device)), 0);
  EXPECT_EQ(loaded.layer->linear_norms, 0.5f);
  EXPECT_EQ(loaded.pattern->lighted_led_w, 1);
  EXPECT_EQ(cv::norm(loaded.image, shot.image, cv::NORM_INF), 0.0);
}

TEST(ShotStream, FloatImagesComeBackAsRoundedSixteenBit) {
  Shot shot;
  shot.type = CIE_XYZ;
  shot.image = cv::Mat(1, 2, CV_32FC3, cv::Scalar(-3.7, 2.5, 70000.0));
  const std::string content = Content(shot);
  Shot loaded;
  ASSERT_EQ(loaded.FromBuffer(content.data(), content.size()), kOk);
  ASSERT_EQ(loaded.image.type(), CV_16UC3);
  EXPECT_EQ(loaded.image.at<cv::Vec3w>(0, 1), cv::Vec3w(0, 2, 65535));
  EXPECT_EQ(loaded.type, static_cast<uint32_t>(CIE_XYZ));
}

TEST(ShotStream, LoadingOverwritesOnlyWhatTheStreamHolds) {
  Shot source;
  source.SetImageSingle(cv::Mat(1, 1, CV_16UC1, cv::Scalar(5)), CAM_B);
  source.SetColor(1);
  // An unknown tag carries no payload and is passed over.
  std::string content = Content(source);
  content.insert(content.size() - 4, Words({77}));
  Shot target = FullShot();
  ASSERT_EQ(target.FromBuffer(content.data(), content.size()), kOk);
  EXPECT_EQ(*target.color, 1);
  ASSERT_NE(target.layer, nullptr);
  EXPECT_EQ(target.layer->value, 128);
  EXPECT_EQ(target.type, static_cast<uint32_t>(CAM_B));
}

TEST(ShotStream, RefusedStreamsLeaveTheShot) {
  LogCapture log;
  const std::string content = Content(FullShot());
  Shot shot = FullShot();
  std::string bad_mark = content;
  bad_mark[0] = 'B';
  bad_mark.resize(1);  // refused before any version is looked for
  EXPECT_EQ(shot.FromBuffer(bad_mark.data(), bad_mark.size()), kBadByteOrderMark);
  std::string version = content;
  version[1] = 2;
  EXPECT_EQ(shot.FromBuffer(version.data(), version.size()), kBadVersion);
  const std::string no_end = content.substr(0, content.size() - 4);
  EXPECT_EQ(shot.FromBuffer(no_end.data(), no_end.size()), kBadVersion);
  const std::string short_image = content.substr(0, 30);
  EXPECT_EQ(shot.FromBuffer(short_image.data(), short_image.size()), kBadVersion);
  EXPECT_EQ(shot.FromBuffer(nullptr, 5), kNullInput);
  EXPECT_EQ(log.Errors(), (Lines{"Shot::FromBuffer -- Error file endianness.",
                                 "Shot::FromBuffer -- Error version in file.",
                                 "Shot::FromBuffer -- Error data in file.",
                                 "Shot::FromBuffer -- Error data in file."}));
  EXPECT_EQ(Content(shot), content);
}

TEST(ShotStream, CallersBufferRules) {
  LogCapture log;
  const Shot shot = FullShot();
  const std::string content = Content(shot);
  std::string buffer(content.size() - 1, 'x');
  size_t size = buffer.size();
  EXPECT_EQ(shot.ToBuffer(buffer.data(), &size), kBufferTooSmall);
  EXPECT_EQ(size, content.size() - 1);
  EXPECT_EQ(buffer, std::string(content.size() - 1, 'x'));
  EXPECT_EQ(shot.ToBuffer(nullptr, &size), kNullInput);
  EXPECT_EQ(shot.ToBuffer(buffer.data(), nullptr), kNullInput);
  EXPECT_EQ(Shot().GetBufferSize(&size), kEmptyInput);
  EXPECT_TRUE(log.Errors().empty());
}

TEST(ShotStream, FileNamesAndOpenFailures) {
  LogCapture log;
  TempDir dir;
  Shot shot = FullShot();
  EXPECT_EQ(shot.Save(dir.Path("a.SHOT")), kBadExtension);
  EXPECT_EQ(shot.Save(".shot"), kBadExtension);
  EXPECT_EQ(shot.Load(dir.Path("a.shot.bak")), kBadExtension);
  EXPECT_EQ(shot.Save(dir.Path("missing/a.shot")), kOpenWriteFailed);
  EXPECT_EQ(shot.Load(dir.Path("missing.shot")), kOpenReadFailed);
  EXPECT_EQ(log.Errors(),
            (Lines{"Shot::Save--Error :: ext filename mismatch.",
                   "Shot::Save--Error :: ext filename mismatch.",
                   "Shot::Load--Error :: ext filename mismatch.",
                   "Shot::Save -- Failed to Open file. fullname = " + dir.Path("missing/a.shot"),
                   "Shot::Load -- Failed to Open file.fullname = " + dir.Path("missing.shot")}));
}

}  // namespace
}  // namespace aimhue
