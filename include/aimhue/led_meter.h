// LedMeter: one measured quantity (for example the CIE Y tristimulus value)
// for every LED of a screen region, with per-LED state and position and
// optional descriptions of the region, panel, layer and capture.
#ifndef AIMHUE_LED_METER_H_
#define AIMHUE_LED_METER_H_

#include <aimhue/export.h>
#include <aimhue/led_set.h>
#include <aimhue/records.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include <opencv2/core.hpp>

namespace aimhue {

class Shot;

// Bits of the `flags` argument of LedMeter::Check. Each bit asks for one
// test; the tests run in a fixed order and the first failure decides.
enum MeterCheck : uint32_t {
  kCheckNotNull = 0x1,
  kCheckChromaNotEmpty = 0x2,
  kCheckChromaSizeSame = 0x4,
  kCheckTypeValid = 0x10,
  kCheckTypeSame = 0x20,
  kCheckTypeDifferent = 0x40,
  kCheckTypeIsY = 0x80,
  kCheckColorValid = 0x100,
  kCheckColorSame = 0x200,
  kCheckColorDifferent = 0x400,
  kCheckStateNotEmpty = 0x1000,
  kCheckStateSizeSame = 0x2000,
  kCheckPosNotEmpty = 0x4000,
  kCheckPosSizeSame = 0x8000,
  kCheckHasPartition = 0x10000,
  kCheckHasLayer = 0x20000,
  kCheckLayerValueSame = 0x40000,
  kCheckLayerNormsSame = 0x80000,
  // The checks of the chromaticity combination: present, chroma not empty,
  // same chroma size, valid types, pairwise different types, same colour.
  kCheckForCombine = kCheckNotNull | kCheckChromaNotEmpty | kCheckChromaSizeSame |
                     kCheckTypeValid | kCheckTypeDifferent | kCheckColorSame,
};

class AIMHUE_EXPORT LedMeter {
 public:
  // Descriptive records, absent (null) until set or loaded.
  std::unique_ptr<Partition> partition;
  std::unique_ptr<Layer> layer;
  std::unique_ptr<LedPanel> led_panel;
  std::unique_ptr<Capture> capture;
  uint32_t color = 0;  // colour code of the measured primary: 1, 2 or 4
  uint32_t type = 0;   // CIE_X, CIE_Y or CIE_Z
  cv::Mat state;       // 8-bit, one byte per LED; bit 0 marks a dead LED
  cv::Mat pos;         // two-channel 32-bit float: (x, y) of each LED in the capture
  cv::Mat chroma;      // 32-bit float: the measured value of each LED (rows x cols)
  cv::Mat add_map;     // 8-bit capture cells still to be added (multi-capture)

  LedMeter();
  ~LedMeter();
  LedMeter(LedMeter&&) noexcept;
  LedMeter& operator=(LedMeter&&) noexcept;
  LedMeter(const LedMeter&) = delete;             // CopyTo makes a deep copy
  LedMeter& operator=(const LedMeter&) = delete;

  // Releases the descriptive records and replaces the planes by empty
  // matrices of their element types.
  void Clear();

  // Setters: copy the record, creating it on first use.
  // SetPartition: 108 unless the rectangle lies inside a positive screen.
  // SetLedPanel: 106 unless the panel width and height are both >= 1.
  int SetPartition(const Partition& partition);
  int SetLayer(const Layer& layer);
  int SetLedPanel(const LedPanel& panel);
  int SetCapture(const Capture& capture);

  // Validation by a bit set of MeterCheck flags; returns 0 or the code of
  // the first failing test (1, 9 or 12) after logging its one error line
  // "LedMeter::Check--Error in LedMeter ...". Nothing is logged on success.
  //
  // Order: the tests on one meter (kCheckNotNull, kCheckHasPartition,
  // kCheckHasLayer, kCheckChromaNotEmpty, kCheckPosNotEmpty,
  // kCheckStateNotEmpty, kCheckTypeValid, kCheckColorValid) on `a`, then on
  // `b`; then the pair tests (kCheckTypeSame, kCheckTypeDifferent,
  // kCheckColorSame, kCheckChromaSizeSame, kCheckPosSizeSame,
  // kCheckStateSizeSame, kCheckColorDifferent, kCheckTypeIsY,
  // kCheckLayerValueSame, kCheckLayerNormsSame). The three-meter form checks
  // (a, b), then (a, c), then only kCheckTypeDifferent and
  // kCheckColorDifferent on (b, c).
  //
  // A valid type or colour is 1, 2 or 4. "Empty" is no data or no elements.
  // Sizes compare every dimension of the planes.
  //
  // Behaviour a caller might not expect:
  //  - A null meter is only reported for kCheckNotNull in its turn; without
  //    that flag, the first other test that would read the null meter fails
  //    with 1 and "input is nullptr" instead (a meter is never read through
  //    a null pointer). With no test asking about it, a null meter passes.
  //  - kCheckLayerValueSame and kCheckLayerNormsSame fail (9, with their
  //    own messages) when either layer is absent; ask for kCheckHasLayer
  //    first to get "layer is nullptr" instead.
  //  - kCheckLayerNormsSame compares floats exactly: a NaN never matches.
  static int Check(uint32_t flags, const LedMeter* a);
  static int Check(uint32_t flags, const LedMeter* a, const LedMeter* b);
  static int Check(uint32_t flags, const LedMeter* a, const LedMeter* b, const LedMeter* c);

