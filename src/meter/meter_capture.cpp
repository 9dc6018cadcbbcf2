// LedMeter::CheckInput and LedMeter::Add: building a meter from the captures
// of an interleaved grid of lit-LED patterns.
#include <aimhue/led_meter.h>
#include <aimhue/plume_log.h>
#include <aimhue/shot.h>
#include <aimhue/status.h>

#include <memory>
#include <type_traits>
#include <utility>

#include "common/exception_guard.h"
#include "common/record_rules.h"

namespace aimhue {
namespace {

// The shot tests asked of every capture: present, single-channel type,
// colour and pattern known.
constexpr uint32_t kCaptureShotChecks =
    kShotCheckNotNull | kShotCheckSingleChannel | kShotCheckHasColor | kShotCheckHasPattern;

bool SetIsEmpty(const LedSet& set) { return set.state.empty() || set.data.empty(); }

bool SetHasTypes(const LedSet& set, bool positions) {
  const int data_type = set.data.type();
  const bool data_ok =
      positions ? data_type == CV_32FC2 || data_type == CV_32SC2 : data_type == CV_32FC1;
  return data_ok && set.state.type() == CV_8UC1 && set.state.size() == set.data.size();
}

// The first capture of a measurement sets the meter up from the shot: its
// records, colour and type, zeroed planes of the partition's size (so that a
// measurement left incomplete holds no stale memory) and an add_map of ones
// over the pattern's grid. Everything is made before anything is stored.
void SetUpFirstCapture(const Shot& shot, cv::Size plane_size, bool with_positions, bool with_values,
                       LedMeter& meter) {
  auto copy = [](const auto& record) {
    using Record = std::decay_t<decltype(*record)>;
    return record != nullptr ? std::make_unique<Record>(*record) : nullptr;
  };
  auto partition = copy(shot.part);
  auto layer = copy(shot.layer);
  auto led_panel = copy(shot.panel);
  auto capture = copy(shot.capture);
  cv::Mat state = cv::Mat::zeros(plane_size, CV_8UC1);
  cv::Mat pos = with_positions ? cv::Mat::zeros(plane_size, CV_32FC2) : cv::Mat(0, 0, CV_32FC2);
  cv::Mat chroma = with_values ? cv::Mat::zeros(plane_size, CV_32FC1) : cv::Mat(0, 0, CV_32FC1);
  cv::Mat add_map = cv::Mat::ones(shot.pattern->interval_y, shot.pattern->interval_x, CV_8UC1);
  meter.partition = std::move(partition);
  meter.layer = std::move(layer);
  meter.led_panel = std::move(led_panel);
  meter.capture = std::move(capture);
  meter.color = static_cast<uint32_t>(*shot.color);
  meter.type = shot.type;
  meter.state = std::move(state);
  meter.pos = std::move(pos);
  meter.chroma = std::move(chroma);
  meter.add_map = std::move(add_map);
}

}  // namespace

int LedMeter::CheckInput(const Shot* shot, const LedSet* pos_set, const LedSet* value_set) {
  PlumeLogInfo("LedMeter::CheckInput");
  return GuardExceptions("LedMeter::CheckInput", [&]() -> int {
    if (shot == nullptr || (pos_set == nullptr && value_set == nullptr)) {
      PlumeLogError("LedMeter::CheckInput--Error :: input nullptr.");
      return kNullInput;
    }
    if (shot->image.channels() == 3) {
      PlumeLogError("LedMeter::CheckInput--Error :: multi channels");
      return kMultiChannelCapture;
    }
    const int shot_status = Shot::Check(kCaptureShotChecks, shot);
    if (shot_status != kOk) return shot_status;
    if ((pos_set != nullptr && SetIsEmpty(*pos_set)) ||
        (value_set != nullptr && SetIsEmpty(*value_set))) {
      PlumeLogError("LedMeter::CheckInput--Error :: inpute empty.");
      return kEmptyInput;
    }
    // A loaded shot has not been through the setters: its partition may be
    // missing, and it is read from here on.
    if (shot->part == nullptr) {
      PlumeLogError("LedMeter::CheckInput--Error :: partition missing.");
      return kBadPartition;
    }
    const Partition& part = *shot->part;
    const Pattern& pattern = *shot->pattern;
    if (pos_set != nullptr && value_set != nullptr &&
        (pos_set->data.size() != value_set->data.size() ||
         pattern.lighted_led_w != pos_set->data.cols ||
         pattern.lighted_led_h != pos_set->data.rows)) {
      PlumeLogError("LedMeter::CheckInput--Error :: mismatch lighted led width and height.");
      return kLitLedSizeMismatch;
    }
    // The partition places the captures; the pattern's interval is the grid
    // and its phase the cell.
    const int map_cols = pattern.interval_x;
    const int map_rows = pattern.interval_y;
    const int cell_x = pattern.loc_x;
    const int cell_y = pattern.loc_y;
    const cv::Size plane_size(part.w, part.h);
    if (!add_map.empty()) {
      if ((pos_set != nullptr) != !pos.empty() || (value_set != nullptr) != !chroma.empty()) {
        PlumeLogError("LedMeter::CheckInput--Error :: mismatch sequance.");
        return kOutOfSequence;
      }
      const bool same_set =
          static_cast<uint32_t>(*shot->color) == color && shot->type == type &&
          state.size() == plane_size && state.type() == CV_8UC1 &&
          (pos.empty() || (pos.size() == plane_size && pos.type() == CV_32FC2)) &&
          (chroma.empty() || (chroma.size() == plane_size && chroma.type() == CV_32FC1)) &&
          add_map.rows == map_rows && add_map.cols == map_cols && add_map.type() == CV_8UC1;
      if (!same_set) {
        PlumeLogError("LedMeter::CheckInput--Error :: data not in same set.");
        return kNotSameSet;
      }
    }
    // The checks that keep Add's scatter inside the planes come after the
    // ones above, so that where both fail the sequence and same-set codes
    // are the ones reported.
    if (part.w < 1 || part.h < 1 || map_cols < 1 || map_rows < 1 || map_cols > part.w ||
        map_rows > part.h || cell_x < 0 || cell_x >= map_cols || cell_y < 0 || cell_y >= map_rows) {
      PlumeLogError("LedMeter::CheckInput--Error :: invalid pattern.");
      return kBadPattern;
    }
    if ((pos_set != nullptr && !SetHasTypes(*pos_set, true)) ||
        (value_set != nullptr && !SetHasTypes(*value_set, false))) {
      PlumeLogError("LedMeter::CheckInput--Error :: data type mismatch.");
      return kBadImageDataType;
    }
    // Every given set must hold exactly the LEDs that this cell lights
    // inside the partition.
    const cv::Size lit(LitLedCount(part.w, map_cols, cell_x),
                       LitLedCount(part.h, map_rows, cell_y));
    if ((pos_set != nullptr && pos_set->data.size() != lit) ||
        (value_set != nullptr && value_set->data.size() != lit)) {
      PlumeLogError("LedMeter::CheckInput--Error :: mismatch lighted led width and height.");
      return kLitLedSizeMismatch;
    }
    if (add_map.empty()) {
      SetUpFirstCapture(*shot, plane_size, pos_set != nullptr, value_set != nullptr, *this);
    }
    uint8_t& cell = add_map.at<uint8_t>(cell_y, cell_x);
    if (cell == 0) {
      PlumeLogError("LedMeter::CheckInput--Error :: data has added.");
      return kCaptureAlreadyAdded;
    }
    cell = 0;
    return kOk;
  });
}

int LedMeter::Add(const Shot* shot, const LedSet* pos_set, const LedSet* value_set) {
  PlumeLogInfo("LedMeter::Add");
  return GuardExceptions("LedMeter::Add", [&]() -> int {
    if (value_set == nullptr) {
      PlumeLogError("LedMeter::Add--Error :: value_set is nullptr.");
      return kNullInput;
    }
    const int status = CheckInput(shot, pos_set, value_set);
    if (status != kOk) return status;

    const Pattern& pattern = *shot->pattern;
    cv::Mat positions;
    if (pos_set != nullptr) pos_set->data.convertTo(positions, CV_32F);
    for (int i = 0; i < value_set->data.rows; ++i) {
      const int row = pattern.loc_y + i * pattern.interval_y;
      const uint8_t* source_state = value_set->state.ptr<uint8_t>(i);
      const float* source_value = value_set->data.ptr<float>(i);
      uint8_t* target_state = state.ptr<uint8_t>(row);
      float* target_value = chroma.ptr<float>(row);
      for (int j = 0; j < value_set->data.cols; ++j) {
        const int column = pattern.loc_x + j * pattern.interval_x;
        target_state[column] = source_state[j];
        target_value[column] = source_value[j];
        if (!positions.empty()) pos.at<cv::Vec2f>(row, column) = positions.at<cv::Vec2f>(i, j);
      }
    }
    return kOk;
  });
}

}  // namespace aimhue
