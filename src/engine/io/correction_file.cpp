// The ".corr" file and buffer format of the correction record.
//
// Content, version 1: 'L', version, scale (f32), the twelve target floats,
// quantile (f32), mode (i32), bits (i32), the matrix blocks of coeff, flags,
// gain, deltaEBefore and deltaEAfter, then the end tag 0xFFFFFFFF. The
// counts are derived from the flags and not stored, so a file cannot
// contradict itself there.
//
// Loading parses the content into a scratch record first and replaces the
// record only when every part was read and fits together. Files are read
// and written as streams: the planes go straight between the file and the
// matrices.
#include <aimhue/correction.h>

#include <aimhue/plume_log.h>
#include <aimhue/status.h>

#include "capture/byte_stream.h"
#include "capture/file_format.h"
#include "capture/format_operations.h"
#include "capture/matrix_block.h"
#include "common/exception_guard.h"
#include "engine/correction_led.h"

namespace aimhue {
namespace {

constexpr char kCorrectionExtension[] = ".corr";
constexpr uint32_t kCorrectionVersion = 1;

constexpr int kCoeffType = CV_32FC(9);
constexpr int kDeltaEType = CV_32FC4;
constexpr int kMinBits = 8;
constexpr int kMaxBits = 16;

// mark, version, scale, twelve target floats, quantile, mode, bits
constexpr uint64_t kHeaderBytes = 1 + 4 + 4 + 12 * 4 + 4 + 4 + 4;
constexpr uint64_t kEndTagBytes = 4;

uint64_t ContentSize(const Correction& record) {
  return kHeaderBytes + MatrixBlockSize(record.coeff) + MatrixBlockSize(record.flags) +
         MatrixBlockSize(record.gain) + MatrixBlockSize(record.deltaEBefore) +
         MatrixBlockSize(record.deltaEAfter) + kEndTagBytes;
}

void Write(const Correction& record, ByteWriter& out) {
  WriteHeader(out, kCorrectionVersion);
  out.WriteF32(record.scale);
  for (const TargetLxy& target : record.targets) {
    out.WriteF32(target.L);
    out.WriteF32(target.x);
    out.WriteF32(target.y);
  }
  out.WriteF32(record.settings.quantile);
  out.WriteI32(static_cast<int32_t>(record.settings.mode));
  out.WriteI32(record.settings.bits);
  WriteMatrixBlock(record.coeff, out);
  WriteMatrixBlock(record.flags, out);
  WriteMatrixBlock(record.gain, out);
  WriteMatrixBlock(record.deltaEBefore, out);
  WriteMatrixBlock(record.deltaEAfter, out);
  out.WriteU32(kEndTag);
}

bool SettingsValid(const CorrectionSettings& settings, int32_t mode) {
  const bool quantileValid = settings.quantile > 0.0f && settings.quantile <= 1.0f;
  const bool modeValid = mode == static_cast<int32_t>(CorrectionMode::Chroma) ||
                         mode == static_cast<int32_t>(CorrectionMode::Brightness);
  const bool bitsValid =
      settings.bits == 0 || (settings.bits >= kMinBits && settings.bits <= kMaxBits);
  return quantileValid && modeValid && bitsValid;
}

// The five planes are all empty (a record never computed) or all of the
// record's element types and of one size.
bool PlanesFit(const Correction& record) {
  const cv::Mat* planes[5] = {&record.coeff, &record.flags, &record.gain, &record.deltaEBefore,
                              &record.deltaEAfter};
  const int types[5] = {kCoeffType, CV_8UC1, CV_32FC1, kDeltaEType, kDeltaEType};
  if (record.coeff.empty()) {
    for (const cv::Mat* plane : planes) {
      if (!plane->empty()) return false;
    }
    return true;
  }
  for (int i = 0; i < 5; ++i) {
    if (planes[i]->type() != types[i] || planes[i]->size() != record.coeff.size()) return false;
  }
  return true;
}

bool ReadBody(ByteReader& in, Correction& record) {
  int32_t mode = 0;
  if (!in.ReadF32(record.scale)) return false;
  for (TargetLxy& target : record.targets) {
    if (!in.ReadF32(target.L) || !in.ReadF32(target.x) || !in.ReadF32(target.y)) return false;
  }
  if (!in.ReadF32(record.settings.quantile) || !in.ReadI32(mode) ||
      !in.ReadI32(record.settings.bits)) {
    return false;
  }
  if (!SettingsValid(record.settings, mode)) return false;
  record.settings.mode = static_cast<CorrectionMode>(mode);
  if (!ReadMatrixBlock(in, record.coeff) || !ReadMatrixBlock(in, record.flags) ||
      !ReadMatrixBlock(in, record.gain) || !ReadMatrixBlock(in, record.deltaEBefore) ||
      !ReadMatrixBlock(in, record.deltaEAfter)) {
    return false;
  }
  uint32_t endTag = 0;
  if (!in.ReadU32(endTag) || endTag != kEndTag) return false;
  return PlanesFit(record);
}

int Parse(const char* who, ByteReader& in, Correction& record) {
  const int status = ReadHeader(who, in, kCorrectionVersion);
  if (status != kOk) return status;
  Correction content;
  if (!ReadBody(in, content)) return DataError(who);
  content.counts = CountCorrectionFlags(content.flags);
  record = std::move(content);
  return kOk;
}

}  // namespace

int Correction::Save(const std::string& fullname) const {
  return SaveFormat("Correction::Save", fullname, kCorrectionExtension,
                    [&](ByteWriter& out) { Write(*this, out); });
}

int Correction::Load(const std::string& fullname) {
  constexpr char kWho[] = "Correction::Load";
  return LoadFormat(kWho, fullname, kCorrectionExtension,
                    [&](ByteReader& in) { return Parse(kWho, in, *this); });
}

int Correction::GetBufferSize(uint64_t* size) const {
  PlumeLogInfo("Correction::GetBufferSize");
  if (size == nullptr) return kNullInput;
  if (coeff.empty()) return kEmptyInput;
  *size = ContentSize(*this);
  return kOk;
}

int Correction::ToBuffer(char* buffer, uint64_t* size) const {
  return WriteFormatBuffer("Correction::ToBuffer", buffer, size, ContentSize(*this),
                           [&](ByteWriter& out) { Write(*this, out); });
}

int Correction::FromBuffer(const char* buffer, uint64_t size) {
  constexpr char kWho[] = "Correction::FromBuffer";
  return ReadFormatBuffer(kWho, buffer, size,
                          [&](ByteReader& in) { return Parse(kWho, in, *this); });
}

}  // namespace aimhue
