// Descriptions of the library's status codes, for messages shown to people.
#include <aimhue/status.h>

namespace aimhue {

const char* StatusText(int status) {
  switch (status) {
    case kOk: return "success";
    case kNullInput: return "required pointer null, or a required input absent";
    case kOpenReadFailed: return "file cannot be opened for reading, or an image read failed";
    case kBadVersion: return "wrong format version";
    case kOpenWriteFailed: return "file cannot be opened for writing, or a picture write failed";
    case kEmptyInput: return "empty input";
    case kUnsupportedElementType: return "unsupported image element type";
    case kInconsistentDescriptor: return "inconsistent image descriptor";
    case kBadExtension: return "file name does not end in the format's extension";
    case kOutOfRange:
      return "value out of range, count other than 3, or inputs that do not belong together";
    case kBadByteOrderMark: return "byte-order mark is not 'L'";
    case kEmptyPlane: return "a required plane is empty";
    case kBufferTooSmall: return "caller's buffer too small";
    case kUnknownCameraType: return "unknown camera type";
    case kCaptureMismatch: return "type or size mismatch between two captures";
    case kNotSameSet: return "data not of the same set";
    case kPatternPartitionMismatch: return "pattern and partition do not agree";
    case kBadPattern: return "pattern invalid or missing";
    case kNoDevice: return "device missing";
    case kBadLedPanel: return "LED panel size invalid or missing";
    case kBadPartition: return "partition or screen size invalid";
    case kBadImageDataType: return "image data type wrong";
    case kUnsupportedCaptureType: return "unsupported capture type";
    case kNoColor: return "colour missing";
    case kZeroBayerCode: return "Bayer code zero";
    case kLitLedSizeMismatch: return "lit-LED size mismatch";
    case kCaptureAlreadyAdded: return "capture already added";
    case kMultiChannelCapture: return "multi-channel capture";
    case kOutOfSequence: return "inputs out of sequence";
    case kBadAlignment: return "alignment point or radius invalid";
    case kWrongFileCount: return "wrong number of files";
    case kTuneNotConverged: return "coverage tuning did not converge";
  }
  return "unknown status";
}

}  // namespace aimhue
