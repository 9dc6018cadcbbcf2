// aimhue: colour calibration targets for LED display screens.
//
// The umbrella header: it declares the whole public surface of the library.
#ifndef AIMHUE_AIMHUE_H_
#define AIMHUE_AIMHUE_H_

#include <aimhue/api.h>
#include <aimhue/bimage.h>
#include <aimhue/bio.h>
#include <aimhue/colorimetry.h>
#include <aimhue/correction.h>
#include <aimhue/dead_leds.h>
#include <aimhue/export.h>
#include <aimhue/led_meter.h>
#include <aimhue/led_set.h>
#include <aimhue/picture_files.h>
#include <aimhue/plume_log.h>
#include <aimhue/records.h>
#include <aimhue/screen.h>
#include <aimhue/shot.h>
#include <aimhue/status.h>
#include <aimhue/target.h>
#include <aimhue/version.h>

#endif  // AIMHUE_AIMHUE_H_
