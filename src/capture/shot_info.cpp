// Shot::Info: the diagnostic dump of a shot at debug level.
#include <aimhue/plume_log.h>
#include <aimhue/shot.h>

#include "common/exception_guard.h"

namespace aimhue {

void Shot::Info() const {
  PlumeLogInfo("Shot::Info");
  GuardExceptionsQuietly("Shot::Info", [&] {
    if (part != nullptr) {
      PlumeLogDebug("    part.xywh              = [%d %d %d %d]", part->x, part->y, part->w,
                    part->h);
      PlumeLogDebug("    part.screen_wh         = [%d %d]", part->screen_w, part->screen_h);
    }
    if (panel != nullptr) {
      PlumeLogDebug("    panel.wh               = [%d %d]", panel->w, panel->h);
      PlumeLogDebug("    panel.type             = %d", panel->type);
      PlumeLogDebug("    panel.layout           = %d", panel->layout);
      PlumeLogDebug("    panel.subpixel_type    = %d", panel->subpixel_type);
      PlumeLogDebug("    panel.pixel_pitch      = %f", static_cast<double>(panel->pixel_pitch));
    }
    if (layer != nullptr) {
      PlumeLogDebug("    layer.index            = %d", layer->index);
      PlumeLogDebug("    layer.value            = %d", layer->value);
      PlumeLogDebug("    layer.linear_norms     = %f", static_cast<double>(layer->linear_norms));
    }
    if (pattern != nullptr) {
      PlumeLogDebug("    pattern.type           = %d", pattern->type);
      PlumeLogDebug("    pattern.interval       = [%d %d]", pattern->interval_x,
                    pattern->interval_y);
      PlumeLogDebug("    pattern.loc            = [%d %d]", pattern->loc_x, pattern->loc_y);
      PlumeLogDebug("    pattern.lighted_led_wh = [%d %d]", pattern->lighted_led_w,
                    pattern->lighted_led_h);
    }
    if (color != nullptr) PlumeLogDebug("    color                  = %d", *color);
    if (device != nullptr) {
      // The texts are NUL-terminated by contract; the precision bounds the
      // print to the 64 bytes all the same.
      PlumeLogDebug("    device.id              = %.64s", device->id);
      PlumeLogDebug("    device.cam_type        = %d", device->cam_type);
      PlumeLogDebug("    device.lens_id         = %.64s", device->lens_id);
      PlumeLogDebug("    device.lens_type       = %d", device->lens_type);
    }
    if (capture != nullptr) {
      PlumeLogDebug("    capture.exposure       = %d", capture->exposure);
      PlumeLogDebug("    capture.gain           = %d", capture->gain);
      PlumeLogDebug("    capture.aperture       = %d", capture->aperture);
      PlumeLogDebug("    capture.microfocus     = %d", capture->microfocus);
      PlumeLogDebug("    capture.filter         = %d", capture->filter);
    }
    PlumeLogDebug("    type                   = 0x%x", type);
    PlumeLogDebug("    image.type(cv)         = %d", image.type());
    PlumeLogDebug("    image.depth(cv)        = %d", image.depth());
    PlumeLogDebug("    image.channels(cv)     = %d", image.channels());
    PlumeLogDebug("    image.wh(cv)           = [%d %d]", image.cols, image.rows);
  });
}

}  // namespace aimhue
