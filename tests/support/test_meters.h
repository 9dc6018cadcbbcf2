// Records for tests: meters whose planes hold one value, byte snapshots of
// meters and shots, tables of refused calls, and the order of checks.
#ifndef AIMHUE_TESTS_SUPPORT_TEST_METERS_H_
#define AIMHUE_TESTS_SUPPORT_TEST_METERS_H_

#include <aimhue/led_meter.h>
#include <aimhue/shot.h>
#include <aimhue/status.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <functional>
#include <iterator>
#include <limits>
#include <string>
#include <vector>

#include "support/log_capture.h"

namespace aimhue::testing {

// A meter of `type` and `color` with a partition, a layer, and rows x cols
// planes: chroma filled with `value`, pos and state zero.
inline LedMeter MakeMeter(uint32_t type, uint32_t color, int rows = 2, int cols = 3,
                          float value = 1.0f) {
  LedMeter meter;
  meter.type = type;
  meter.color = color;
  meter.partition = std::make_unique<Partition>(Partition{0, 0, cols, rows, cols, rows});
  meter.layer = std::make_unique<Layer>(Layer{0, 1.0f, 255});
  meter.chroma = cv::Mat(rows, cols, CV_32FC1, cv::Scalar(value));
  meter.pos = cv::Mat::zeros(rows, cols, CV_32FC2);
  meter.state = cv::Mat::zeros(rows, cols, CV_8UC1);
  return meter;
}

// A meter of rows x cols LEDs (at least 3) with every record, random state,
// positions and values, and a NaN, a -0 and a denormal as its last three
// values: all of it must survive a round trip bit for bit.
inline LedMeter MeterWithEveryRecord(int rows, int cols) {
  LedMeter meter;
  meter.color = 2;
  meter.type = CIE_Y;
  meter.state.create(rows, cols, CV_8UC1);
  meter.pos.create(rows, cols, CV_32FC2);
  meter.chroma.create(rows, cols, CV_32FC1);
  cv::randu(meter.state, 0, 256);
  cv::randu(meter.pos, -1e4, 1e4);
  cv::randu(meter.chroma, 0.0, 1e3);
  const float specials[] = {std::numeric_limits<float>::quiet_NaN(), -0.0f,
                            std::numeric_limits<float>::denorm_min()};
  std::copy(std::begin(specials), std::end(specials), meter.chroma.ptr<float>() + rows * cols - 3);
  meter.SetPartition(Partition{0, 0, cols, rows, cols, rows});
  meter.SetLedPanel(LedPanel{1, 2, 3, 16, 8, 2.5f});
  meter.SetLayer(Layer{-1, 0.75f, 64});
  meter.SetCapture(Capture{100, 2, 8, -3, 5});
  return meter;
}

// Whether two images have the same type, size and values.
inline bool SameImage(const cv::Mat& a, const cv::Mat& b) {
  return a.type() == b.type() && a.size() == b.size() && cv::norm(a, b, cv::NORM_INF) == 0.0;
}

// Whether two planes have the same type, size and bits, row by row (NaN equals NaN).
inline bool SamePlaneBits(const cv::Mat& a, const cv::Mat& b) {
  if (a.size != b.size || a.type() != b.type()) return false;
  for (int row = 0; row < a.rows; ++row) {
    if (std::memcmp(a.ptr(row), b.ptr(row), a.cols * a.elemSize()) != 0) return false;
  }
  return true;
}

// Type, shape, buffer address and content of a plane.
inline std::string Bytes(const cv::Mat& plane) {
  const cv::Mat whole = plane.clone();
  return std::to_string(plane.type()) + ' ' + std::to_string(plane.rows) + 'x' +
         std::to_string(plane.cols) + '@' + std::to_string(uintptr_t(plane.data)) +
         std::string(reinterpret_cast<const char*>(whole.data), whole.total() * whole.elemSize());
}

template <typename Record>
std::string Bytes(const std::unique_ptr<Record>& record) {
  return record ? std::string(reinterpret_cast<const char*>(record.get()), sizeof(Record)) : "-";
}

// Everything a meter holds, for "left unchanged" checks.
inline std::string Bytes(const LedMeter& m) {
  return std::to_string(m.type) + ' ' + std::to_string(m.color) + Bytes(m.partition) +
         Bytes(m.layer) + Bytes(m.led_panel) + Bytes(m.capture) + Bytes(m.state) + Bytes(m.pos) +
         Bytes(m.chroma) + Bytes(m.add_map);
}

// Everything a shot holds: its stream and its image buffer.
inline std::string Bytes(const Shot& shot) {
  std::string stream(4096 + shot.image.total() * shot.image.elemSize(), '\0');
  size_t size = stream.size();
  const int status = shot.ToBuffer(stream.data(), &size);
  return std::to_string(status) + ' ' + std::to_string(shot.type) +
         (status == kOk ? stream.substr(0, size) : "") + Bytes(shot.image);
}

// A call that the record must refuse with `status` and exactly `errors`.
template <typename Record>
struct Refusal {
  std::function<int(Record&)> call;
  int status;
  Lines errors;
};

// Runs each refusal in turn and expects its status and lines, and `bytes`
// of the record as they were before.
template <typename Record>
void ExpectRefusals(
    Record& record, const std::vector<Refusal<Record>>& refusals,
    const std::function<std::string(const Record&)>& bytes = [](const Record& r) {
      return Bytes(r);
    }) {
  const std::string before = bytes(record);
  for (size_t i = 0; i < refusals.size(); ++i) {
    LogCapture log;
    EXPECT_EQ(refusals[i].call(record), refusals[i].status) << "refusal " << i;
    EXPECT_EQ(log.Errors(), refusals[i].errors) << "refusal " << i;
    EXPECT_EQ(bytes(record), before) << "refusal " << i;
  }
}

// A fault that `check` reports with `status` and the one line `error`, and
// its repair.
struct Fault {
  int status;
  std::string error;
  std::function<void()> repair;
};

// With every fault present at once, `check` reports the first in order;
// repairing it exposes the next, until the check passes without a line.
inline void ExpectOrder(const std::function<int()>& check, const std::vector<Fault>& faults) {
  for (const Fault& fault : faults) {
    LogCapture log;
    EXPECT_EQ(check(), fault.status) << fault.error;
    EXPECT_EQ(log.Errors(), Lines{fault.error});
    fault.repair();
  }
  LogCapture log;
  EXPECT_EQ(check(), kOk);
  EXPECT_EQ(log.Errors(), Lines{});
}

}  // namespace aimhue::testing

#endif  // AIMHUE_TESTS_SUPPORT_TEST_METERS_H_
