// Drawing of the correction map with OpenCV.
#include "correction_map.h"

#include <aimhue/correction.h>

#include <algorithm>
#include <cmath>
#include <cstdio>

#include <opencv2/imgproc.hpp>

#include "picture_text.h"

namespace aimhue {
namespace tool {
namespace {

// Colours, OpenCV's blue-green-red order. The flag colours lie outside the
// difference scale (viridis: dark violet through green to yellow), so a
// skipped LED never reads as a difference.
const cv::Scalar kBackground(255, 255, 255);
const cv::Scalar& kInk = kPictureInk;
const cv::Scalar kMuted(110, 110, 110);
const cv::Scalar& kFrame = kPictureFrame;
const cv::Vec3b kSkippedColour(30, 20, 220);    // red
const cv::Vec3b kClippedColour(0, 150, 245);    // orange
const cv::Vec3b kDimmedColour(230, 100, 30);    // blue
const cv::Vec3b kPlainColour(228, 228, 228);    // light grey: corrected, nothing to note

constexpr int kMargin = 30;
constexpr int kGap = 30;
constexpr int kViewTop = 100;
constexpr int kMinWidth = 1000;  // room for the legend under narrow views
constexpr int kBarWidth = 480;
constexpr int kBarHeight = 16;
// Flagged LEDs in the flags view are squares of at least this many pixels,
// so that a single one is seen at a glance.
constexpr int kMinMarkPixels = 5;

// Flag categories of the flags view, most important first: a pixel that
// stands for several LEDs shows the most important one among them.
enum Category : uint8_t { kPlain = 0, kDimmed = 1, kClipped = 2, kSkipped = 3 };

Category CategoryOf(uint8_t flags) {
  if ((flags & kCorrectionSkipped) != 0) return kSkipped;
  if ((flags & (kCorrectionClippedRed | kCorrectionClippedGreen | kCorrectionClippedBlue)) != 0) {
    return kClipped;
  }
  if ((flags & kCorrectionDimmed) != 0) return kDimmed;
  return kPlain;
}

const cv::Vec3b& CategoryColour(uint8_t category) {
  static const cv::Vec3b kColours[] = {kPlainColour, kDimmedColour, kClippedColour,
                                       kSkippedColour};
  return kColours[category];
}

std::string Short(double value) {
  if (!std::isfinite(value)) return "n/a";
  char text[32];
  std::snprintf(text, sizeof text, "%.2f", value);
  return text;
}

void Text(cv::Mat& image, const std::string& text, int x, int baseline, double size,
          const cv::Scalar& colour, int thickness = 1) {
  PictureText(image, text, {x, baseline}, size, colour, thickness);
}

// The views at one pixel per `reduction` x `reduction` LEDs: the largest
// finite difference of the block (NaN when it has none) and the most
// important flag category.
struct ReducedViews {
  cv::Mat before;    // CV_32FC1
  cv::Mat after;     // CV_32FC1
  cv::Mat category;  // CV_8UC1
};

ReducedViews Reduce(const CorrectionMapInput& input, int reduction) {
  const int rows = (input.flags.rows + reduction - 1) / reduction;
  const int cols = (input.flags.cols + reduction - 1) / reduction;
  ReducedViews views{cv::Mat(rows, cols, CV_32FC1, cv::Scalar(NAN)),
                     cv::Mat(rows, cols, CV_32FC1, cv::Scalar(NAN)),
                     cv::Mat::zeros(rows, cols, CV_8UC1)};
  for (int r = 0; r < input.flags.rows; ++r) {
    const float* before = input.whiteBefore.ptr<float>(r);
    const float* after = input.whiteAfter.ptr<float>(r);
    const uint8_t* flags = input.flags.ptr<uint8_t>(r);
    float* reduced_before = views.before.ptr<float>(r / reduction);
    float* reduced_after = views.after.ptr<float>(r / reduction);
    uint8_t* category = views.category.ptr<uint8_t>(r / reduction);
    for (int c = 0; c < input.flags.cols; ++c) {
      const int x = c / reduction;
      // fmax ignores a NaN operand: a block is NaN only when all its LEDs are.
      reduced_before[x] = std::fmax(reduced_before[x], before[c]);
      reduced_after[x] = std::fmax(reduced_after[x], after[c]);
      category[x] = std::max<uint8_t>(category[x], CategoryOf(flags[c]));
    }
  }
  return views;
}

cv::Mat ColourDifferences(const cv::Mat& differences, float top) {
  cv::Mat levels(differences.size(), CV_8UC1);
  for (int r = 0; r < differences.rows; ++r) {
    const float* d = differences.ptr<float>(r);
    uint8_t* level = levels.ptr<uint8_t>(r);
    for (int c = 0; c < differences.cols; ++c) {
      const float share = std::isfinite(d[c]) ? std::min(std::max(d[c] / top, 0.0f), 1.0f) : 0.0f;
      level[c] = static_cast<uint8_t>(std::lround(share * 255.0f));
    }
  }
  cv::Mat colours;
  cv::applyColorMap(levels, colours, cv::COLORMAP_VIRIDIS);
  for (int r = 0; r < differences.rows; ++r) {
    const float* d = differences.ptr<float>(r);
    cv::Vec3b* colour = colours.ptr<cv::Vec3b>(r);
    for (int c = 0; c < differences.cols; ++c) {
      if (std::isnan(d[c])) colour[c] = kSkippedColour;
    }
  }
  return colours;
}

// The flags view at `magnification`: the plain background, then the
// flagged LEDs as marks of at least kMinMarkPixels, the most important
// category drawn last so that it stays on top.
cv::Mat DrawCategories(const cv::Mat& categories, int magnification) {
  cv::Mat view(categories.rows * magnification, categories.cols * magnification, CV_8UC3,
               cv::Scalar(kPlainColour[0], kPlainColour[1], kPlainColour[2]));
  const int size = std::max(magnification, kMinMarkPixels);
  const int offset = (size - magnification) / 2;
  for (uint8_t category = kDimmed; category <= kSkipped; ++category) {
    const cv::Vec3b& colour = CategoryColour(category);
    for (int r = 0; r < categories.rows; ++r) {
      const uint8_t* row = categories.ptr<uint8_t>(r);
      for (int c = 0; c < categories.cols; ++c) {
        if (row[c] != category) continue;
        const cv::Rect mark(c * magnification - offset, r * magnification - offset, size, size);
        cv::rectangle(view, mark & cv::Rect(0, 0, view.cols, view.rows),
                      cv::Scalar(colour[0], colour[1], colour[2]), cv::FILLED);
      }
    }
  }
  return view;
}

// Lines between panels, blended into the view so that they show on every
// colour without hiding the LEDs under them.
void DrawPanelBorders(cv::Mat& view, const CorrectionMapInput& input, double pixels_per_led) {
  const int width = input.flags.cols;
  const int height = input.flags.rows;
  if (input.panel.cols <= 0 || input.panel.rows <= 0) return;
  if (input.panel.cols * pixels_per_led < kMinPanelPixels ||
      input.panel.rows * pixels_per_led < kMinPanelPixels) {
    return;
  }
  cv::Mat lines = view.clone();
  for (int c = input.panel.cols; c < width; c += input.panel.cols) {
    const int x = static_cast<int>(std::lround(c * pixels_per_led));
    cv::line(lines, {x, 0}, {x, view.rows - 1}, kBackground, 1);
  }
  for (int r = input.panel.rows; r < height; r += input.panel.rows) {
    const int y = static_cast<int>(std::lround(r * pixels_per_led));
    cv::line(lines, {0, y}, {view.cols - 1, y}, kBackground, 1);
  }
  cv::addWeighted(lines, 0.55, view, 0.45, 0.0, view);
}

void Swatch(cv::Mat& image, int x, int baseline, const cv::Vec3b& colour) {
  const cv::Rect box(x, baseline - 12, 14, 14);
  cv::rectangle(image, box, cv::Scalar(colour[0], colour[1], colour[2]), cv::FILLED);
  cv::rectangle(image, box, kFrame, 1);
}

void DrawColourBar(cv::Mat& image, int x, int y, float top) {
  cv::Mat ramp(1, kBarWidth, CV_8UC1);
  for (int i = 0; i < kBarWidth; ++i) {
    ramp.at<uint8_t>(0, i) = static_cast<uint8_t>(std::lround(255.0 * i / (kBarWidth - 1)));
  }
  cv::Mat colours;
  cv::applyColorMap(ramp, colours, cv::COLORMAP_VIRIDIS);
  cv::resize(colours, colours, {kBarWidth, kBarHeight}, 0, 0, cv::INTER_NEAREST);
  colours.copyTo(image(cv::Rect(x, y, kBarWidth, kBarHeight)));
  cv::rectangle(image, cv::Rect(x - 1, y - 1, kBarWidth + 2, kBarHeight + 2), kFrame, 1);
  // An arrow at the top end: larger differences share its colour.
  const cv::Vec3b end = colours.at<cv::Vec3b>(0, kBarWidth - 1);
  const std::vector<cv::Point> arrow = {{x + kBarWidth + 1, y - 1},
                                        {x + kBarWidth + 14, y + kBarHeight / 2},
                                        {x + kBarWidth + 1, y + kBarHeight}};
  cv::fillConvexPoly(image, arrow, cv::Scalar(end[0], end[1], end[2]), cv::LINE_AA);
  const float step = top <= 3.0f ? 0.5f : top <= 10.0f ? 1.0f : top <= 20.0f ? 2.0f
                   : top <= 50.0f ? 5.0f : 10.0f;
  for (float value = 0.0f; value <= top * 1.0001f; value += step) {
    const int tick = x + static_cast<int>(std::lround(value / top * (kBarWidth - 1)));
    cv::line(image, {tick, y + kBarHeight}, {tick, y + kBarHeight + 4}, kInk, 1);
    char label[16];
    std::snprintf(label, sizeof label, step < 1.0f ? "%.1f" : "%.0f", static_cast<double>(value));
    Text(image, label, tick - PictureTextWidth(label, 0.45) / 2, y + kBarHeight + 20, 0.45, kInk);
  }
}

}  // namespace

MapScale ChooseMapScale(int cols, int rows) {
  MapScale scale;
  if (cols <= 0 || rows <= 0) return scale;
  if (cols <= kMapViewWidth && rows <= kMapViewHeight) {
    scale.magnification =
        std::max(1, std::min({kMapViewWidth / cols, kMapViewHeight / rows, kMaxMapMagnification}));
  } else {
    scale.reduction = std::max((cols + kMapViewWidth - 1) / kMapViewWidth,
                               (rows + kMapViewHeight - 1) / kMapViewHeight);
  }
  return scale;
}

float ColourScaleTop(float largest) {
  static const float kSteps[] = {1.0f, 1.5f, 2.0f, 3.0f, 4.0f, 5.0f, 6.0f, 8.0f};
  if (!(largest > 1.0f)) return 1.0f;
  for (float decade = 1.0f; decade < 1e30f; decade *= 10.0f) {
    for (const float step : kSteps) {
      if (step * decade >= largest) return step * decade;
    }
  }
  return largest;
}

cv::Mat DrawCorrectionMap(const CorrectionMapInput& input) {
  const MapScale scale = ChooseMapScale(input.flags.cols, input.flags.rows);
  const ReducedViews reduced = Reduce(input, scale.reduction);
  const float top = ColourScaleTop(std::fmax(input.before.p99, input.after.p99));
  cv::Mat views[3] = {ColourDifferences(reduced.before, top),
                      ColourDifferences(reduced.after, top),
                      DrawCategories(reduced.category, scale.magnification)};
  const double pixels_per_led =
      static_cast<double>(scale.magnification) / static_cast<double>(scale.reduction);
  for (int v = 0; v < 3; ++v) {
    if (v < 2 && scale.magnification > 1) {
      cv::resize(views[v], views[v], {}, scale.magnification, scale.magnification,
                 cv::INTER_NEAREST);
    }
    DrawPanelBorders(views[v], input, pixels_per_led);
  }
  const int view_width = views[0].cols;
  const int view_height = views[0].rows;
  const int content_width = std::max(3 * view_width + 2 * kGap, kMinWidth);
  const int legend_top = kViewTop + view_height + 24;
  cv::Mat image(legend_top + 150, content_width + 2 * kMargin, CV_8UC3, kBackground);

  Text(image, input.title, kMargin, 34, 0.7, kInk, 2);
  char subtitle[160];
  if (scale.reduction > 1) {
    std::snprintf(subtitle, sizeof subtitle,
                  "%d x %d LEDs; each pixel shows the worst of %d x %d LEDs", input.flags.cols,
                  input.flags.rows, scale.reduction, scale.reduction);
  } else {
    std::snprintf(subtitle, sizeof subtitle, "%d x %d LEDs; each LED is %d x %d pixels",
                  input.flags.cols, input.flags.rows, scale.magnification, scale.magnification);
  }
  std::string note = subtitle;
  if (input.panel.cols > 0 && input.panel.rows > 0) {
    note += "; panels of " + std::to_string(input.panel.cols) + " x " +
            std::to_string(input.panel.rows) + " LEDs";
    if (input.panel.cols * pixels_per_led < kMinPanelPixels ||
        input.panel.rows * pixels_per_led < kMinPanelPixels) {
      note += " (borders too dense to draw)";
    }
  }
  Text(image, note, kMargin, 60, 0.5, kMuted);

  const char* const headings[3] = {"Before correction", "After correction (predicted)",
                                   "Clipped, dimmed and skipped LEDs"};
  for (int v = 0; v < 3; ++v) {
    const int left = kMargin + v * (view_width + kGap);
    Text(image, headings[v], left, kViewTop - 10, 0.55, kInk, 1);
    views[v].copyTo(image(cv::Rect(left, kViewTop, view_width, view_height)));
    cv::rectangle(image, cv::Rect(left - 1, kViewTop - 1, view_width + 2, view_height + 2),
                  kFrame, 1);
  }

  // Legend: the colour scale and the white difference figures, then the
  // flag colours with their counts.
  Text(image, "White colour difference CIEDE2000 (0 = exactly the target white):", kMargin,
       legend_top + 14, 0.5, kInk);
  DrawColourBar(image, kMargin, legend_top + 24, top);
  const std::string figures = "p50 / p95 / max over the corrected LEDs:  before " +
                              Short(input.before.p50) + " / " + Short(input.before.p95) + " / " +
                              Short(input.before.max) + "   after " + Short(input.after.p50) +
                              " / " + Short(input.after.p95) + " / " + Short(input.after.max);
  Text(image, figures, kMargin + kBarWidth + 40, legend_top + 38, 0.5, kInk);

  int64_t counts[4] = {0, 0, 0, 0};
  for (int r = 0; r < input.flags.rows; ++r) {
    const uint8_t* flags = input.flags.ptr<uint8_t>(r);
    for (int c = 0; c < input.flags.cols; ++c) ++counts[CategoryOf(flags[c])];
  }
  const struct {
    Category category;
    const char* label;
  } kLegend[] = {{kSkipped, "skipped: dead, not finite or singular"},
                 {kClipped, "clipped: a target outside the LED's gamut"},
                 {kDimmed, "dimmed: lowered so no emitter exceeds full drive"},
                 {kPlain, "corrected as asked"}};
  int x = kMargin;
  int baseline = legend_top + 92;
  for (const auto& entry : kLegend) {
    const std::string label = std::string(entry.label) + " (" +
                              std::to_string(counts[entry.category]) + ")";
    const int width = 22 + PictureTextWidth(label, 0.5) + 28;
    if (x + width > kMargin + content_width) {
      x = kMargin;
      baseline += 26;
    }
    Swatch(image, x, baseline, CategoryColour(entry.category));
    Text(image, label, x + 22, baseline, 0.5, kInk);
    x += width;
  }
  Text(image, "Skipped LEDs are red in all three views. On the right, each flagged LED is a mark of"
              " at least 5 pixels; a clipped LED that was also dimmed shows as clipped.",
       kMargin, baseline + 26, 0.45, kMuted);
  return image;
}

}  // namespace tool
}  // namespace aimhue
