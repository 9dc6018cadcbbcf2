// The target search: subsampling, means and outlier mask, common-gamut
// corners and the coverage line search, in that order.
#include <aimhue/plume_log.h>
#include <aimhue/status.h>

#include "engine/aimhue.h"
#include "engine/coverage_inputs.h"
#include "engine/coverage_line_search.h"
#include "engine/gamut_corners.h"
#include "engine/primary_means.h"
#include "engine/subsample.h"
#include "meter/chroma_lxy.h"

namespace aimhue {
namespace {

// Zeroes what the search leaves without a result: the white entry, and the
// primaries' L when `keepL` is false.
TargetBlock Stored(TargetBlock block, bool keepL) {
  for (int primary = 0; primary < kWhiteTarget; ++primary) {
    if (!keepL) block[primary].L = 0.0f;
  }
  block[kWhiteTarget] = TargetLxy{0.0f, 0.0f, 0.0f};
  return block;
}

}  // namespace

int Aimhue::Search(const ChromaLxy* red, const ChromaLxy* green, const ChromaLxy* blue) {
  PlumeLogInfo("Aimhue::Search");
  const int status = CheckCoverageInputs(red, green, blue, cv::Mat());
  if (status != kOk) return status;

  ChromaLxy redWork;
  ChromaLxy greenWork;
  ChromaLxy blueWork;
  Subsample(*red, *green, *blue, redWork, greenWork, blueWork);

  TargetBlock means = {};
  means[kRedTarget] = MeanLxy(redWork);
  means[kGreenTarget] = MeanLxy(greenWork);
  means[kBlueTarget] = MeanLxy(blueWork);

  std::array<int32_t, 3> rejected;
  const cv::Mat mask = OutlierMask(*this, redWork, greenWork, blueWork, means, &rejected);

  TargetBlock corners = {};
  GamutCorners(*this, corners, mask, redWork, greenWork, blueWork, means);

  TargetBlock final = {};
  SearchTargets(*this, final, mask, redWork, greenWork, blueWork, means, corners);

  searchEnd = Stored(final, false);
  target = searchEnd;
  searchStart = Stored(means, true);
  outliers = rejected;
  return kOk;
}

}  // namespace aimhue
