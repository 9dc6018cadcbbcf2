// Last stage of the target search: each corner is pulled back along the
// line through its primary's mean until the share of kept LEDs that can
// reach it is the required one.
#ifndef AIMHUE_SRC_ENGINE_COVERAGE_LINE_SEARCH_H_
#define AIMHUE_SRC_ENGINE_COVERAGE_LINE_SEARCH_H_

#include <opencv2/core.hpp>

#include "engine/aimhue.h"

namespace aimhue {

struct ChromaLxy;

// Fills the red, green and blue entries of `final` (white is not written)
// from the corner block, reading the handle's percentEnd (red, green, blue),
// maxIter and percentTol. Coverage is the fraction of the LEDs with a
// non-zero mask element whose gamut holds the target (as PercentOfTarget
// counts it). For each primary p:
// - when percentEnd[p] >= the corner's coverage, the result is the corner
//   entry as it stands (with a coverage of NaN, as for an all-zero mask,
//   the search below runs);
// - otherwise x starts at the corner's x and moves along y = k x + b, the
//   line through the mean and the corner (k and b in 32-bit floats), with a
//   step of 0.001 that halves whenever the error e = coverage - percentEnd[p]
//   changes sign (from the second evaluation on): red moves +x while e is
//   above percentTol and -x otherwise, green and blue the other way; the
//   search stops when |e| <= percentTol or after maxIter evaluations, each
//   of which is followed by a move (so a search that runs out of
//   evaluations returns a point moved once after its last evaluation). The
//   result's L is the corner's.
// A corner with the mean's x gives an infinite or NaN slope: the moved
// points then have a non-finite y, no LED reaches them, and the search runs
// its maxIter steps and returns such a point. Nothing else happens; the
// work is bounded by maxIter in every case.
// Only the moving primary's coverage is counted in each step (the coverage
// of one target does not depend on the others), with the LEDs' gamut frames
// built once for all steps; the fractions are the ones PercentOfTarget gives.
// Precondition: the mask (8-bit) and all planes have the red L plane's
// shape and are 32-bit float; otherwise `final` gets the corners unchanged.
void SearchTargets(const Aimhue& handle, TargetBlock& final, const cv::Mat& mask,
                   const ChromaLxy& red, const ChromaLxy& green, const ChromaLxy& blue,
                   const TargetBlock& means, const TargetBlock& corners);

}  // namespace aimhue

#endif  // AIMHUE_SRC_ENGINE_COVERAGE_LINE_SEARCH_H_
