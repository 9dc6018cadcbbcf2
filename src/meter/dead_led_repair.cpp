// Dead-LED repair by neighbourhood medians, computed only where needed.
#include "meter/dead_led_repair.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <vector>

#include <opencv2/imgproc.hpp>

namespace aimhue {
namespace {

constexpr int kMedianSize = 3;
constexpr int kNeighbourhood = kMedianSize * kMedianSize;
constexpr uint64_t kDeadBitInEveryByte = 0x0101010101010101ull * kDeadLedBit;

// The dead LEDs of one row, in column order. State bytes are tested 32 at a
// time (four words OR-ed together), so that a row without dead LEDs costs a
// fraction of a byte loop.
void FindDeadInRow(const uint8_t* states, int cols, std::vector<int>& columns) {
  constexpr int kBlock = 32;
  int col = 0;
  for (; col + kBlock <= cols; col += kBlock) {
    uint64_t words[kBlock / 8];
    std::memcpy(words, states + col, sizeof words);
    if (((words[0] | words[1] | words[2] | words[3]) & kDeadBitInEveryByte) == 0) continue;
    for (int k = col; k < col + kBlock; ++k) {
      if (states[k] & kDeadLedBit) columns.push_back(k);
    }
  }
  for (; col < cols; ++col) {
    if (states[col] & kDeadLedBit) columns.push_back(col);
  }
}

struct DeadLed {
  int row;
  int col;
  float median;
  bool fromFilter;  // the median is the filter's
};

// The median of the nine values when it is the same whichever way the
// values are compared. Without NaNs every comparison is a total order, and
// values that compare equal have the same bits unless they are +0 and -0;
// then any selection gives the bits the filter gives. A NaN (incomparable)
// or both zeros together make the filter's answer depend on its order of
// comparisons; those neighbourhoods are left to the filter itself. (A dead
// LED usually reads 0; a single kind of zero takes the fast way.)
bool OrderFreeMedian(std::array<float, kNeighbourhood>& around, float& median) {
  bool positiveZero = false;
  bool negativeZero = false;
  for (const float value : around) {
    if (std::isnan(value)) return false;
    if (value == 0.0f) (std::signbit(value) ? negativeZero : positiveZero) = true;
  }
  if (positiveZero && negativeZero) return false;
  std::nth_element(around.begin(), around.begin() + kNeighbourhood / 2, around.end());
  median = around[kNeighbourhood / 2];
  return true;
}

}  // namespace

int64_t RepairDeadLeds(const cv::Mat& state, cv::Mat& values) {
  const int rows = values.rows;
  const int cols = values.cols;
  std::vector<DeadLed> dead;
  std::vector<int> columns;
  bool needsFilter = false;
  for (int row = 0; row < rows; ++row) {
    columns.clear();
    FindDeadInRow(state.ptr<uint8_t>(row), cols, columns);
    if (columns.empty()) continue;
    const float* lines[kMedianSize] = {values.ptr<float>(std::max(row - 1, 0)),
                                       values.ptr<float>(row),
                                       values.ptr<float>(std::min(row + 1, rows - 1))};
    for (const int col : columns) {
      const int left = std::max(col - 1, 0);
      const int right = std::min(col + 1, cols - 1);
      std::array<float, kNeighbourhood> around;
      for (int line = 0; line < kMedianSize; ++line) {
        around[3 * line] = lines[line][left];
        around[3 * line + 1] = lines[line][col];
        around[3 * line + 2] = lines[line][right];
      }
      DeadLed led{row, col, 0.0f, false};
      led.fromFilter = !OrderFreeMedian(around, led.median);
      needsFilter = needsFilter || led.fromFilter;
      dead.push_back(led);
    }
  }
  cv::Mat filtered;
  if (needsFilter) cv::medianBlur(values, filtered, kMedianSize);
  // Written only after every median is known: a dead LED's neighbours are
  // taken as they were before the repair.
  for (const DeadLed& led : dead) {
    float& value = values.at<float>(led.row, led.col);
    value = led.fromFilter ? filtered.at<float>(led.row, led.col) : led.median;
  }
  return static_cast<int64_t>(dead.size());
}

}  // namespace aimhue
