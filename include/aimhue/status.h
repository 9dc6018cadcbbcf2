// Status codes shared by the whole library.
//
// Every operation returns a 32-bit status: 0 on success, otherwise the code
// of the first check that failed. A failed operation leaves its outputs
// unchanged unless its documentation says otherwise.
#ifndef AIMHUE_STATUS_H_
#define AIMHUE_STATUS_H_

#include <aimhue/export.h>

namespace aimhue {

enum Status : int {
  kOk = 0,
  kNullInput = 1,                // required pointer null, or a required input absent
  kOpenReadFailed = 2,           // file cannot be opened for reading, or an image read failed
  kBadVersion = 3,               // wrong format version
  kOpenWriteFailed = 4,          // file cannot be opened for writing, or a picture write failed
  kEmptyInput = 5,               // empty input
  kUnsupportedElementType = 6,   // unsupported image element type
  kInconsistentDescriptor = 7,   // inconsistent image descriptor
  kBadExtension = 8,             // file name does not end in the format's extension
  kOutOfRange = 9,               // value out of range, count other than 3, or mismatched inputs
  kBadByteOrderMark = 10,        // byte-order mark is not 'L'
  kEmptyPlane = 12,              // a required plane is empty
  kBufferTooSmall = 13,          // caller's buffer too small
  kUnknownCameraType = 100,      // unknown camera type
  kCaptureMismatch = 101,        // type or size mismatch between two captures
  kNotSameSet = 102,             // data not of the same set
  kPatternPartitionMismatch = 103,  // pattern and partition do not agree
  kBadPattern = 104,             // pattern invalid or missing
  kNoDevice = 105,               // device missing
  kBadLedPanel = 106,            // LED panel size invalid or missing
  kBadPartition = 108,           // partition or screen size invalid
  kBadImageDataType = 109,       // image data type wrong
  kUnsupportedCaptureType = 110, // unsupported capture type
  kNoColor = 111,                // colour missing
  kZeroBayerCode = 112,          // Bayer code zero
  kLitLedSizeMismatch = 400,     // lit-LED size mismatch
  kCaptureAlreadyAdded = 401,    // capture already added
  kMultiChannelCapture = 403,    // multi-channel capture
  kOutOfSequence = 404,          // inputs out of sequence
  kBadAlignment = 405,           // alignment point or radius invalid
  kWrongFileCount = 471,         // wrong number of files
  kTuneNotConverged = 550,       // coverage tuning did not converge
};

// A short English description of a status code ("value out of range, count
// other than 3, or inputs that do not belong together" for 9), for messages
// shown to people. Unknown codes give "unknown status". Never null.
AIMHUE_EXPORT const char* StatusText(int status);

}  // namespace aimhue

#endif  // AIMHUE_STATUS_H_
