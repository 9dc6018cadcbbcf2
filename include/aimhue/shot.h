// Shot: one camera capture of an LED display, the image together with the
// metadata that says which part of which screen was photographed, with which
// test pattern, by which camera and with which exposure settings.
#ifndef AIMHUE_SHOT_H_
#define AIMHUE_SHOT_H_

#include <aimhue/export.h>
#include <aimhue/records.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include <opencv2/core.hpp>

namespace aimhue {

// The lit-LED test pattern shown during a capture. The lit LEDs are the
// columns c with c mod interval_x == loc_x and the rows r with
// r mod interval_y == loc_y; lighted_led_w x lighted_led_h of them lie inside
// the partition.
struct Pattern {
  int32_t type;  // the caller's code, carried unchanged
  int32_t interval_x;
  int32_t interval_y;
  int32_t loc_x;
  int32_t loc_y;
  int32_t lighted_led_w;
  int32_t lighted_led_h;
};

// Camera and lens identity. Both texts are NUL-terminated inside their 64
// bytes and are copied whole.
struct Device {
  char id[64];
  int32_t cam_type;  // camera type; its last two decimal digits are the bit depth
  char lens_id[64];
  int32_t lens_type;
};

// Bits of the `flags` argument of Shot::Check. The tests run in the order of
// this list and the first failure decides.
enum ShotCheck : uint32_t {
  kShotCheckNotNull = 0x1,          // 1
  kShotCheckImageNotEmpty = 0x2,    // 1
  kShotCheckSingleChannel = 0x4,    // 110
  kShotCheckHasColor = 0x100,       // 111
  kShotCheckHasDevice = 0x1000,     // 105
  kShotCheckHasPattern = 0x10000,   // 104
  kShotCheckHasPanel = 0x100000,    // 106
  kShotCheckTypeSame = 0x10,        // pair form only, 101
  kShotCheckImageSizeSame = 0x20,   // pair form only, 101
};

// No operation throws: an exception inside one (memory exhausted, an
// element type or size that OpenCV does not handle) is logged as
// "Shot::<Method>--Error :: exception: <what>" and reported as 9, with the
// shot and every output unchanged.
class AIMHUE_EXPORT Shot {
 public:
  // Sub-records, absent (null) until a setter or a loader creates them; once
  // created, later calls overwrite them in place.
  std::unique_ptr<Partition> part;
  std::unique_ptr<LedPanel> panel;
  std::unique_ptr<Layer> layer;
  std::unique_ptr<Pattern> pattern;
  std::unique_ptr<int32_t> color;  // the displayed primary, the caller's code
  std::unique_ptr<Device> device;
  std::unique_ptr<Capture> capture;
  uint32_t type = 0;  // MeasureType bit set: what `image` holds
  cv::Mat image;      // CV_16U from the setters and readers, CV_32F after ConvertColorSpace

  Shot() = default;
  ~Shot() = default;
  Shot(Shot&&) noexcept = default;
  Shot& operator=(Shot&&) noexcept = default;
  Shot(const Shot&) = delete;  // CopyTo makes a deep copy
  Shot& operator=(const Shot&) = delete;

  // Releases the seven sub-records; `type` and `image` stay.
  void ClearMeta();

  // Metadata setters. Each copies its record, creating it on first use; a
  // refused record leaves the shot unchanged.
  // SetPartition: 108 unless the rectangle lies inside a positive screen.
  // SetLedPanel: 106 unless the panel width and height are both >= 1.
  // SetPattern: 104 unless interval >= 1 and 0 <= loc < interval in x and y.
  //   With a partition present, lit counts <= 0 are replaced by the counts
  //   that the partition gives; positive counts that disagree with them give
  //   103, and the pattern is stored as given all the same.
  int SetPartition(const Partition& value);
  int SetLedPanel(const LedPanel& value);
  int SetLayer(const Layer& value);
  int SetPattern(const Pattern& value);
  int SetColor(const int& value);
  int SetDevice(const Device& value);
  int SetCapture(const Capture& value);

  // Stores a deep copy of a CV_16UC1 image (else 109) of a single-channel
  // type: CIE_X, CIE_Y, CIE_Z, CAM_R, CAM_G or CAM_B (else 110).
  int SetImageSingle(const cv::Mat& image, uint32_t type);

  // Demosaics a CV_16UC1 mosaic with OpenCV's `demosaicing` and the Bayer
  // conversion code `bayer_type`, then stores plane 0, 1 or 2 (CAM_R, CAM_G,
  // CAM_B) or the whole three-channel image (CAM_RGB). Statuses: 110 for
  // another type, 109 for another image type, 112 for a zero Bayer code, and
  // 9 for a code that OpenCV refuses for this image or that does not give
  // three channels (a grey or four-channel code).
  int SetImageColor(const cv::Mat& raw, int bayer_type, uint32_t type);

