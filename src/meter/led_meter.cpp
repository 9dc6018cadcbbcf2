// LedMeter: construction, clearing and the four setters.
#include <aimhue/led_meter.h>

#include <aimhue/plume_log.h>
#include <aimhue/status.h>

#include "common/exception_guard.h"
#include "common/record_rules.h"

namespace aimhue {

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
  return GuardExceptions("LedMeter::SetPartition", [&]() -> int {
    if (!PartitionFitsScreen(value)) {
      PlumeLogError("LedMeter::SetPartition--Error :: invalid screen wh or partition xywh");
      return kBadPartition;
    }
    StoreRecord(partition, value);
    return kOk;
  });
}

int LedMeter::SetLayer(const Layer& value) {
  PlumeLogInfo("LedMeter::SetLayer");
  return GuardExceptions("LedMeter::SetLayer", [&]() -> int {
    StoreRecord(layer, value);
    return kOk;
  });
}

int LedMeter::SetLedPanel(const LedPanel& value) {
  PlumeLogInfo("LedMeter::SetLedPanel");
  return GuardExceptions("LedMeter::SetLedPanel", [&]() -> int {
    if (value.w < 1 || value.h < 1) {
      PlumeLogError("LedMeter::SetLedPanel--Error :: invalid panel_wh");
      return kBadLedPanel;
    }
    StoreRecord(led_panel, value);
    return kOk;
  });
}

int LedMeter::SetCapture(const Capture& value) {
  PlumeLogInfo("LedMeter::SetCapture");
  return GuardExceptions("LedMeter::SetCapture", [&]() -> int {
    StoreRecord(capture, value);
    return kOk;
  });
}

}  // namespace aimhue
