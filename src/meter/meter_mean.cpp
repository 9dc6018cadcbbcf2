// LedMeter::MeterMean: the element-wise mean of the value planes of several
// stored meters, written as a new meter file.
#include <aimhue/led_meter.h>
#include <aimhue/plume_log.h>
#include <aimhue/status.h>

#include "common/exception_guard.h"

namespace aimhue {

int LedMeter::MeterMean(std::vector<std::string> fullnames, int count,
                        const std::string& out_fullname) {
  PlumeLogInfo("LedMeter::MeterMean");
  // No file gives no mean: a count below one is refused like a wrong count.
  if (count < 1 || fullnames.size() != static_cast<size_t>(count)) {
    PlumeLogError("LedMeter::MeterMean--Error in file num");
    return kWrongFileCount;
  }
  return GuardExceptions("LedMeter::MeterMean", [&] {
    LedMeter result;
    for (int k = 0; k < count; ++k) {
      if (fullnames[k].empty()) {
        PlumeLogError("LedMeter::MeterMean--Error :: empty file name");
        return static_cast<int>(kNullInput);
      }
      if (k == 0) {
        const int status = result.Load(fullnames[k]);
        if (status != kOk) return status;
        continue;
      }
      LedMeter scratch;
      const int status = scratch.Load(fullnames[k]);
      if (status != kOk) return status;
      if (scratch.color != result.color) {
        PlumeLogError("LedMeter::MeterMean--Error files are not in same color");
        return static_cast<int>(kOutOfRange);
      }
      if (scratch.type != result.type) {
        PlumeLogError("LedMeter::MeterMean--Error files are not in same type");
        return static_cast<int>(kOutOfRange);
      }
      // Planes that cannot be added element by element are refused rather
      // than handed to the addition.
      if (scratch.chroma.size() != result.chroma.size() ||
          scratch.chroma.type() != result.chroma.type()) {
        PlumeLogError("LedMeter::MeterMean--Error files are not in same size");
        return static_cast<int>(kOutOfRange);
      }
      cv::add(result.chroma, scratch.chroma, result.chroma);
    }
    result.chroma.convertTo(result.chroma, -1, 1.0 / count);
    return result.Save(out_fullname);
  });
}

}  // namespace aimhue
