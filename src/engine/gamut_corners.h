// Third stage of the target search: the corners of the chromaticity region
// that practically every kept LED's gamut holds. Every LED's gamut outline
// is drawn on a raster of the CIE 1931 (x, y) plane; cells crossed by more
// than ten outlines (and the outline of the mean triangle) are walls, and the
// open region around the neutral point (0.33, 0.33) is the shared region.
#ifndef AIMHUE_SRC_ENGINE_GAMUT_CORNERS_H_
#define AIMHUE_SRC_ENGINE_GAMUT_CORNERS_H_

#include <cstdint>

#include <opencv2/core.hpp>

#include "engine/aimhue.h"
#include "engine/raster_segment.h"

namespace aimhue {

struct ChromaLxy;

// A cell crossed by more than this many LED edges is a wall.
constexpr int kMaxOpenCrossings = 10;
// Values of the region image.
constexpr uint8_t kRegionOpen = 255;
constexpr uint8_t kRegionWall = 0;
// The value CornersFromRegion gives the cells of the seed's region.
constexpr uint8_t kRegionSeed = 1;

// Adds 1 to every cell of the segment p0-p1 (Segment::ForEachCell) of
// `raster`, a kRasterSize x kRasterSize matrix of 32-bit signed counters.
// A segment with an end outside the raster is not drawn at all: returns
// false then, true otherwise.
bool DrawLine(RasterPoint p0, RasterPoint p1, cv::Mat& raster);

// The region image (kRasterSize x kRasterSize, 8-bit): kRegionWall for the
// cells of the mean triangle's outline (red-green, red-blue, green-blue
// means) and for every cell crossed by more than kMaxOpenCrossings edges of
// the gamut triangles of the LEDs whose mask element is non-zero (an LED
// adds one crossing per edge through a cell, two where two of its edges
// meet); kRegionOpen elsewhere.
// An LED with any coordinate that is not a raster point (ToRasterPoint:
// NaN, infinite, outside [-0.00025, 0.99975)) is skipped whole; an edge of
// the mean triangle with such an end is not drawn (the other edges are), so
// NaN means (a dead LED in the working set) leave no mean outline.
// Walls are counted with a small saturating counter: a cell only needs to be
// known as more than ten crossings, and the mean outline, weighted 1000, is a
// wall whatever is added to it, so it is marked as a wall directly. Where
// every cell of a tile has become a wall, the stretches of later edges
// through it are not walked (they could not change it). The region is the
// same as counting every crossing in 32 bits cell by cell.
cv::Mat RegionImage(const cv::Mat& mask, const ChromaLxy& red, const ChromaLxy& green,
                    const ChromaLxy& blue, const TargetBlock& means);

// A region image that agrees with RegionImage on the seed's region and on
// the walls around it, and may differ elsewhere, so CornersFromRegion finds
// the same corners in both. It counts the LEDs' edges only where the seed's
// region can still lie: the seed's component of open cells in the counts so
// far holds the final one (walls only grow), so after the mean outline and
// then after 1024, 4096, ... LEDs the component is found again, and the
// later edges are counted only inside the half-planes and tiles that hold
// it. On a real screen the component is the inside of the mean triangle
// less the bands where the LEDs' edges crowd, so most edges are not walked
// at all. When the seed cell is a wall (its region is then every wall of
// the raster) it returns RegionImage.
cv::Mat SeedRegionImage(const cv::Mat& mask, const ChromaLxy& red, const ChromaLxy& green,
                        const ChromaLxy& blue, const TargetBlock& means);

// The corners of the region that holds the seed cell (row 660, column 660;
// 660 = nearest(2000 x 0.33)), found from a region image: starting at
// (660, 660) each, scanning rows from 0 and each row from column 0, a cell
// of the seed's region replaces the red corner when its column is greater,
// the green when its row is greater and the blue when its row is smaller,
// strictly. So red is the topmost cell of the rightmost column, green the
// leftmost of the bottom row, blue the leftmost of the top row; a corner
// that never moves stays at (0.33, 0.33). Writes x = column / 2000.0f and
// y = row / 2000.0f of the red, green and blue entries of `corners` and
// nothing else.
// The seed's region is its 4-connected component of open cells; when the
// seed is a wall cell, it is the set of all wall cells. (A 16-bit labelling
// with more than 65535 components would give unrelated components the
// seed's label; here only the seed's own component ever counts.) `region`
// is used as working space and is left with the seed component marked
// kRegionSeed (when the seed is open).
void CornersFromRegion(cv::Mat& region, TargetBlock& corners);

// The corner stage: SeedRegionImage, then CornersFromRegion. Writes only the
// x and y of the red, green and blue entries of `corners`. The handle is not
// read. Precondition: the mask (8-bit) and all planes have the red L
// plane's shape.
void GamutCorners(const Aimhue& handle, TargetBlock& corners, const cv::Mat& mask,
                  const ChromaLxy& red, const ChromaLxy& green, const ChromaLxy& blue,
                  const TargetBlock& means);

}  // namespace aimhue

#endif  // AIMHUE_SRC_ENGINE_GAMUT_CORNERS_H_
