// The exported screen functions: three primaries combined once, then
// searched, counted and judged by the engine operations the meter-triple
// functions use.
#include <aimhue/led_meter.h>
#include <aimhue/plume_log.h>
#include <aimhue/screen.h>
#include <aimhue/status.h>

#include <cstring>
#include <memory>
#include <new>

#include "api/mask_image.h"
#include "api/screen.h"
#include "common/exception_guard.h"
#include "engine/aimhue.h"
#include "engine/coverage_misses.h"
#include "engine/percent_of_target.h"

namespace aimhue {
namespace {

const char* const kPrimaryNames[kPrimaryCount] = {"red", "green", "blue"};

// 12 with one error line unless all three primaries are set.
int CheckComplete(const char* who, const Screen& screen) {
  for (int primary = 0; primary < kPrimaryCount; ++primary) {
    if (!screen.Has(primary)) {
      PlumeLogError("%s--Error :: the screen has no %s primary", who, kPrimaryNames[primary]);
      return kEmptyPlane;
    }
  }
  return kOk;
}

// The colour code the triple's meters carry (the first meter present).
bool TripleColour(const LedMeter* const* triple, uint32_t& colour) {
  for (int role = 0; role < 3; ++role) {
    if (triple[role] != nullptr) {
      colour = triple[role]->color;
      return true;
    }
  }
  return false;
}

// The screen keeps its own planes: x and y are new, L is the Y meter's
// plane, copied so that the meter may be freed or changed afterwards.
int CombineOwned(const LedMeter* const* triple, ChromaLxy& out) {
  ChromaLxy combined;
  const int status = ChromaLxy::Combine(combined, triple[0], triple[1], triple[2]);
  if (status != kOk) return status;
  combined.L = combined.L.clone();
  out = combined;
  return kOk;
}

}  // namespace
}  // namespace aimhue

using aimhue::CheckComplete;
using aimhue::GuardExceptions;
using aimhue::kNullInput;
using aimhue::kOk;
using aimhue::kOutOfRange;
using aimhue::Screen;

