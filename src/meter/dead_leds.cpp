// Finding, marking and repairing the dead LEDs of one primary.
#include <aimhue/dead_leds.h>
#include <aimhue/status.h>

#include <vector>

#include "common/exception_guard.h"

namespace aimhue {
namespace {

// The value planes of a triple, Z empty for a null Z meter; false when they
// are not 32-bit float planes of one size.
bool ValuePlanes(const LedMeter* const* triple, cv::Mat (&planes)[3]) {
  for (int role = 0; role < 3; ++role) {
    if (triple[role] == nullptr) continue;
    const cv::Mat& values = triple[role]->chroma;
    if (values.empty() || values.type() != CV_32FC1 ||
        values.size() != triple[0]->chroma.size()) {
      return false;
    }
    planes[role] = values;
  }
  return true;
}

// Calls `dead(row, col)` for each LED whose values are all 0. The X values
// are first tested a block at a time for any zero (a loop without branches
// that the compiler turns into vector code); only a block that holds one is
// looked at LED by LED, so a screen with few dead LEDs costs little more
// than reading its X plane.
template <typename OnDead>
void ForEachDeadLed(const cv::Mat (&planes)[3], OnDead dead) {
  constexpr int kBlock = 64;
  const bool hasZ = !planes[2].empty();
  const int cols = planes[0].cols;
  for (int row = 0; row < planes[0].rows; ++row) {
    const float* xs = planes[0].ptr<float>(row);
    const float* ys = planes[1].ptr<float>(row);
    const float* zs = hasZ ? planes[2].ptr<float>(row) : nullptr;
    const auto check = [&](int begin, int end) {
      for (int col = begin; col < end; ++col) {
        if (xs[col] == 0.0f && ys[col] == 0.0f && (zs == nullptr || zs[col] == 0.0f)) {
          dead(row, col);
        }
      }
    };
    int col = 0;
    for (; col + kBlock <= cols; col += kBlock) {
      int zeros = 0;
      for (int k = col; k < col + kBlock; ++k) zeros |= static_cast<int>(xs[k] == 0.0f);
      if (zeros != 0) check(col, col + kBlock);
    }
    check(col, cols);
  }
}

int64_t CountDead(const cv::Mat (&planes)[3]) {
  int64_t count = 0;
  ForEachDeadLed(planes, [&](int, int) { ++count; });
  return count;
}

void MarkDead(LedMeter& meter, const std::vector<cv::Point>& dead) {
  if (meter.state.size() != meter.chroma.size() || meter.state.type() != CV_8UC1) {
    meter.state = cv::Mat::zeros(meter.chroma.size(), CV_8UC1);
  }
  for (const cv::Point& led : dead) meter.state.at<uint8_t>(led) |= kDeadLedBit;
}

}  // namespace

int FixDeadLeds(LedMeter* const* triple, bool repair, DeadLedCounts* out) {
  if (triple == nullptr || out == nullptr || triple[0] == nullptr || triple[1] == nullptr) {
    return kNullInput;
  }
  return GuardExceptions("FixDeadLeds", [&]() -> int {
    cv::Mat planes[3];
    if (!ValuePlanes(triple, planes)) {
      *out = DeadLedCounts{};
      return kOk;
    }
    std::vector<cv::Point> dead;
    ForEachDeadLed(planes, [&](int row, int col) { dead.emplace_back(col, row); });
    DeadLedCounts counts;
    counts.found = static_cast<int64_t>(dead.size());
    counts.remaining = counts.found;
    if (repair && counts.found > 0) {
      for (int role = 0; role < 3; ++role) {
        if (triple[role] == nullptr) continue;
        MarkDead(*triple[role], dead);
        const int status = triple[role]->FixDeadPoint();
        if (status != kOk) return status;
      }
      counts.remaining = CountDead(planes);
    }
    *out = counts;
    return static_cast<int>(kOk);
  });
}

}  // namespace aimhue
