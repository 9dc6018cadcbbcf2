// CIEDE2000 written as the paper's equations, hue angles and all. The public
// CieDe2000 computes the same quantities with fewer trigonometric calls and
// falls back on this one for neutral colours and opposite hues; the tests
// compare the two on many random pairs.
#ifndef AIMHUE_SRC_ENGINE_COLORIMETRY_LITERAL_H_
#define AIMHUE_SRC_ENGINE_COLORIMETRY_LITERAL_H_

#include <opencv2/core.hpp>

namespace aimhue {

// Sharma, Wu and Dalal (2005), equations (2) to (22), literally.
double CieDe2000Literal(const cv::Vec3d& lab1, const cv::Vec3d& lab2);

}  // namespace aimhue

#endif  // AIMHUE_SRC_ENGINE_COLORIMETRY_LITERAL_H_
