// The ".meter" file and buffer format.
//
// Content, version 1: 'L', version, color, type, the matrix blocks of
// state, pos and chroma, then tagged records (each a 32-bit tag and its
// 4-byte fields) and the end tag 0xFFFFFFFF. add_map is not stored.
//
// Loading parses the content into a scratch copy first and changes the
// meter only when every part of it was read, so a refused or damaged
// content never leaves a half-loaded meter behind. Files are read and
// written as streams: the planes go straight between the file and the
// matrices.
#include <aimhue/led_meter.h>

#include <aimhue/plume_log.h>
#include <aimhue/status.h>

#include <optional>
#include <utility>

#include "capture/byte_stream.h"
#include "capture/file_format.h"
#include "capture/format_operations.h"
#include "capture/matrix_block.h"
#include "capture/record_io.h"
#include "common/exception_guard.h"

namespace aimhue {
namespace {

constexpr char kMeterExtension[] = ".meter";
constexpr uint32_t kMeterVersion = 1;

constexpr uint64_t kHeaderBytes = 1 + 4 + 4 + 4;  // mark, version, color, type

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

void Write(const LedMeter& meter, ByteWriter& out) {
  WriteHeader(out, kMeterVersion);
  out.WriteU32(meter.color);
  out.WriteU32(meter.type);
  WriteMatrixBlock(meter.state, out);
  WriteMatrixBlock(meter.pos, out);
  WriteMatrixBlock(meter.chroma, out);
  WriteRecordIfPresent(out, meter.partition);
  WriteRecordIfPresent(out, meter.led_panel);
  WriteRecordIfPresent(out, meter.layer);
  WriteRecordIfPresent(out, meter.capture);
  out.WriteU32(kEndTag);
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
  return ReadTaggedRecords(in, [&](uint32_t tag) {
    switch (tag) {
      case kTagPartition:
        return ReadInto(in, content.partition);
      case kTagLedPanel:
        return ReadInto(in, content.led_panel);
      case kTagLayer:
        return ReadInto(in, content.layer);
      case kTagCapture:
        return ReadInto(in, content.capture);
      default:
        return true;  // an unknown tag carries no payload
    }
  });
}

// Loaded records replace the meter's; records the content lacks, and
// add_map, keep their values.
void Apply(MeterContent& content, LedMeter& meter) {
  meter.color = content.color;
  meter.type = content.type;
  meter.state = std::move(content.state);
  meter.pos = std::move(content.pos);
  meter.chroma = std::move(content.chroma);
  ApplyRecord(content.partition, meter.partition);
  ApplyRecord(content.led_panel, meter.led_panel);
  ApplyRecord(content.layer, meter.layer);
  ApplyRecord(content.capture, meter.capture);
}

int Parse(const char* who, ByteReader& in, LedMeter& meter) {
  const int status = ReadHeader(who, in, kMeterVersion);
  if (status != kOk) return status;
  MeterContent content;
  if (!ReadBody(in, content)) return DataError(who);
  Apply(content, meter);
  return kOk;
}

}  // namespace

int LedMeter::Save(const std::string& fullname) const {
  return SaveFormat("LedMeter::Save", fullname, kMeterExtension,
                    [&](ByteWriter& out) { Write(*this, out); });
}

int LedMeter::Load(const std::string& fullname) {
  constexpr char kWho[] = "LedMeter::Load";
  return LoadFormat(kWho, fullname, kMeterExtension,
                    [&](ByteReader& in) { return Parse(kWho, in, *this); });
}

int LedMeter::GetBufferSize(uint64_t* size) const {
  PlumeLogInfo("LedMeter::GetBufferSize");
  if (size == nullptr) return kNullInput;
  if (chroma.empty()) return kEmptyInput;
  *size = ContentSize(*this);
  return kOk;
}

int LedMeter::ToBuffer(char* buffer, uint64_t* size) const {
  return WriteFormatBuffer("LedMeter::ToBuffer", buffer, size, ContentSize(*this),
                           [&](ByteWriter& out) { Write(*this, out); });
}

int LedMeter::FromBuffer(const char* buffer, uint64_t size) {
  constexpr char kWho[] = "LedMeter::FromBuffer";
  return ReadFormatBuffer(kWho, buffer, size,
                          [&](ByteReader& in) { return Parse(kWho, in, *this); });
}

}  // namespace aimhue
