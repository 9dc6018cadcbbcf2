// The ".shot" file and buffer format.
//
// Content, version 1: 'L', version, type, the matrix block of the image
// (converted to 16-bit samples), then tagged records (each a 32-bit tag and
// its fields) and the end tag 0xFFFFFFFF.
//
// Loading parses the content into a scratch copy first and changes the shot
// only when every part of it was read, so a refused or damaged content never
// leaves a half-loaded shot behind. Files are read and written as streams:
// the image goes straight between the file and its matrix.
#include <aimhue/plume_log.h>
#include <aimhue/shot.h>
#include <aimhue/status.h>

#include <optional>
#include <utility>

#include "capture/byte_stream.h"
#include "capture/file_format.h"
#include "capture/file_stream.h"
#include "capture/format_operations.h"
#include "capture/matrix_block.h"
#include "capture/record_io.h"
#include "common/exception_guard.h"

namespace aimhue {
namespace {

constexpr char kShotExtension[] = ".shot";
constexpr uint32_t kShotVersion = 1;

// What one content holds, before it is applied to a shot.
struct ShotContent {
  uint32_t type = 0;
  cv::Mat image;
  std::optional<Device> device;
  std::optional<Capture> capture;
  std::optional<Partition> part;
  std::optional<LedPanel> panel;
  std::optional<Layer> layer;
  std::optional<Pattern> pattern;
  std::optional<int32_t> color;
};

void Write(const Shot& shot, ByteWriter& out) {
  // Stored images are always unsigned 16-bit: fractions and negative values
  // of float planes are rounded and saturated away. An image that is 16-bit
  // already is written as it is (the conversion would be an exact copy).
  cv::Mat stored;
  if (!shot.image.empty()) {
    if (shot.image.depth() == CV_16U) {
      stored = shot.image;
    } else {
      shot.image.convertTo(stored, CV_16U, 1.0, 0.0);
    }
  }
  WriteHeader(out, kShotVersion);
  out.WriteU32(shot.type);
  WriteMatrixBlock(stored, out);
  // The records in the order of their tags.
  WriteRecordIfPresent(out, shot.device);
  WriteRecordIfPresent(out, shot.capture);
  WriteRecordIfPresent(out, shot.part);
  WriteRecordIfPresent(out, shot.panel);
  WriteRecordIfPresent(out, shot.layer);
  WriteRecordIfPresent(out, shot.pattern);
  WriteRecordIfPresent(out, shot.color);
  out.WriteU32(kEndTag);
}

// The content's length, counted without producing it.
uint64_t ContentSize(const Shot& shot) {
  ByteCounter counter;
  ByteWriter out(counter);
  Write(shot, out);
  return out.Written();
}

// The body after the header. False when the data ends before the end tag or
// the image block is damaged.
bool ReadBody(ByteReader& in, ShotContent& content) {
  if (!in.ReadU32(content.type) || !ReadMatrixBlock(in, content.image)) return false;
  return ReadTaggedRecords(in, [&](uint32_t tag) {
    switch (tag) {
      case kTagDevice:
        return ReadInto(in, content.device);
      case kTagCapture:
        return ReadInto(in, content.capture);
      case kTagPartition:
        return ReadInto(in, content.part);
      case kTagLedPanel:
        return ReadInto(in, content.panel);
      case kTagLayer:
        return ReadInto(in, content.layer);
      case kTagPattern:
        return ReadInto(in, content.pattern);
      case kTagColor:
        return ReadInto(in, content.color);
      default:
        return true;  // an unknown tag carries no payload
    }
  });
}

// Loaded records replace the shot's; records the content lacks keep their
// values, and no setter rule runs on loaded values.
void Apply(ShotContent& content, Shot& shot) {
  shot.type = content.type;
  shot.image = std::move(content.image);
  ApplyRecord(content.device, shot.device);
  ApplyRecord(content.capture, shot.capture);
  ApplyRecord(content.part, shot.part);
  ApplyRecord(content.panel, shot.panel);
  ApplyRecord(content.layer, shot.layer);
  ApplyRecord(content.pattern, shot.pattern);
  ApplyRecord(content.color, shot.color);
}

int Parse(const char* who, ByteReader& in, Shot& shot) {
  const int status = ReadHeader(who, in, kShotVersion);
  if (status != kOk) return status;
  ShotContent content;
  if (!ReadBody(in, content)) return DataError(who);
  Apply(content, shot);
  return kOk;
}

}  // namespace

int Shot::Save(const std::string& fullname) const {
  return SaveFormat("Shot::Save", fullname, kShotExtension,
                    [&](ByteWriter& out) { Write(*this, out); });
}

int Shot::Load(const std::string& fullname) {
  PlumeLogInfo("Shot::Load");
  return GuardExceptions("Shot::Load", [&] {
    const int status = CheckExtension("Shot::Load", fullname, kShotExtension);
    if (status != kOk) return status;
    FileSource file;
    if (!file.Open(fullname)) {
      // This format's message has no blank before "fullname".
      PlumeLogError("Shot::Load -- Failed to Open file.fullname = %s", fullname.c_str());
      return static_cast<int>(kOpenReadFailed);
    }
    ByteReader in(file, file.Size());
    return Parse("Shot::Load", in, *this);
  });
}

int Shot::GetBufferSize(size_t* size) const {
  PlumeLogInfo("Shot::GetBufferSize");
  if (image.empty()) return kEmptyInput;
  if (size == nullptr) return kNullInput;
  return GuardExceptions("Shot::GetBufferSize", [&] {
    *size = static_cast<size_t>(ContentSize(*this));
    return static_cast<int>(kOk);
  });
}

int Shot::ToBuffer(char* buffer, size_t* size) const {
  PlumeLogInfo("Shot::ToBuffer");
  return GuardExceptions("Shot::ToBuffer", [&] {
    if (buffer == nullptr || size == nullptr) return static_cast<int>(kNullInput);
    const uint64_t needed = ContentSize(*this);
    uint64_t capacity = *size;
    const int status = CheckOutputBuffer(buffer, &capacity, needed);
    if (status != kOk) return status;
    ByteWriter out(buffer, static_cast<size_t>(needed));
    Write(*this, out);
    *size = static_cast<size_t>(needed);
    return static_cast<int>(kOk);
  });
}

int Shot::FromBuffer(const char* buffer, size_t size) {
  return ReadFormatBuffer("Shot::FromBuffer", buffer, size,
                          [&](ByteReader& in) { return Parse("Shot::FromBuffer", in, *this); });
}

}  // namespace aimhue
