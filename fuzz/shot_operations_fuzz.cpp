// Loads a shot from arbitrary bytes and runs every shot operation on it, and
// adds it to a measurement as a capture. Whatever the content, no operation
// may throw or crash, and a refused operation leaves its shot as it was.
#include <aimhue/led_meter.h>
#include <aimhue/shot.h>
#include <aimhue/status.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>

#include "fuzz/fuzz_support.h"

namespace {

using aimhue::Shot;
using aimhue::fuzz::Require;

// Pictures are written only for small images, so that encoding does not
// dominate the run.
constexpr size_t kMaxExportedPixels = 4096;
// The most LEDs a fuzzed capture may light before it is added to a meter.
constexpr int64_t kMaxCaptureLeds = 4096;

// The input is loaded afresh for every operation, so that each works on
// its own shot. A refusal must leave that shot's image and type as they were.
struct Input {
  const uint8_t* data;
  size_t size;

  void Run(const std::function<int(Shot&)>& operation) const {
    Shot shot;
    shot.FromBuffer(reinterpret_cast<const char*>(data), size);
    const uchar* image = shot.image.data;
    const uint32_t type = shot.type;
    if (operation(shot) != aimhue::kOk) Require(shot.image.data == image && shot.type == type);
  }
};

void AddAsCapture(const Shot& shot) {
  if (shot.pattern == nullptr) return;
  const int64_t width = shot.pattern->lighted_led_w;
  const int64_t height = shot.pattern->lighted_led_h;
  if (width < 1 || height < 1 || width * height > kMaxCaptureLeds) return;
  const cv::Size lit(static_cast<int>(width), static_cast<int>(height));
  aimhue::LedSet positions{cv::Mat::zeros(lit, CV_8UC1), cv::Mat::zeros(lit, CV_32FC2)};
  aimhue::LedSet values{cv::Mat::zeros(lit, CV_8UC1), cv::Mat::ones(lit, CV_32FC1)};
  aimhue::LedMeter meter;
  meter.Add(&shot, &positions, &values);
  meter.Add(&shot, &positions, &values);  // the same cell again
  meter.Add(&shot, nullptr, &values);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  aimhue::fuzz::SilenceLog();
  Shot shot;
  if (shot.FromBuffer(reinterpret_cast<const char*>(data), size) != aimhue::kOk) return 0;
  shot.Info();
  Shot::Check(0xffffffffu, &shot);
  Shot::Check(0xffffffffu, &shot, &shot);
  const Input input{data, size};
  for (const int angle : {0, 90, 180, 270, -90, -360, 45}) {
    input.Run([angle](Shot& s) { return s.Rotate(angle); });
  }
  input.Run([](Shot& s) {
    Shot r, g, b;
    return s.Split(&r, &g, &b);
  });
  const cv::Mat identity = cv::Mat::eye(3, 3, CV_32F);
  for (const uint32_t cie : {aimhue::CIE_X, aimhue::CIE_Y, aimhue::CIE_Z, aimhue::CIE_XYZ}) {
    input.Run([&](Shot& s) { return s.ConvertColorSpace(cie, identity); });
  }
  input.Run([&](Shot& s) { return s.RemoveBackground(shot); });
  Shot copy;
  shot.CopyTo(&copy);
  if (shot.image.total() <= kMaxExportedPixels) {
    const std::string picture = "/tmp/shot_operations_fuzz_" + std::to_string(getpid()) + ".bmp";
    input.Run([&](Shot& s) { return s.ExportColorImage(picture); });
    input.Run([&](Shot& s) { return s.ExportGrayImage(picture); });
    unlink(picture.c_str());
  }
  AddAsCapture(shot);
  return 0;
}
