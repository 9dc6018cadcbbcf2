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

// 9 with one error line when the triple carries another colour code than
// `colour`, or when its planes' size differs from that of another primary
// already on the screen.
int CheckFits(const char* who, const Screen& screen, int primary, uint32_t colour,
              const LedMeter* const* triple, cv::Size size) {
  uint32_t carried = 0;
  if (TripleColour(triple, carried) && carried != colour) {
    PlumeLogError("%s--Error :: meters of colour %u given as colour %u", who, carried, colour);
    return kOutOfRange;
  }
  for (int other = 0; other < kPrimaryCount; ++other) {
    if (other == primary || !screen.Has(other)) continue;
    const cv::Size held = screen.primaries[other].L.size();
    if (size != held) {
      PlumeLogError("%s--Error :: planes of %d x %d on a screen of %d x %d", who, size.height,
                    size.width, held.height, held.width);
      return kOutOfRange;
    }
  }
  return kOk;
}

// 1 for a null screen or triple; 9 with one error line for a colour that is
// not a primary; otherwise 0 with the primary's index.
int PrimaryOf(const char* who, AimhueScreen screen, uint32_t colour, const void* triple,
              int& primary) {
  if (screen == nullptr || triple == nullptr) return kNullInput;
  primary = PrimaryIndex(colour);
  if (primary < 0) {
    PlumeLogError("%s--Error :: colour %u is not a primary", who, colour);
    return kOutOfRange;
  }
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
  int primary = -1;
  const int status = aimhue::PrimaryOf(kWho, screen, colour, triple, primary);
  if (status != kOk) return status;
  return GuardExceptions(kWho, [&] {
    aimhue::ChromaLxy combined;
    int checked = aimhue::ChromaLxy::CombineOwned(combined, triple[0], triple[1], triple[2]);
    if (checked == kOk) {
      checked = aimhue::CheckFits(kWho, *screen, primary, colour, triple, combined.L.size());
    }
    if (checked == kOk) screen->primaries[primary] = combined;
    return checked;
  });
}

int AimhueScreenTakePrimary(AimhueScreen screen, uint32_t colour, aimhue::LedMeter* const* triple) {
  constexpr char kWho[] = "AimhueScreenTakePrimary";
  int primary = -1;
  const int status = aimhue::PrimaryOf(kWho, screen, colour, triple, primary);
  if (status != kOk) return status;
  return GuardExceptions(kWho, [&] {
    // Every check before the meters are touched: a refusal leaves them whole.
    int checked = aimhue::ChromaLxy::Check("ChromaLxy::Combine", triple[0], triple[1], triple[2]);
    if (checked == kOk) {
      checked = aimhue::CheckFits(kWho, *screen, primary, colour, triple, triple[1]->chroma.size());
    }
    if (checked != kOk) return checked;
    aimhue::ChromaLxy combined;
    checked = aimhue::ChromaLxy::CombineTaking(combined, triple[0], triple[1], triple[2]);
    if (checked == kOk) screen->primaries[primary] = combined;
    return checked;
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

int AimhueGetScreenPlanes(AimhueScreen screen, uint32_t colour, AimhueScreenPlanes* out) {
  constexpr char kWho[] = "AimhueGetScreenPlanes";
  if (screen == nullptr || out == nullptr) return kNullInput;
  const int primary = aimhue::PrimaryIndex(colour);
  if (primary < 0) {
    PlumeLogError("%s--Error :: colour %u is not a primary", kWho, colour);
    return kOutOfRange;
  }
  if (!screen->Has(primary)) {
    PlumeLogError("%s--Error :: the screen has no %s primary", kWho,
                  aimhue::kPrimaryNames[primary]);
    return aimhue::kEmptyPlane;
  }
  // The screen's planes are its own continuous ones (CombineOwned).
  const aimhue::ChromaLxy& set = screen->primaries[primary];
  *out = AimhueScreenPlanes{set.L.ptr<float>(), set.x.ptr<float>(), set.y.ptr<float>(),
                            set.L.rows, set.L.cols};
  return kOk;
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
    // One pass counts the coverage and writes the miss plane.
    aimhue::Coverage coverage{};
    status = aimhue::PercentOfTarget(&sets[0], &sets[1], &sets[2], targets, coverage, maskPlane,
                                     out_misses);
    if (status != kOk) return status;
    if (out_coverage != nullptr) *out_coverage = coverage;
    return static_cast<int>(kOk);
  });
}

}  // extern "C"
