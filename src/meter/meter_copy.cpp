// LedMeter::CopyTo: the deep copy of a meter, records through the
// destination's setters and planes cloned.
#include <aimhue/led_meter.h>
#include <aimhue/plume_log.h>
#include <aimhue/status.h>

namespace aimhue {

int LedMeter::CopyTo(LedMeter& dst) const {
  PlumeLogInfo("LedMeter::CopyTo");
  if (&dst == this) return kOk;
  dst.partition.reset();
  dst.led_panel.reset();
  dst.layer.reset();
  dst.capture.reset();
  if (partition != nullptr) dst.SetPartition(*partition);
  if (led_panel != nullptr) dst.SetLedPanel(*led_panel);
  if (layer != nullptr) dst.SetLayer(*layer);
  if (capture != nullptr) dst.SetCapture(*capture);
  dst.type = type;
  dst.color = color;
  dst.state = state.clone();
  dst.pos = pos.clone();
  dst.chroma = chroma.clone();
  return kOk;
}

}  // namespace aimhue
