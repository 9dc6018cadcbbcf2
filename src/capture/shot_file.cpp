// The ".shot" file and buffer format.
//
// Content, version 1: 'L', version, type, the matrix block of the image
// (converted to 16-bit samples), then tagged records (each a 32-bit tag and
// its fields) and the end tag 0xFFFFFFFF.
//
// Loading parses the whole content into a scratch copy first and changes the
// shot only when every part of it was read, so a refused or damaged content
// never leaves a half-loaded shot behind.
#include <aimhue/plume_log.h>
#include <aimhue/shot.h>
#include <aimhue/status.h>

#include <optional>

#include "capture/byte_stream.h"
#include "capture/file_format.h"
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

std::string Serialize(const Shot& shot) {
  // Stored images are always unsigned 16-bit: fractions and negative values
  // of float planes are rounded and saturated away.
  cv::Mat stored;
  if (!shot.image.empty()) shot.image.convertTo(stored, CV_16U, 1.0, 0.0);
  std::string content;
  ByteWriter out(content);
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
  return content;
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
void Apply(const ShotContent& content, Shot& shot) {
  shot.type = content.type;
  shot.image = content.image;
  ApplyRecord(content.device, shot.device);
  ApplyRecord(content.capture, shot.capture);
  ApplyRecord(content.part, shot.part);
  ApplyRecord(content.panel, shot.panel);
  ApplyRecord(content.layer, shot.layer);
  ApplyRecord(content.pattern, shot.pattern);
  ApplyRecord(content.color, shot.color);
}

int Parse(const char* who, const char* data, size_t size, Shot& shot) {
  ByteReader in(data, size);
  const int status = ReadHeader(who, in, kShotVersion);
  if (status != kOk) return status;
  ShotContent content;
  if (!ReadBody(in, content)) return DataError(who);
  Apply(content, shot);
  return kOk;
}

}  // namespace

int Shot::Save(const std::string& fullname) const {
  PlumeLogInfo("Shot::Save");
  return GuardExceptions("Shot::Save", [&] {
    return SaveFormatFile("Shot::Save", fullname, kShotExtension,
                          [&] { return Serialize(*this); });
  });
}

int Shot::Load(const std::string& fullname) {
  PlumeLogInfo("Shot::Load");
  return GuardExceptions("Shot::Load", [&] {
    const int status = CheckExtension("Shot::Load", fullname, kShotExtension);
    if (status != kOk) return status;
    std::string bytes;
    if (!ReadWholeFile(fullname, bytes)) {
      // This format's message has no blank before "fullname".
      PlumeLogError("Shot::Load -- Failed to Open file.fullname = %s", fullname.c_str());
      return static_cast<int>(kOpenReadFailed);
    }
    return Parse("Shot::Load", bytes.data(), bytes.size(), *this);
  });
}

int Shot::GetBufferSize(size_t* size) const {
  PlumeLogInfo("Shot::GetBufferSize");
  if (image.empty()) return kEmptyInput;
  if (size == nullptr) return kNullInput;
  return GuardExceptions("Shot::GetBufferSize", [&] {
    *size = Serialize(*this).size();
    return static_cast<int>(kOk);
  });
}

int Shot::ToBuffer(char* buffer, size_t* size) const {
  PlumeLogInfo("Shot::ToBuffer");
  return GuardExceptions("Shot::ToBuffer", [&] {
    if (buffer == nullptr || size == nullptr) return static_cast<int>(kNullInput);
    uint64_t capacity = *size;
    const int status = CopyToOutputBuffer(Serialize(*this), buffer, &capacity);
    if (status == kOk) *size = static_cast<size_t>(capacity);
    return status;
  });
}

int Shot::FromBuffer(const char* buffer, size_t size) {
  PlumeLogInfo("Shot::FromBuffer");
  if (buffer == nullptr) return kNullInput;
  return GuardExceptions("Shot::FromBuffer",
                         [&] { return Parse("Shot::FromBuffer", buffer, size, *this); });
}

}  // namespace aimhue
