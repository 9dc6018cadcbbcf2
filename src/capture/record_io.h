// How the descriptive records are stored inside the library's formats
// (".meter", ".shot"): a 32-bit tag, then every field in the record's field
// order, 4 little-endian bytes each (the device's two texts 64 bytes each).
// The tags are shared by the formats.
#ifndef AIMHUE_SRC_CAPTURE_RECORD_IO_H_
#define AIMHUE_SRC_CAPTURE_RECORD_IO_H_

#include <aimhue/records.h>
#include <aimhue/shot.h>

#include <cstdint>
#include <memory>
#include <optional>

#include "capture/byte_stream.h"
#include "capture/file_format.h"

namespace aimhue {

enum RecordTag : uint32_t {
  kTagDevice = 1,
  kTagCapture = 2,
  kTagPartition = 4,
  kTagLedPanel = 8,
  kTagLayer = 16,
  kTagPattern = 32,
  kTagColor = 64,
};

constexpr uint64_t kTagBytes = 4;
constexpr uint64_t kPartitionBytes = 24;
constexpr uint64_t kLedPanelBytes = 24;
constexpr uint64_t kLayerBytes = 12;
constexpr uint64_t kCaptureBytes = 20;

inline void WriteRecord(ByteWriter& out, const Partition& p) {
  out.WriteU32(kTagPartition);
  for (int32_t field : {p.x, p.y, p.w, p.h, p.screen_w, p.screen_h}) out.WriteI32(field);
}
inline void WriteRecord(ByteWriter& out, const LedPanel& p) {
  out.WriteU32(kTagLedPanel);
  for (int32_t field : {p.type, p.layout, p.subpixel_type, p.w, p.h}) out.WriteI32(field);
  out.WriteF32(p.pixel_pitch);
}
inline void WriteRecord(ByteWriter& out, const Layer& p) {
  out.WriteU32(kTagLayer);
  out.WriteI32(p.index);
  out.WriteF32(p.linear_norms);
  out.WriteI32(p.value);
}
inline void WriteRecord(ByteWriter& out, const Capture& p) {
  out.WriteU32(kTagCapture);
  for (int32_t field : {p.exposure, p.gain, p.aperture, p.microfocus, p.filter}) {
    out.WriteI32(field);
  }
}

inline void WriteRecord(ByteWriter& out, const Device& p) {
  out.WriteU32(kTagDevice);
  out.WriteBytes(p.id, sizeof p.id);
  out.WriteI32(p.cam_type);
  out.WriteBytes(p.lens_id, sizeof p.lens_id);
  out.WriteI32(p.lens_type);
}
inline void WriteRecord(ByteWriter& out, const Pattern& p) {
  out.WriteU32(kTagPattern);
  for (int32_t field : {p.type, p.interval_x, p.interval_y, p.loc_x, p.loc_y, p.lighted_led_w,
                        p.lighted_led_h}) {
    out.WriteI32(field);
  }
}
// A shot's colour code is a record of one field.
inline void WriteRecord(ByteWriter& out, const int32_t& color) {
  out.WriteU32(kTagColor);
  out.WriteI32(color);
}

// Writes the record (tag and fields) only when it is present.
template <typename Record>
void WriteRecordIfPresent(ByteWriter& out, const std::unique_ptr<Record>& record) {
  if (record != nullptr) WriteRecord(out, *record);
}

// Payload readers (the tag has been read); all or nothing per field.
inline bool ReadRecord(ByteReader& in, Partition& p) {
  return in.ReadI32(p.x) && in.ReadI32(p.y) && in.ReadI32(p.w) && in.ReadI32(p.h) &&
         in.ReadI32(p.screen_w) && in.ReadI32(p.screen_h);
}
inline bool ReadRecord(ByteReader& in, LedPanel& p) {
  return in.ReadI32(p.type) && in.ReadI32(p.layout) && in.ReadI32(p.subpixel_type) &&
         in.ReadI32(p.w) && in.ReadI32(p.h) && in.ReadF32(p.pixel_pitch);
}
inline bool ReadRecord(ByteReader& in, Layer& p) {
  return in.ReadI32(p.index) && in.ReadF32(p.linear_norms) && in.ReadI32(p.value);
}
inline bool ReadRecord(ByteReader& in, Capture& p) {
  return in.ReadI32(p.exposure) && in.ReadI32(p.gain) && in.ReadI32(p.aperture) &&
         in.ReadI32(p.microfocus) && in.ReadI32(p.filter);
}

inline bool ReadRecord(ByteReader& in, Device& p) {
  return in.ReadBytes(p.id, sizeof p.id) && in.ReadI32(p.cam_type) &&
         in.ReadBytes(p.lens_id, sizeof p.lens_id) && in.ReadI32(p.lens_type);
}
inline bool ReadRecord(ByteReader& in, Pattern& p) {
  return in.ReadI32(p.type) && in.ReadI32(p.interval_x) && in.ReadI32(p.interval_y) &&
         in.ReadI32(p.loc_x) && in.ReadI32(p.loc_y) && in.ReadI32(p.lighted_led_w) &&
         in.ReadI32(p.lighted_led_h);
}
inline bool ReadRecord(ByteReader& in, int32_t& color) { return in.ReadI32(color); }

// Reads a payload into a scratch slot. A record that appears twice keeps
// the later one, as it would overwrite the loaded record.
template <typename Record>
bool ReadInto(ByteReader& in, std::optional<Record>& slot) {
  Record record{};
  if (!ReadRecord(in, record)) return false;
  slot = record;
  return true;
}

// Gives a loaded record to its owner: created if absent, overwritten if
// present; a record the content lacked leaves the owner's as it was.
template <typename Record>
void ApplyRecord(const std::optional<Record>& loaded, std::unique_ptr<Record>& slot) {
  if (!loaded) return;
  if (slot == nullptr) {
    slot = std::make_unique<Record>(*loaded);
  } else {
    *slot = *loaded;
  }
}

// Reads tagged records until the end tag. `read_payload(tag)` reads the
// payload of a tag it knows and returns false when the payload is cut
// short; for any other tag it reads nothing and returns true (unknown tags
// carry no payload). False when the data ends before the end tag. Every
// pass consumes four bytes, so the loop ends with the data.
template <typename ReadPayload>
bool ReadTaggedRecords(ByteReader& in, ReadPayload&& read_payload) {
  uint32_t tag = 0;
  while (in.ReadU32(tag)) {
    if (tag == kEndTag) return true;
    if (!read_payload(tag)) return false;
  }
  return false;
}

}  // namespace aimhue

#endif  // AIMHUE_SRC_CAPTURE_RECORD_IO_H_
