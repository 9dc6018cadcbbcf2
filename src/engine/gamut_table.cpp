#include "engine/gamut_table.h"

#include <aimhue/status.h>

#include "engine/coverage_inputs.h"
#include "meter/chroma_lxy.h"

namespace aimhue {

int GamutTable::Build(const ChromaLxy* red, const ChromaLxy* green, const ChromaLxy* blue,
                      const cv::Mat& mask) {
  const int status = CheckCoverageInputs(red, green, blue, mask);
  if (status != kOk) return status;
  const int rows = red->L.rows;
  const int cols = red->L.cols;
  std::vector<LedFrame> frames;
  frames.reserve(static_cast<size_t>(rows) * static_cast<size_t>(cols));
  for (int row = 0; row < rows; ++row) {
    const uint8_t* keep = mask.empty() ? nullptr : mask.ptr<uint8_t>(row);
    for (int col = 0; col < cols; ++col) {
      if (keep != nullptr && keep[col] == 0) continue;
      frames.push_back(MakeLedFrame({red->x.at<float>(row, col), red->y.at<float>(row, col)},
                                    {green->x.at<float>(row, col), green->y.at<float>(row, col)},
                                    {blue->x.at<float>(row, col), blue->y.at<float>(row, col)}));
    }
  }
  frames_ = std::move(frames);
  counted_ = static_cast<int64_t>(frames_.size());
  return kOk;
}

int32_t GamutTable::CountInside(Chromaticity q) const {
  int32_t inside = 0;
  for (const LedFrame& frame : frames_) inside += FrameContains(frame, q);
  return inside;
}

float GamutTable::Fraction(Chromaticity q) const {
  return static_cast<float>(static_cast<double>(CountInside(q)) / static_cast<double>(counted_));
}

Coverage GamutTable::Count(const float* targets) const {
  CoverageTally tally(targets);
  for (const LedFrame& frame : frames_) tally.Add(frame);
  return tally.Fractions(counted_);
}

}  // namespace aimhue
