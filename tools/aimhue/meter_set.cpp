// Loading meters and repairing dead LEDs.
#include "meter_set.h"

#include <aimhue/status.h>

#include <filesystem>
#include <iostream>

#include <opencv2/core.hpp>

#include "command_error.h"
#include "measurement_check.h"

namespace aimhue {
namespace tool {
namespace {

// 255 where X, Y and Z of a primary are all 0; empty when the planes do
// not fit together.
cv::Mat DeadMask(const std::array<LedMeter, 3>& triple) {
  const cv::Mat& x = triple[0].chroma;
  for (const LedMeter& meter : triple) {
    if (meter.chroma.empty() || meter.chroma.type() != CV_32FC1 || meter.chroma.size() != x.size()) {
      return cv::Mat();
    }
  }
  cv::Mat dead = (triple[0].chroma == 0.0f);
  dead &= (triple[1].chroma == 0.0f);
  dead &= (triple[2].chroma == 0.0f);
  return dead;
}

void MarkDead(LedMeter& meter, const cv::Mat& dead) {
  if (meter.state.size() != meter.chroma.size() || meter.state.type() != CV_8UC1) {
    meter.state = cv::Mat::zeros(meter.chroma.size(), CV_8UC1);
  }
  cv::Mat marked = meter.state | 1;
  marked.copyTo(meter.state, dead);
}

const char* const kPrimaryNames[3] = {"red", "green", "blue"};
const char* const kAxisNames[3] = {"X", "Y", "Z"};

// "the green primary's Y meter", or the codes when they name no primary or
// axis.
std::string DescribeMeter(uint32_t color, uint32_t type) {
  std::string primary = "colour " + std::to_string(color);
  std::string axis = "type " + std::to_string(type);
  for (int i = 0; i < 3; ++i) {
    if (color == 1u << i) primary = std::string("the ") + kPrimaryNames[i] + " primary's";
    if (type == 1u << i) axis = std::string(kAxisNames[i]) + " meter";
  }
  return primary + " " + axis;
}

}  // namespace

void CheckMeterRole(const LedMeter& meter, const std::string& file, int primary, int axis) {
  const uint32_t color = 1u << primary;  // the colour codes 1, 2, 4 of red, green, blue
  const uint32_t type = 1u << axis;      // CIE_X, CIE_Y, CIE_Z
  if (meter.color == color && meter.type == type) return;
  throw CommandError(kExitLibrary, "'" + file + "' was given as " + DescribeMeter(color, type) +
                                       " but holds " + DescribeMeter(meter.color, meter.type));
}

MeterTriple Triple(const Meters& meters, int primary) {
  MeterTriple triple;
  for (int c = 0; c < 3; ++c) triple.pointers[c] = &meters[primary][c];
  return triple;
}

Meters LoadMeters(const MeterFiles& files) {
  Meters meters;
  for (int p = 0; p < 3; ++p) {
    for (int c = 0; c < 3; ++c) {
      CheckStatus(meters[p][c].Load(files[p][c]), "cannot load meter '" + files[p][c] + "'");
      CheckMeterRole(meters[p][c], files[p][c], p, c);
    }
  }
  return meters;
}

ScreenSize MeterScreen(const Meters& meters) {
  return ScreenSize{meters[0][0].chroma.cols, meters[0][0].chroma.rows};
}

std::string DescribeMeterFiles(const MeterFiles& files) {
  const std::filesystem::path folder = std::filesystem::path(files[0][0]).parent_path();
  std::string names;
  bool one_folder = true;
  for (const auto& primary : files) {
    for (const std::string& file : primary) {
      names += (names.empty() ? "" : " ") + file;
      one_folder = one_folder && std::filesystem::path(file).parent_path() == folder;
    }
  }
  if (!one_folder) return names;
  return "meter files in " + (folder.empty() ? std::string(".") : folder.string());
}

void WarnImplausibleMeters(const Meters& meters) {
  for (int p = 0; p < 3; ++p) {
    WarnImplausibleLeds(std::cerr, "aimhue", kPrimaryNames[p], CountImplausibleLeds(meters[p]),
                        static_cast<int64_t>(meters[p][0].chroma.total()));
  }
}

std::array<int64_t, 3> CountDeadLeds(const Meters& meters) {
  std::array<int64_t, 3> counts{};
  for (int p = 0; p < 3; ++p) {
    const cv::Mat dead = DeadMask(meters[p]);
    counts[p] = dead.empty() ? 0 : cv::countNonZero(dead);
  }
  return counts;
}

DeadLedSummary HandleDeadLeds(Meters& meters, bool repair) {
  DeadLedSummary summary;
  summary.found = CountDeadLeds(meters);
  summary.remaining = summary.found;
  if (!repair) return summary;
  summary.repaired = true;
  for (int p = 0; p < 3; ++p) {
    if (summary.found[p] == 0) continue;
    const cv::Mat dead = DeadMask(meters[p]);
    for (LedMeter& meter : meters[p]) {
      MarkDead(meter, dead);
      CheckStatus(meter.FixDeadPoint(), "cannot repair the dead LEDs");
    }
  }
  summary.remaining = CountDeadLeds(meters);
  return summary;
}

}  // namespace tool
}  // namespace aimhue