extern "C" {

int AimhueCreateScreen(AimhueScreen* out) {
  if (out == nullptr) return kNullInput;
  *out = nullptr;
  return GuardExceptions("AimhueCreateScreen", [&] {
    *out = std::make_unique<Screen>().release();
    return static_cast<int>(kOk);
  });
}

void AimhueDestroyScreen(AimhueScreen screen) {
  std::unique_ptr<Screen> owned(screen);
}

int AimhueScreenSetPrimary(AimhueScreen screen, uint32_t colour,
                           const aimhue::LedMeter* const* triple) {
  constexpr char kWho[] = "AimhueScreenSetPrimary";
  if (screen == nullptr || triple == nullptr) return kNullInput;
  const int primary = aimhue::PrimaryIndex(colour);
  if (primary < 0) {
    PlumeLogError("%s--Error :: colour %u is not a primary", kWho, colour);
    return kOutOfRange;
  }
  return GuardExceptions(kWho, [&] {
    aimhue::ChromaLxy combined;
    int status = aimhue::CombineOwned(triple, combined);
    if (status != kOk) return status;
    uint32_t carried = 0;
    if (aimhue::TripleColour(triple, carried) && carried != colour) {
      PlumeLogError("%s--Error :: meters of colour %u given as colour %u", kWho, carried, colour);
      return static_cast<int>(kOutOfRange);
    }
    for (int other = 0; other < aimhue::kPrimaryCount; ++other) {
      if (other == primary || !screen->Has(other)) continue;
      const cv::Size size = screen->primaries[other].L.size();
      if (combined.L.size() != size) {
        PlumeLogError("%s--Error :: planes of %d x %d on a screen of %d x %d", kWho,
                      combined.L.rows, combined.L.cols, size.height, size.width);
        return static_cast<int>(kOutOfRange);
      }
    }
    screen->primaries[primary] = combined;
    return static_cast<int>(kOk);
  });
}

int AimhueScreenSize(AimhueScreen screen, int32_t* rows, int32_t* cols) {
  if (screen == nullptr || rows == nullptr || cols == nullptr) return kNullInput;
  for (const aimhue::ChromaLxy& set : screen->primaries) {
    if (set.L.empty()) continue;
    *rows = set.L.rows;
    *cols = set.L.cols;
    return kOk;
  }
  return aimhue::kEmptyPlane;
}

int AimhueSearchScreen(AimhueHandle handle, AimhueScreen screen) {
  constexpr char kWho[] = "AimhueSearchScreen";
  if (handle == nullptr || screen == nullptr) return kNullInput;
  const int status = CheckComplete(kWho, *screen);
  if (status != kOk) return status;
  const auto& sets = screen->primaries;
  return GuardExceptions(kWho, [&] { return handle->Search(&sets[0], &sets[1], &sets[2]); });
}

int AimhueCalcPercentNGScreen(AimhueHandle handle, AimhueScreen screen,
                              aimhue::Coverage* out_coverage) {
  constexpr char kWho[] = "AimhueCalcPercentNGScreen";
  if (handle == nullptr || screen == nullptr) return kNullInput;
  const int status = CheckComplete(kWho, *screen);
  if (status != kOk) return status;
  const auto& sets = screen->primaries;
  return GuardExceptions(kWho, [&] {
    return handle->CalcPercentNG(&sets[0], &sets[1], &sets[2], out_coverage);
  });
}

int AimhueJudgeNGScreen(AimhueHandle handle, AimhueScreen screen, bool* out_ng,
                        aimhue::Coverage* out_coverage) {
  constexpr char kWho[] = "AimhueJudgeNGScreen";
  if (handle == nullptr || screen == nullptr || out_ng == nullptr) return kNullInput;
  const int status = CheckComplete(kWho, *screen);
  if (status != kOk) return status;
  const auto& sets = screen->primaries;
  return GuardExceptions(kWho, [&] {
    aimhue::Coverage coverage{};
    *out_ng = handle->JudgeNG(&sets[0], &sets[1], &sets[2], &coverage);
    if (out_coverage != nullptr) *out_coverage = coverage;
    return static_cast<int>(kOk);
  });
}

int AimhueCalcScreenCoverage(AimhueScreen screen, const float* targets, const AimhueImage* mask,
                             aimhue::Coverage* out_coverage, uint8_t* out_misses,
                             uint64_t misses_size) {
  constexpr char kWho[] = "AimhueCalcScreenCoverage";
  if (screen == nullptr || targets == nullptr) return kNullInput;
  int status = CheckComplete(kWho, *screen);
  if (status != kOk) return status;
  return GuardExceptions(kWho, [&] {
    const auto& sets = screen->primaries;
    cv::Mat maskPlane;  // empty: every LED counts
    if (mask != nullptr) {
      status = aimhue::CopyMaskImage(*mask, maskPlane);
      if (status != kOk) return status;
    }
    const uint64_t leds = static_cast<uint64_t>(sets[0].L.total());
    if (out_misses != nullptr && misses_size < leds) {
      PlumeLogError("%s--Error :: miss plane of %llu bytes for %llu LEDs", kWho,
                    static_cast<unsigned long long>(misses_size),
                    static_cast<unsigned long long>(leds));
      return static_cast<int>(aimhue::kBufferTooSmall);
    }
    aimhue::Coverage coverage{};
    status = aimhue::PercentOfTarget(&sets[0], &sets[1], &sets[2], targets, coverage, maskPlane);
    if (status != kOk) return status;
    if (out_misses != nullptr) {
      status = aimhue::CoverageMisses(&sets[0], &sets[1], &sets[2], targets, maskPlane, out_misses);
      if (status != kOk) return status;
    }
    if (out_coverage != nullptr) *out_coverage = coverage;
    return static_cast<int>(kOk);
  });
}

}  // extern "C"
