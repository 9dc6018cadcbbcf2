// LedMeter: construction, clearing and the four setters.
#include <aimhue/led_meter.h>

#include <aimhue/plume_log.h>
#include <aimhue/status.h>

namespace aimhue {
namespace {

// Copies `value` into `*slot`, creating the record on first use.
template <typename Record>
void Store(std::unique_ptr<Record>& slot, const Record& value) {
  if (slot == nullptr) {
    slot = std::make_unique<Record>(value);
  } else {
    *slot = value;
  }
}

}  // namespace

LedMeter::LedMeter() { Clear(); }

LedMeter::~LedMeter() { Clear(); }

LedMeter::LedMeter(LedMeter&&) noexcept = default;
LedMeter& LedMeter::operator=(LedMeter&&) noexcept = default;

void LedMeter::Clear() {
  partition.reset();
  layer.reset();
  led_panel.reset();
  capture.reset();
  state = cv::Mat(0, 0, CV_8UC1);
  pos = cv::Mat(0, 0, CV_32FC2);
  chroma = cv::Mat(0, 0, CV_32FC1);
  add_map = cv::Mat(0, 0, CV_8UC1);
}

int LedMeter::SetPartition(const Partition& value) {
  PlumeLogInfo("LedMeter::SetPartition");
  const bool valid = value.screen_w > 0 && value.screen_h > 0 && value.w > 0 && value.h > 0 &&
                     value.x >= 0 && value.x < value.screen_w && value.y >= 0 &&
                     value.y < value.screen_h &&
                     static_cast<int64_t>(value.x) + value.w - 1 < value.screen_w &&
                     static_cast<int64_t>(value.y) + value.h - 1 < value.screen_h;
  if (!valid) {
    PlumeLogError("LedMeter::SetPartition--Error :: invalid screen wh or partition xywh");
    return kBadPartition;
  }
  Store(partition, value);
  return kOk;
}

int LedMeter::SetLayer(const Layer& value) {
  PlumeLogInfo("LedMeter::SetLayer");
  Store(layer, value);
  return kOk;
}

int LedMeter::SetLedPanel(const LedPanel& value) {
  PlumeLogInfo("LedMeter::SetLedPanel");
  if (value.w < 1 || value.h < 1) {
    PlumeLogError("LedMeter::SetLedPanel--Error :: invalid panel_wh");
    return kBadLedPanel;
  }
  Store(led_panel, value);
  return kOk;
}

int LedMeter::SetCapture(const Capture& value) {
  PlumeLogInfo("LedMeter::SetCapture");
  Store(capture, value);
  return kOk;
}

}  // namespace aimhue
