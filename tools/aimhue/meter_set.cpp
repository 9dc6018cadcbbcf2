// Loading meters, repairing dead LEDs and combining a screen.
#include "meter_set.h"

#include <aimhue/screen.h>
#include <aimhue/status.h>

#include <filesystem>
#include <iostream>

#include "command_error.h"
#include "gamut_plot.h"
#include "measurement_check.h"

namespace aimhue {
namespace tool {
namespace {

const char* const kPrimaryNames[kPrimaryCount] = {"red", "green", "blue"};
const char* const kAxisNames[3] = {"X", "Y", "Z"};

// "the green primary's Y meter", or the codes when they name no primary or
// axis.
std::string DescribeMeter(uint32_t color, uint32_t type) {
  std::string primary = "colour " + std::to_string(color);
  std::string axis = "type " + std::to_string(type);
  const int index = PrimaryIndex(color);
  if (index >= 0) primary = std::string("the ") + kPrimaryNames[index] + " primary's";
  for (int i = 0; i < 3; ++i) {
    if (type == 1u << i) axis = std::string(kAxisNames[i]) + " meter";
  }
  return primary + " " + axis;
}

// 255 where X, Y and Z are all 0; empty when the planes do not fit together.
cv::Mat DeadMask(const PrimaryMeters& triple) {
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

}  // namespace

void CheckMeterRole(const LedMeter& meter, const std::string& file, int primary, int axis) {
  const uint32_t color = ColourOfPrimary(primary);
  const uint32_t type = 1u << axis;  // CIE_X, CIE_Y, CIE_Z
  if (meter.color == color && meter.type == type) return;
  throw CommandError(kExitLibrary, "'" + file + "' was given as " + DescribeMeter(color, type) +
                                       " but holds " + DescribeMeter(meter.color, meter.type));
}

PrimaryMeters LoadPrimary(const MeterFiles& files, int primary) {
  PrimaryMeters meters;
  for (int c = 0; c < 3; ++c) {
    const std::string& file = files[primary][c];
    CheckStatus(meters[c].Load(file), "cannot load meter '" + file + "'");
    CheckMeterRole(meters[c], file, primary, c);
  }
  return meters;
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

int64_t CountDeadLeds(const PrimaryMeters& meters) {
  const cv::Mat dead = DeadMask(meters);
  return dead.empty() ? 0 : cv::countNonZero(dead);
}

DeadLeds HandleDeadLeds(PrimaryMeters& meters, bool repair) {
  DeadLeds counts;
  counts.found = CountDeadLeds(meters);
  counts.remaining = counts.found;
  if (!repair || counts.found == 0) return counts;
  const cv::Mat dead = DeadMask(meters);
  for (LedMeter& meter : meters) {
    MarkDead(meter, dead);
    CheckStatus(meter.FixDeadPoint(), "cannot repair the dead LEDs");
  }
  counts.remaining = CountDeadLeds(meters);
  return counts;
}

MeasuredScreen MeasureScreen(const std::function<PrimaryMeters(int)>& primary, bool repair,
                             std::size_t plotted_leds) {
  MeasuredScreen measured;
  measured.screen = CreateScreen();
  measured.dead.repaired = repair;
  for (int p = 0; p < kPrimaryCount; ++p) {
    PrimaryMeters meters = primary(p);
    const DeadLeds dead = HandleDeadLeds(meters, repair);
    measured.dead.found[p] = dead.found;
    measured.dead.remaining[p] = dead.remaining;
    WarnImplausibleLeds(std::cerr, "aimhue", kPrimaryNames[p], CountImplausibleLeds(meters),
                        static_cast<int64_t>(meters[0].chroma.total()));
    measured.leds[p] = LedChromaticities(meters[0].chroma, meters[1].chroma, meters[2].chroma,
                                         plotted_leds);
    const LedMeter* const triple[3] = {&meters[0], &meters[1], &meters[2]};
    CheckStatus(AimhueScreenSetPrimary(measured.screen.get(), ColourOfPrimary(p), triple),
                std::string("the library refused the ") + kPrimaryNames[p] + " meters");
  }
  int32_t rows = 0;
  int32_t cols = 0;
  CheckStatus(AimhueScreenSize(measured.screen.get(), &rows, &cols), "cannot size the screen");
  measured.size = ScreenSize{cols, rows};
  return measured;
}

}  // namespace tool
}  // namespace aimhue