  // Validation by a bit set of ShotCheck flags: 0, or the status of the first
  // failing test after its message. A null shot fails with status 1 whenever
  // any test is asked for, even without kShotCheckNotNull, rather than being
  // dereferenced. The pair form checks `b`, then `a`, then the pair tests.
  static int Check(uint32_t flags, const Shot* shot);
  static int Check(uint32_t flags, const Shot* a, const Shot* b);

  // Logs "Shot::Info", then the present sub-records, the type and the image
  // description, one line each at debug level.
  void Info() const;

  // The ".shot" file and buffer format: 'L', version 1, type, the image as a
  // matrix block, the present sub-records as tagged records, an end tag.
  // Save and ToBuffer store the image converted to CV_16U (rounded and
  // saturated), so float planes lose fractions and negative values. Save
  // gives 8 for a name not ending in ".shot" and 4 when the file cannot be
  // opened. GetBufferSize gives 5 (without a message) for an empty image;
  // ToBuffer writes an empty image all the same, gives 1 for null pointers
  // and 13 when *size is too small, leaving the buffer and *size untouched.
  // Load and FromBuffer give 8 (name), 2 (open), 10 (mark), 3 (version), or
  // 3 with "... -- Error data in file." when the content ends before its end
  // tag or its image block is damaged; a refused content leaves the shot
  // unchanged. They do not clear the shot first: sub-records missing from
  // the content keep their values, and no setter rule runs on loaded ones.
  int Save(const std::string& fullname) const;
  int Load(const std::string& fullname);
  int GetBufferSize(size_t* size) const;
  int ToBuffer(char* buffer, size_t* size) const;
  int FromBuffer(const char* buffer, size_t size);

  // Captures read from camera files (see BImage). A read failure gives 2;
  // otherwise the status of the image setter. No metadata is set.
  // From a raw dump of cols x rows samples; a non-zero Bayer code demosaics.
  int CreateFromRaw(const std::string& fullname, uint32_t type, int cols, int rows,
                    int bayer_type);
  // From a raw dump of a known camera type (120016 or 320012, else 100,
  // without opening the file).
  int CreateFromRaw(const std::string& fullname, int cam_type, uint32_t type);
  int ReadDng(const std::string& fullname, uint32_t type, int bayer_type);
  int ReadDngToupTek(const std::string& fullname, uint32_t type);

  // Image operations. A refused operation leaves the shot unchanged.
  // CAM_RGB CV_16UC3 image -> CIE plane(s) as 32-bit float through the 3 x 3
  // float matrix `in_color_trans`: statuses 110, 110, 109, 5, 9 in that order
  // of checks (type asked, shot type, image type, empty, matrix size). A
  // matrix that is not single-channel 32-bit float is converted to it.
  int ConvertColorSpace(uint32_t in_cie_type, const cv::Mat& in_color_trans);
  // Splits a three-channel CAM_RGB shot into the non-null single-channel
  // shots, each with a copy of this shot's metadata. 1, 5 or 109.
  int Split(Shot* r, Shot* g, Shot* b) const;
  // Rotates the image by a multiple of 90 degrees (counter-clockwise for 90:
  // the last column becomes the first row). A negative multiple of 360 is
  // refused with 9, as any other angle; an empty image with 5 (an angle of
  // 0 does nothing and succeeds).
  int Rotate(int roll_angle);
  // image = max(image - background.image, 0): 5 for an empty image, 101 for
  // a different size or type, 6 for 16-bit float samples.
  int RemoveBackground(const Shot& background);
  // Deep copy of metadata (through dst's setters), type and image.
  void CopyTo(Shot* dst) const;
  // 8-bit picture files through OpenCV's imwrite (format from the name's
  // extension): 5 for an empty image, 6 for 16-bit float samples, 4 when the
  // write is refused.
  int ExportColorImage(const std::string& fullname) const;
  int ExportGrayImage(const std::string& fullname) const;
  // Preset metadata of a point-locator capture; returns SetColor's status.
  // interval[0] must not be 0 when screen_wh is positive.
  int SetForPointLocator(int cam_type, const int screen_wh[2], const int interval[2], int index,
                         int lens_type);

 private:
  // Copies this shot's metadata into dst through dst's setters, after
  // clearing dst's metadata.
  void CopyMetaTo(Shot* dst) const;
};

}  // namespace aimhue

#endif  // AIMHUE_SHOT_H_