  // The ".meter" file and buffer format: 'L', version 1, color, type, the
  // matrix blocks of state, pos and chroma, the present records (partition,
  // LED panel, layer, capture) each behind its tag, and an end tag. add_map
  // is not stored. Files and buffers hold the same bytes.
  //
  // Save: 8 when the name does not end in ".meter" (or is only that), 4 when
  // the file cannot be opened for writing; nothing is created on either. The
  // meter is not checked for emptiness.
  // Load / FromBuffer: 8 and 2 (file only) as above; 1 for a null buffer;
  // 10 when the first byte is not 'L'; 3 when the version is not 1, and also
  // when the data ends before the end tag or holds a damaged plane or a
  // plane of another element type than the meter's (state CV_8UC1, pos
  // CV_32FC2, chroma CV_32FC1), logged as "<method> -- Error data in file.".
  // Every refusal leaves the meter unchanged: the content is parsed whole
  // before anything is stored. Records may come in any order; records the
  // content lacks keep their values, and unknown tags (which carry no
  // payload) are passed over.
  // GetBufferSize: 1 for a null `size`, 5 when chroma is empty; otherwise
  // the content's length in bytes.
  // ToBuffer: 1 for a null buffer or size; 13 when *size is smaller than the
  // content, with the buffer and *size untouched; otherwise copies the
  // content and sets *size to its length.
  // An exception inside (memory exhausted) is logged and reported as 9.
  int Save(const std::string& fullname) const;
  int Load(const std::string& fullname);
  int GetBufferSize(uint64_t* size) const;
  int ToBuffer(char* buffer, uint64_t* size) const;
  int FromBuffer(const char* buffer, uint64_t size);

  // Building a meter from captures and working on it. An exception inside
  // any of these (memory exhausted, an element type OpenCV does not handle)
  // is logged as "LedMeter::<Method>--Error :: exception: <what>" and
  // reported as 9, with the meter and every output unchanged.
  //
  // CheckInput: validation and bookkeeping before an Add, in this order:
  // a shot and at least one set (1); a single-channel image (403); the
  // shot's colour and pattern (Shot::Check); non-empty sets (5); a
  // partition (108); with both sets, equal sizes matching the pattern's lit
  // counts (400). While a measurement is under way (add_map not empty) the
  // sets given must match the planes the meter has (404), and the shot's
  // colour, type, partition size and grid must be the meter's (102). Then
  // the checks that keep Add inside the planes: a valid pattern (the capture
  // grid: map columns and rows = interval_x/_y, cell = loc_x/_y, no wider
  // than the partition, else 104), sets of 8-bit state and data of the same
  // size (values CV_32FC1, positions two 32-bit channels; else 109) holding
  // exactly the LEDs that the pattern lights inside the partition (else
  // 400). The first capture sets the meter up from the shot (records,
  // colour, type, zeroed planes, add_map of ones). A cell added twice gives
  // 401; the first capture's set-up then stays.
  int CheckInput(const Shot* shot, const LedSet* pos_set, const LedSet* value_set);
  // Scatters one capture's LEDs into the meter; `value_set` is required
  // (1 without it, before any bookkeeping).
  int Add(const Shot* shot, const LedSet* pos_set, const LedSet* value_set);
  // Scales `chroma` so that its mean (the whole plane, or the disc of radius
  // *in_radius around the column and row *in_point) becomes the target of
  // this meter's type. The disc must satisfy x - r >= 0, x + r <= columns,
  // y - r >= 0, y + r <= rows (405); elements past the plane at the
  // inclusive upper bounds are left out. 5 for an empty chroma, 109 for a
  // chroma that is not CV_32FC1.
  int Align(const float* target_xyz, const int* in_point, const int* in_radius);
  // Replaces every dead LED (state bit 0) by the 3 x 3 median of `chroma`.
  // An empty state marks no LED dead; a state of another size or type than
  // chroma gives 9; a chroma that is not CV_32FC1 gives 109.
  int FixDeadPoint();
  // Copies src's chroma where `mask` is non-zero: 5 for empty inputs, 9 when
  // the sizes (or chroma types) differ.
  int MergeChroma(const LedMeter& src, const cv::Mat& mask);
  // Loads the `count` meter files and saves to `out_fullname` a meter that
  // is the first file with its chroma replaced by the element-wise mean of
  // all chroma planes. 471 when count < 1 or the number of names differs;
  // 1 for an empty name; a load's or the save's own status; 9 when a file's
  // colour, type or chroma size and type differ from the first's. Nothing
  // is written when a step fails.
  static int MeterMean(std::vector<std::string> fullnames, int count,
                       const std::string& out_fullname);
  // Deep copy into dst: dst's records are released and given again through
  // its setters; type, colour, state, pos and chroma are copied (add_map is
  // left as it was).
  int CopyTo(LedMeter& dst) const;

  // Writes an 8-bit grey picture of `chroma` (largest magnitude -> 255) with
  // OpenCV's imwrite. Each LED becomes a block of `scale` x `scale` pixels
  // (nearest-neighbour resize; the picture side is rounded and must stay
  // within 1..65536, else 9). With `full_screen` the picture shows the whole
  // screen of the partition, black outside the region (9 without a
  // partition of the chroma's size). Each LED of `marks` (x = column, y =
  // row of the plane; marks outside it are skipped) is circled in white,
  // radius max(1, scale), thickness 1, line type 8. 5 for an empty chroma, 4 when the write is
  // refused.
  int ExportGrayChroma(const std::string& fullname, double scale = 1.0,
                       const std::vector<cv::Point>& marks = {}, bool full_screen = false) const;
  // Writes an 8-bit grey picture of one channel of `pos` (0: x, 1: y; else
  // 9), scaled so that its largest magnitude becomes 255. 5 for an empty
  // pos, 4 when the write is refused.
  int ExportPointImage(const std::string& fullname, int channel = 0) const;
};

}  // namespace aimhue

#endif  // AIMHUE_LED_METER_H_
