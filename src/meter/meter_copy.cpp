// LedMeter::CopyTo: the deep copy of a meter, records and planes cloned.
#include <aimhue/led_meter.h>
#include <aimhue/plume_log.h>
#include <aimhue/status.h>

#include <utility>

#include "common/exception_guard.h"

namespace aimhue {

int LedMeter::CopyTo(LedMeter& dst) const {
  PlumeLogInfo("LedMeter::CopyTo");
  if (&dst == this) return kOk;
  return GuardExceptions("LedMeter::CopyTo", [&]() -> int {
    // The copy is made aside and moved in at the end, so that a failure
    // leaves dst as it was.
    LedMeter copy;
    if (partition != nullptr) copy.SetPartition(*partition);
    if (led_panel != nullptr) copy.SetLedPanel(*led_panel);
    if (layer != nullptr) copy.SetLayer(*layer);
    if (capture != nullptr) copy.SetCapture(*capture);
    copy.state = state.clone();
    copy.pos = pos.clone();
    copy.chroma = chroma.clone();
    dst.partition = std::move(copy.partition);
    dst.led_panel = std::move(copy.led_panel);
    dst.layer = std::move(copy.layer);
    dst.capture = std::move(copy.capture);
    dst.type = type;
    dst.color = color;
    dst.state = std::move(copy.state);
    dst.pos = std::move(copy.pos);
    dst.chroma = std::move(copy.chroma);
    return kOk;
  });
}

}  // namespace aimhue
