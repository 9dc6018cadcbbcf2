#include <aimhue/shot.h>

#include <cstring>

#include "support/file_rules.h"
#include "support/temp_dir.h"
#include "support/test_meters.h"

namespace aimhue::testing {
namespace {

Shot FullShot() {
  Shot shot;
  shot.SetImageSingle((cv::Mat_<uint16_t>(2, 3) << 1, 2, 3, 4, 5, 65535), CAM_G);
  shot.SetPartition(Partition{1, 2, 3, 4, 10, 10});
  shot.SetLedPanel(LedPanel{1, 4, 0, 16, 8, 2.5f});
  shot.SetLayer(Layer{3, 0.5f, 128});
  shot.SetPattern(Pattern{1, 2, 2, 1, 0, -1, -1});
  shot.SetColor(2);
  shot.SetDevice(Device{"camera", 320012, "lens", 7});
  shot.SetCapture(Capture{100, 2, 8, 0, 1});
  return shot;
}

TEST(ShotStream, LayoutsAndRoundTrips) {
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

  // Every record comes back; floats come back as rounded 16-bit values.
  const std::string full = Content(FullShot());
  Shot loaded;
  ASSERT_EQ(loaded.FromBuffer(full.data(), full.size()), kOk);
  EXPECT_EQ(Content(loaded), full);
  EXPECT_EQ(std::memcmp(loaded.device.get(), FullShot().device.get(), sizeof(Device)), 0);
  Shot xyz;
  xyz.type = CIE_XYZ;
  xyz.image = cv::Mat(1, 2, CV_32FC3, cv::Scalar(-3.7, 2.5, 70000.0));
  const std::string floats = Content(xyz);
  ASSERT_EQ(loaded.FromBuffer(floats.data(), floats.size()), kOk);
  ASSERT_EQ(loaded.image.type(), CV_16UC3);
  EXPECT_EQ(loaded.image.at<cv::Vec3w>(0, 1), cv::Vec3w(0, 2, 65535));
  EXPECT_EQ(loaded.type, static_cast<uint32_t>(CIE_XYZ));

  // Loading overwrites only what the stream holds; an unknown tag has no payload.
  Shot source;
  source.SetImageSingle(cv::Mat(1, 1, CV_16UC1, cv::Scalar(5)), CAM_B);
  source.SetColor(1);
  std::string partial = Content(source);
  partial.insert(partial.size() - 4, Words({77}));
  Shot target = FullShot();
  ASSERT_EQ(target.FromBuffer(partial.data(), partial.size()), kOk);
  EXPECT_TRUE(*target.color == 1 && target.type == CAM_B && target.layer &&
              target.layer->value == 128);
}

TEST(ShotStream, RefusedStreamsAndFilesLeaveTheShot) {
  const std::string content = Content(FullShot());
  Shot shot = FullShot();
  ExpectRefusals<Shot>(shot, {{[](Shot& s) { return s.FromBuffer(nullptr, 5); }, kNullInput, {}}});
  ExpectDamagedContentRules(shot, content, "Shot", ".shot", [](const Shot& s) { return Bytes(s); });
  // The load line of this format has no space before "fullname".
  ExpectFileNameAndOpenRules(FullShot(), shot, "Shot", ".shot", "");

  // The caller's-buffer rules, without a line for the caller's faults.
  LogCapture log;
  ExpectCallerBufferRules(FullShot(), content.size());
  size_t size = 0;
  EXPECT_EQ(Shot().GetBufferSize(&size), kEmptyInput);
  EXPECT_EQ(log.Errors(), Lines{});
}

}  // namespace
}  // namespace aimhue::testing
