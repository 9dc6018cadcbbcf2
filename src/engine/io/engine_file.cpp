// The engine's ".aimhue" file and buffer format: a 169-byte image of the
// results, little-endian and packed:
//   'L', version 1 (32-bit signed), percentCalcChroma (4 floats), ngLimit,
//   target, searchEnd, searchStart (12 floats each, red, green, blue, white,
//   each L, x, y).
// The settings (percentEnd, ngThresh) and the tuning block are not part of
// the image and keep their values across a load.
//
// Loading reads the whole image before storing anything: an image shorter
// than 169 bytes is refused with 3 and leaves the record unchanged. Bytes
// after the image are ignored.
#include <aimhue/plume_log.h>
#include <aimhue/status.h>

#include "capture/byte_stream.h"
#include "capture/file_format.h"
#include "capture/format_operations.h"
#include "common/exception_guard.h"
#include "engine/aimhue.h"

namespace aimhue {
namespace {

constexpr char kEngineExtension[] = ".aimhue";
constexpr uint32_t kEngineVersion = 1;
constexpr uint64_t kImageBytes = 169;

void WriteBlock(const TargetBlock& block, ByteWriter& out) {
  for (const TargetLxy& point : block) {
    out.WriteF32(point.L);
    out.WriteF32(point.x);
    out.WriteF32(point.y);
  }
}

bool ReadBlock(ByteReader& in, TargetBlock& block) {
  for (TargetLxy& point : block) {
    if (!in.ReadF32(point.L) || !in.ReadF32(point.x) || !in.ReadF32(point.y)) return false;
  }
  return true;
}

void Write(const Aimhue& engine, ByteWriter& out) {
  WriteHeader(out, kEngineVersion);
  for (float fraction : engine.percentCalcChroma) out.WriteF32(fraction);
  out.WriteF32(engine.ngLimit);
  WriteBlock(engine.target, out);
  WriteBlock(engine.searchEnd, out);
  WriteBlock(engine.searchStart, out);
}

std::string Serialize(const Aimhue& engine) {
  std::string image;
  image.reserve(kImageBytes);
  ByteWriter out(image);
  Write(engine, out);
  return image;
}

int Parse(const char* who, ByteReader& in, Aimhue& engine) {
  const int status = ReadHeader(who, in, kEngineVersion);
  if (status != kOk) return status;
  // Read into a copy so that a short image leaves the record as it was; the
  // copy's settings are the record's own, so assigning it back keeps them.
  Aimhue loaded = engine;
  bool complete = true;
  for (float& fraction : loaded.percentCalcChroma) complete = complete && in.ReadF32(fraction);
  complete = complete && in.ReadF32(loaded.ngLimit) && ReadBlock(in, loaded.target) &&
             ReadBlock(in, loaded.searchEnd) && ReadBlock(in, loaded.searchStart);
  if (!complete) return DataError(who);
  // The outlier counts belong to a search of this session, not to the image.
  loaded.outliers = Aimhue().outliers;
  engine = loaded;
  return kOk;
}

}  // namespace

int Aimhue::Save(const std::string& fullname) const {
  return SaveFormat("Aimhue::Save", fullname, kEngineExtension,
                    [&](ByteWriter& out) { Write(*this, out); });
}

int Aimhue::Load(const std::string& fullname) {
  constexpr char kWho[] = "Aimhue::Load";
  return LoadFormat(kWho, fullname, kEngineExtension,
                    [&](ByteReader& in) { return Parse(kWho, in, *this); });
}

int Aimhue::ToBuffer(char* buffer, uint64_t* size) const {
  constexpr char kWho[] = "Aimhue::ToBuffer";
  PlumeLogInfo(kWho);
  return GuardExceptions(kWho, [&] { return CopyToOutputBuffer(Serialize(*this), buffer, size); });
}

int Aimhue::FromBuffer(const char* buffer, int64_t size) {
  constexpr char kWho[] = "Aimhue::FromBuffer";
  PlumeLogInfo(kWho);
  if (buffer == nullptr) return kNullInput;
  if (size < 0) {
    PlumeLogError("%s--Error :: negative buffer size.", kWho);
    return kOutOfRange;
  }
  return GuardExceptions(kWho, [&] {
    ByteReader in(buffer, static_cast<size_t>(size));
    return Parse(kWho, in, *this);
  });
}

int Aimhue::GetBufferSize(uint64_t* size) const {
  PlumeLogInfo("Aimhue::GetBufferSize");
  if (size == nullptr) return kNullInput;
  *size = kImageBytes;
  return kOk;
}

}  // namespace aimhue
