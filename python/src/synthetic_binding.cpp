// aimhue.synthetic_screen: the project's synthetic screens (the same
// generator as the tool's `simulate`), so that Python sessions, tests and
// examples can calibrate without a measuring device.
#include <pybind11/pybind11.h>

#include <opencv2/core.hpp>

#include "bindings.h"
#include "synthetic/synthetic_screen.h"

namespace py = pybind11;

namespace aimhue::python {

void RegisterSynthetic(py::module_& module) {
  module.def(
      "synthetic_screen",
      [](int rows, int cols, uint64_t seed, int moduleRows, int moduleCols, int outliers,
         int dead) {
        if (rows < 1 || cols < 1) throw py::value_error("rows, cols: must be at least 1");
        if (moduleRows < 1 || moduleCols < 1) {
          throw py::value_error("module_rows, module_cols: must be at least 1");
        }
        if (outliers < 0 || dead < 0) throw py::value_error("outliers, dead: must be >= 0");
        synthetic::ScreenOptions options;
        options.rows = rows;
        options.cols = cols;
        options.moduleRows = moduleRows;
        options.moduleCols = moduleCols;
        options.seed = seed;
        options.outlierCount = outliers;
        options.deadCount = dead;
        synthetic::ScreenMeters meters;
        {
          py::gil_scoped_release release;
          meters = synthetic::GenerateMeters(options);
          // Mark the dead LEDs (X = Y = Z = 0) as a host would before a
          // repair; the generator leaves the state planes clear.
          for (auto& triple : meters) {
            const cv::Mat dead =
                (triple[0].chroma == 0) & (triple[1].chroma == 0) & (triple[2].chroma == 0);
            for (auto& meter : triple) meter.state.setTo(1, dead);
          }
        }
        py::list primaries;
        for (auto& triple : meters) {
          py::tuple axes(3);
          for (size_t axis = 0; axis < triple.size(); ++axis) {
            axes[axis] = py::cast(std::make_unique<LedMeter>(std::move(triple[axis])));
          }
          primaries.append(axes);
        }
        return py::tuple(primaries);
      },
      py::arg("rows") = 180, py::arg("cols") = 320, py::kw_only(), py::arg("seed") = 1,
      py::arg("module_rows") = 60, py::arg("module_cols") = 80, py::arg("outliers") = 20,
      py::arg("dead") = 0,
      R"(A synthetic screen: the X, Y, Z meters of its red, green and blue.

Every value follows from the arguments, so a seed gives the same screen on
every machine (and the same as ``aimhue simulate`` with that size and seed
and the default number of dead LEDs).

Parameters
----------
rows, cols : int
    LEDs of the screen.
seed : int, optional
    The generator's seed.
module_rows, module_cols : int, optional
    LEDs of one panel; each panel has its own small offset.
outliers : int, optional
    LEDs with one primary far from its neighbours.
dead : int, optional
    LEDs with X = Y = Z = 0 (marked in the state planes). Default 0: a dead
    LED makes a search's means NaN until ``Meter.fix_dead_points`` repairs
    it.

Returns
-------
tuple
    ``(red, green, blue)``, each a tuple of three ``Meter`` objects X, Y, Z,
    ready for ``Engine.search``.
)");
}

}  // namespace aimhue::python
