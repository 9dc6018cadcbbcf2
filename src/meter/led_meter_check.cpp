// LedMeter::Check: validation of one, two or three meters by a bit set of
// MeterCheck flags. The tests run in a fixed order and the first failure
// decides the status and the one error line.
#include <aimhue/led_meter.h>

#include <aimhue/plume_log.h>
#include <aimhue/status.h>
#include <aimhue/target.h>

#include "common/empty_plane.h"

namespace aimhue {
namespace {

// A test on one meter; `fails` is only called on a non-null meter.
struct SingleTest {
  uint32_t flag;
  int status;
  const char* text;
  bool (*fails)(const LedMeter& meter);
};

// A test on a pair of non-null meters; every pair test fails with status 9.
struct PairTest {
  uint32_t flag;
  const char* text;
  bool (*fails)(const LedMeter& a, const LedMeter& b);
};

// A meter's colour is one primary's code, its type one of CIE_X, CIE_Y, CIE_Z:
// both one of the bits 1, 2, 4.
bool IsValidColour(uint32_t code) { return PrimaryIndex(code) >= 0; }
bool IsValidType(uint32_t code) { return code == CIE_X || code == CIE_Y || code == CIE_Z; }

// Compares every dimension, so planes of more than two dimensions are never
// taken for equal by their (rows, cols) alone.
bool SizesDiffer(const cv::Mat& a, const cv::Mat& b) { return a.size != b.size; }

const char* const kNullText = "input is nullptr";

// Single-meter tests after the null test, in the order they run.
constexpr SingleTest kSingleTests[] = {
    {kCheckHasPartition, kOutOfRange, "part is nullptr",
     [](const LedMeter& m) { return m.partition == nullptr; }},
    {kCheckHasLayer, kOutOfRange, "layer is nullptr",
     [](const LedMeter& m) { return m.layer == nullptr; }},
    {kCheckChromaNotEmpty, kEmptyPlane, "chroma is empty",
     [](const LedMeter& m) { return IsEmptyPlane(m.chroma); }},
    {kCheckPosNotEmpty, kEmptyPlane, "pos is empty",
     [](const LedMeter& m) { return IsEmptyPlane(m.pos); }},
    {kCheckStateNotEmpty, kEmptyPlane, "state is empty",
     [](const LedMeter& m) { return IsEmptyPlane(m.state); }},
    {kCheckTypeValid, kOutOfRange, "input type",
     [](const LedMeter& m) { return !IsValidType(m.type); }},
    {kCheckColorValid, kOutOfRange, "input color",
     [](const LedMeter& m) { return !IsValidColour(m.color); }},
};

// Pair tests, in the order they run. A missing layer fails the two layer
// tests: there is no value to show that the layers agree.
constexpr PairTest kPairTests[] = {
    {kCheckTypeSame, "input type different",
     [](const LedMeter& a, const LedMeter& b) { return a.type != b.type; }},
    {kCheckTypeDifferent, "input type same",
     [](const LedMeter& a, const LedMeter& b) { return a.type == b.type; }},
    {kCheckColorSame, "input color different",
     [](const LedMeter& a, const LedMeter& b) { return a.color != b.color; }},
    {kCheckChromaSizeSame, "input chroma size different",
     [](const LedMeter& a, const LedMeter& b) { return SizesDiffer(a.chroma, b.chroma); }},
    {kCheckPosSizeSame, "input pos size different",
     [](const LedMeter& a, const LedMeter& b) { return SizesDiffer(a.pos, b.pos); }},
    {kCheckStateSizeSame, "input state size different",
     [](const LedMeter& a, const LedMeter& b) { return SizesDiffer(a.state, b.state); }},
    {kCheckColorDifferent, "input color same",
     [](const LedMeter& a, const LedMeter& b) { return a.color == b.color; }},
    {kCheckTypeIsY, "input type not CIE_Y",
     [](const LedMeter& a, const LedMeter& b) { return a.type != CIE_Y || b.type != CIE_Y; }},
    {kCheckLayerValueSame, "layer value not same.",
     [](const LedMeter& a, const LedMeter& b) {
       return a.layer == nullptr || b.layer == nullptr || a.layer->value != b.layer->value;
     }},
    // Exact float comparison: a NaN never equals anything, itself included.
    {kCheckLayerNormsSame, "layer linera_norms not same.",
     [](const LedMeter& a, const LedMeter& b) {
       return a.layer == nullptr || b.layer == nullptr ||
              a.layer->linear_norms != b.layer->linear_norms;
     }},
};

constexpr uint32_t SingleTestFlags() {
  uint32_t all = kCheckNotNull;
  for (const SingleTest& test : kSingleTests) all |= test.flag;
  return all;
}

int Fail(int status, const char* text) {
  PlumeLogError("LedMeter::Check--Error in LedMeter %s", text);
  return status;
}

int CheckSingle(uint32_t flags, const LedMeter* meter) {
  if (meter == nullptr) {
    // Without kCheckNotNull a null meter is not tested for null, but any
    // other test on it fails as a null meter rather than reading it.
    return (flags & SingleTestFlags()) != 0 ? Fail(kNullInput, kNullText) : kOk;
  }
  for (const SingleTest& test : kSingleTests) {
    if ((flags & test.flag) != 0 && test.fails(*meter)) return Fail(test.status, test.text);
  }
  return kOk;
}

int CheckPair(uint32_t flags, const LedMeter* a, const LedMeter* b) {
  for (const PairTest& test : kPairTests) {
    if ((flags & test.flag) == 0) continue;
    if (a == nullptr || b == nullptr) return Fail(kNullInput, kNullText);
    if (test.fails(*a, *b)) return Fail(kOutOfRange, test.text);
  }
  return kOk;
}

}  // namespace

int LedMeter::Check(uint32_t flags, const LedMeter* a) { return CheckSingle(flags, a); }

int LedMeter::Check(uint32_t flags, const LedMeter* a, const LedMeter* b) {
  int status = CheckSingle(flags, a);
  if (status == kOk) status = CheckSingle(flags, b);
  if (status == kOk) status = CheckPair(flags, a, b);
  return status;
}

int LedMeter::Check(uint32_t flags, const LedMeter* a, const LedMeter* b, const LedMeter* c) {
  int status = Check(flags, a, b);
  if (status == kOk) status = Check(flags, a, c);
  // The pair (b, c) is only tested for distinct types and distinct colours:
  // with kCheckTypeDifferent all three types are then pairwise different,
  // while kCheckColorSame already ties both colours to a's.
  if (status == kOk) status = CheckPair(flags & (kCheckTypeDifferent | kCheckColorDifferent), b, c);
  return status;
}

}  // namespace aimhue
