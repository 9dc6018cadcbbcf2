// The correction map: a picture of a screen's white colour difference
// (CIEDE2000) before and after the per-LED correction, side by side on one
// colour scale, beside a map of the LEDs the correction clipped, dimmed or
// skipped.
//
// Each screen view is drawn at a readable size: a small screen is magnified
// by a whole number (each LED a square of pixels), a large one reduced by a
// whole number, each pixel then showing the largest difference among its
// LEDs, so that a single poor LED stays visible. Panel borders are drawn
// when panels are at least kMinPanelPixels apart in the picture.
#ifndef AIMHUE_TOOLS_CORRECTION_MAP_H_
#define AIMHUE_TOOLS_CORRECTION_MAP_H_

#include <cstdint>
#include <string>

#include <opencv2/core.hpp>

#include "arguments.h"
#include "correction_statistics.h"

namespace aimhue {
namespace tool {

// The box one screen view must fit in, and the largest magnification.
constexpr int kMapViewWidth = 640;
constexpr int kMapViewHeight = 480;
constexpr int kMaxMapMagnification = 16;
constexpr int kMinPanelPixels = 6;

struct CorrectionMapInput {
  std::string title;
  cv::Mat whiteBefore;  // CV_32FC1: white CIEDE2000 before correction, NaN where skipped
  cv::Mat whiteAfter;   // CV_32FC1: after correction
  cv::Mat flags;        // CV_8UC1: CorrectionFlag bits
  ScreenSize panel;     // LED size of one panel; 0 x 0 draws no borders
  Percentiles before;   // white difference over the corrected LEDs, for the legend
  Percentiles after;
};

// How a screen of cols x rows LEDs is drawn: each LED as `magnification`
// pixels square, or each pixel as `reduction` LEDs square (one of the two
// is 1).
struct MapScale {
  int magnification = 1;
  int reduction = 1;
};
MapScale ChooseMapScale(int cols, int rows);

// The top of the colour scale: the smallest of 1, 1.5, 2, 3, 4, 5, 6, 8,
// 10, 15, 20, ... that is at least `largest` (NaN counts as 1). Differences
// above it are drawn in the scale's top colour.
float ColourScaleTop(float largest);

// The picture, 8-bit three-channel. The planes must share one size.
cv::Mat DrawCorrectionMap(const CorrectionMapInput& input);

}  // namespace tool
}  // namespace aimhue

#endif  // AIMHUE_TOOLS_CORRECTION_MAP_H_
