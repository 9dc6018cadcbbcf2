// Loading meters, repairing dead LEDs and combining a screen.
#include "meter_set.h"

#include <aimhue/dead_leds.h>
#include <aimhue/screen.h>
#include <aimhue/status.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <iostream>

#include "command_error.h"
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

}  // namespace

std::vector<cv::Point2f> SampleChromaticities(const AimhueScreenPlanes& planes, std::size_t limit) {
  std::vector<cv::Point2f> points;
  const std::size_t total = static_cast<std::size_t>(planes.rows) * planes.cols;
  if (limit == 0 || total == 0) return points;
  const std::size_t stride = std::max<std::size_t>(1, (total + limit - 1) / limit);
  points.reserve(total / stride + 1);
  for (std::size_t i = 0; i < total; i += stride) {
    if (std::isfinite(planes.x[i]) && std::isfinite(planes.y[i])) {
      points.emplace_back(planes.x[i], planes.y[i]);
    }
  }
  return points;
}

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

MeterTriple Triple(const Meters& meters, int primary) {
  MeterTriple triple;
  for (int c = 0; c < 3; ++c) triple.pointers[c] = &meters[primary][c];
  return triple;
}

Meters LoadMeters(const MeterFiles& files) {
  Meters meters;
  for (int p = 0; p < kPrimaryCount; ++p) meters[p] = LoadPrimary(files, p);
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

DeadLedCounts HandleDeadLeds(PrimaryMeters& meters, bool repair) {
  LedMeter* const triple[3] = {&meters[0], &meters[1], &meters[2]};
  DeadLedCounts counts;
  CheckStatus(FixDeadLeds(triple, repair, &counts), "cannot repair the dead LEDs");
  return counts;
}

MeasuredScreen MeasureScreen(const std::function<PrimaryMeters(int)>& primary, bool repair,
                             std::size_t plotted_leds) {
  MeasuredScreen measured;
  measured.screen = CreateScreen();
  measured.dead.repaired = repair;
  for (int p = 0; p < kPrimaryCount; ++p) {
    PrimaryMeters meters = primary(p);
    const DeadLedCounts dead = HandleDeadLeds(meters, repair);
    measured.dead.found[p] = dead.found;
    measured.dead.remaining[p] = dead.remaining;
    // The screen takes the value planes over: no copy of them is made.
    LedMeter* const triple[3] = {&meters[0], &meters[1], &meters[2]};
    CheckStatus(AimhueScreenTakePrimary(measured.screen.get(), ColourOfPrimary(p), triple),
                std::string("the library refused the ") + kPrimaryNames[p] + " meters");
    // From here on the screen's combined planes serve the checks and the
    // plot; the rest of the meters goes when this iteration ends.
    AimhueScreenPlanes planes{};
    CheckStatus(AimhueGetScreenPlanes(measured.screen.get(), ColourOfPrimary(p), &planes),
                "cannot read the screen's planes");
    WarnImplausibleLeds(std::cerr, "aimhue", kPrimaryNames[p], CountImplausibleLeds(planes),
                        static_cast<int64_t>(planes.rows) * planes.cols);
    measured.leds[p] = SampleChromaticities(planes, plotted_leds);
  }
  int32_t rows = 0;
  int32_t cols = 0;
  CheckStatus(AimhueScreenSize(measured.screen.get(), &rows, &cols), "cannot size the screen");
  measured.size = ScreenSize{cols, rows};
  return measured;
}

}  // namespace tool
}  // namespace aimhue
