// The ".meter" file and buffer format.
//
// Content, version 1: 'L', version, color, type, the matrix blocks of
// state, pos and chroma, then tagged records (each a 32-bit tag and its
// 4-byte fields) and the end tag 0xFFFFFFFF. add_map is not stored.
//
// Loading parses the whole content into a scratch copy first and changes the
// meter only when every part of it was read, so a refused or damaged
// content never leaves a half-loaded meter behind.
#include <aimhue/led_meter.h>

#include <aimhue/plume_log.h>
#include <aimhue/status.h>

#include <optional>

#include "capture/byte_stream.h"
#include "capture/file_format.h"
#include "capture/matrix_block.h"
#include "common/exception_guard.h"

namespace aimhue {
namespace {

constexpr char kMeterExtension[] = ".meter";
constexpr uint32_t kMeterVersion = 1;

enum MeterTag : uint32_t {
  kTagCapture = 2,
  kTagPartition = 4,
  kTagLedPanel = 8,
  kTagLayer = 16,
};

constexpr uint64_t kHeaderBytes = 1 + 4 + 4 + 4;  // mark, version, color, type
constexpr uint64_t kTagBytes = 4;
constexpr uint64_t kPartitionBytes = 24;
constexpr uint64_t kLedPanelBytes = 24;
constexpr uint64_t kLayerBytes = 12;
constexpr uint64_t kCaptureBytes = 20;

// What one content holds, before it is applied to a meter.
struct MeterContent {
  uint32_t color = 0;
  uint32_t type = 0;
  cv::Mat state;
  cv::Mat pos;
  cv::Mat chroma;
  std::optional<Partition> partition;
  std::optional<LedPanel> led_panel;
  std::optional<Layer> layer;
  std::optional<Capture> capture;
};

uint64_t ContentSize(const LedMeter& meter) {
  uint64_t size = kHeaderBytes + MatrixBlockSize(meter.state) + MatrixBlockSize(meter.pos) +
                  MatrixBlockSize(meter.chroma);
  if (meter.partition) size += kTagBytes + kPartitionBytes;
  if (meter.led_panel) size += kTagBytes + kLedPanelBytes;
  if (meter.layer) size += kTagBytes + kLayerBytes;
  if (meter.capture) size += kTagBytes + kCaptureBytes;
  return size + kTagBytes;  // end tag
}

std::string Serialize(const LedMeter& meter) {
  std::string content;
  content.reserve(static_cast<size_t>(ContentSize(meter)));
  ByteWriter out(content);
  WriteHeader(out, kMeterVersion);
  out.WriteU32(meter.color);
  out.WriteU32(meter.type);
  WriteMatrixBlock(meter.state, out);
  WriteMatrixBlock(meter.pos, out);
  WriteMatrixBlock(meter.chroma, out);
  if (const Partition* p = meter.partition.get()) {
    out.WriteU32(kTagPartition);
    for (int32_t field : {p->x, p->y, p->w, p->h, p->screen_w, p->screen_h}) out.WriteI32(field);
  }
  if (const LedPanel* p = meter.led_panel.get()) {
    out.WriteU32(kTagLedPanel);
    for (int32_t field : {p->type, p->layout, p->subpixel_type, p->w, p->h}) out.WriteI32(field);
    out.WriteF32(p->pixel_pitch);
  }
  if (const Layer* p = meter.layer.get()) {
    out.WriteU32(kTagLayer);
    out.WriteI32(p->index);
    out.WriteF32(p->linear_norms);
    out.WriteI32(p->value);
  }
  if (const Capture* p = meter.capture.get()) {
    out.WriteU32(kTagCapture);
    for (int32_t field : {p->exposure, p->gain, p->aperture, p->microfocus, p->filter}) {
      out.WriteI32(field);
    }
  }
  out.WriteU32(kEndTag);
  return content;
}

bool ReadRecord(ByteReader& in, Partition& p) {
  return in.ReadI32(p.x) && in.ReadI32(p.y) && in.ReadI32(p.w) && in.ReadI32(p.h) &&
         in.ReadI32(p.screen_w) && in.ReadI32(p.screen_h);
}
bool ReadRecord(ByteReader& in, LedPanel& p) {
  return in.ReadI32(p.type) && in.ReadI32(p.layout) && in.ReadI32(p.subpixel_type) &&
         in.ReadI32(p.w) && in.ReadI32(p.h) && in.ReadF32(p.pixel_pitch);
}
bool ReadRecord(ByteReader& in, Layer& p) {
  return in.ReadI32(p.index) && in.ReadF32(p.linear_norms) && in.ReadI32(p.value);
}
bool ReadRecord(ByteReader& in, Capture& p) {
  return in.ReadI32(p.exposure) && in.ReadI32(p.gain) && in.ReadI32(p.aperture) &&
         in.ReadI32(p.microfocus) && in.ReadI32(p.filter);
}

// A record that appears twice keeps the later one, as it would overwrite
// the meter's.
template <typename Record>
bool ReadInto(ByteReader& in, std::optional<Record>& slot) {
  Record record{};
  if (!ReadRecord(in, record)) return false;
  slot = record;
  return true;
}

// A stored plane must have the meter's element type (or be empty): a plane
// of another type would be misread by every operation on the meter.
bool HasType(const cv::Mat& plane, int type) { return plane.empty() || plane.type() == type; }

// The body after the header. False when the data ends before the end tag or
// a plane is damaged or of the wrong element type.
bool ReadBody(ByteReader& in, MeterContent& content) {
  if (!in.ReadU32(content.color) || !in.ReadU32(content.type)) return false;
  if (!ReadMatrixBlock(in, content.state) || !ReadMatrixBlock(in, content.pos) ||
      !ReadMatrixBlock(in, content.chroma)) {
    return false;
  }
  if (!HasType(content.state, CV_8UC1) || !HasType(content.pos, CV_32FC2) ||
      !HasType(content.chroma, CV_32FC1)) {
    return false;
  }
  // Every pass consumes four bytes, so the loop ends with the data.
  uint32_t tag = 0;
  while (in.ReadU32(tag)) {
    bool read = true;
    switch (tag) {
      case kEndTag:
        return true;
      case kTagPartition:
        read = ReadInto(in, content.partition);
        break;
      case kTagLedPanel:
        read = ReadInto(in, content.led_panel);
        break;
      case kTagLayer:
        read = ReadInto(in, content.layer);
        break;
      case kTagCapture:
        read = ReadInto(in, content.capture);
        break;
      default:
        break;  // an unknown tag carries no payload
    }
    if (!read) return false;
  }
  return false;  // no end tag before the end of the data
}

template <typename Record>
void Apply(std::optional<Record>& loaded, std::unique_ptr<Record>& slot) {
  if (!loaded) return;
  if (slot == nullptr) {
    slot = std::make_unique<Record>(*loaded);
  } else {
    *slot = *loaded;
  }
}

// Loaded records replace the meter's; records the content lacks, and
// add_map, keep their values.
void Apply(MeterContent& content, LedMeter& meter) {
  meter.color = content.color;
  meter.type = content.type;
  meter.state = content.state;
  meter.pos = content.pos;
  meter.chroma = content.chroma;
  Apply(content.partition, meter.partition);
  Apply(content.led_panel, meter.led_panel);
  Apply(content.layer, meter.layer);
  Apply(content.capture, meter.capture);
}

int Parse(const char* who, const char* data, size_t size, LedMeter& meter) {
  ByteReader in(data, size);
  const int status = ReadHeader(who, in, kMeterVersion);
  if (status != kOk) return status;
  MeterContent content;
  if (!ReadBody(in, content)) return DataError(who);
  Apply(content, meter);
  return kOk;
}

}  // namespace

int LedMeter::Save(const std::string& fullname) const {
  constexpr char kWho[] = "LedMeter::Save";
  PlumeLogInfo(kWho);
  return GuardExceptions(kWho, [&] {
    return SaveFormatFile(kWho, fullname, kMeterExtension, [&] { return Serialize(*this); });
  });
}

int LedMeter::Load(const std::string& fullname) {
  constexpr char kWho[] = "LedMeter::Load";
  PlumeLogInfo(kWho);
  return GuardExceptions(kWho, [&] {
    return LoadFormatFile(kWho, fullname, kMeterExtension, [&](const char* data, size_t size) {
      return Parse(kWho, data, size, *this);
    });
  });
}

int LedMeter::GetBufferSize(uint64_t* size) const {
  PlumeLogInfo("LedMeter::GetBufferSize");
  if (size == nullptr) return kNullInput;
  if (chroma.empty()) return kEmptyInput;
  *size = ContentSize(*this);
  return kOk;
}

int LedMeter::ToBuffer(char* buffer, uint64_t* size) const {
  constexpr char kWho[] = "LedMeter::ToBuffer";
  PlumeLogInfo(kWho);
  const int status = CheckOutputBuffer(buffer, size, ContentSize(*this));
  if (status != kOk) return status;
  return GuardExceptions(kWho, [&] { return CopyToOutputBuffer(Serialize(*this), buffer, size); });
}

int LedMeter::FromBuffer(const char* buffer, uint64_t size) {
  constexpr char kWho[] = "LedMeter::FromBuffer";
  PlumeLogInfo(kWho);
  if (buffer == nullptr) return kNullInput;
  return GuardExceptions(kWho,
                         [&] { return Parse(kWho, buffer, static_cast<size_t>(size), *this); });
}

}  // namespace aimhue
