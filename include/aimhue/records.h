// Descriptive records shared by LedMeter and Shot. Every field is 32 bits
// wide; the records are stored field by field in this order.
#ifndef AIMHUE_RECORDS_H_
#define AIMHUE_RECORDS_H_

#include <cstdint>

namespace aimhue {

// Measurement and capture types, a bit set: meters use the CIE_* values one
// at a time; shots use all of them.
enum MeasureType : uint32_t {
  CIE_X = 0x01,
  CIE_Y = 0x02,
  CIE_Z = 0x04,
  CIE_XYZ = 0x07,
  CAM_R = 0x10,
  CAM_G = 0x20,
  CAM_B = 0x40,
  CAM_RGB = 0x70,
};

// Where the measured region lies on the screen, in LEDs.
struct Partition {
  int32_t x;
  int32_t y;
  int32_t w;
  int32_t h;
  int32_t screen_w;
  int32_t screen_h;
};

// The measurement layer (grey level) of the displayed picture.
struct Layer {
  int32_t index;
  float linear_norms;
  int32_t value;
};

// LED panel (cabinet) geometry; the codes are the caller's and are carried
// unchanged.
struct LedPanel {
  int32_t type;
  int32_t layout;
  int32_t subpixel_type;
  int32_t w;  // panel width in LEDs
  int32_t h;  // panel height in LEDs
  float pixel_pitch;
};

// Exposure settings of a capture, in units chosen by the caller.
struct Capture {
  int32_t exposure;
  int32_t gain;
  int32_t aperture;
  int32_t microfocus;
  int32_t filter;
};

}  // namespace aimhue

#endif  // AIMHUE_RECORDS_H_
