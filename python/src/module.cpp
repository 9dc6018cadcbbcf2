// The Python module `aimhue`.
#include <aimhue/version.h>

#include <pybind11/pybind11.h>

#include "bindings.h"

namespace py = pybind11;

PYBIND11_MODULE(aimhue, module) {
  module.doc() = R"(Colour calibration targets for LED display screens.

The module offers the aimhue library on NumPy arrays: the target engine
(``Engine``), the coverage of targets (``coverage``), measurement records
(``Meter``), the per-LED correction (``correct``), colour maths
(``xyz_to_lab``, ``delta_e_2000``, ``daylight_xy``) and camera-file readers. Every non-zero status of the library
raises ``aimhue.Error``; arrays of the wrong dtype, shape or layout raise
``TypeError`` or ``ValueError`` naming the argument before the library is
called.

A primary (red, green or blue) is given as a float32 array of shape
(rows, cols, 3) holding X, Y, Z (split into three planes: one copy), as a
tuple of three float32 (rows, cols) arrays X, Y, Z (used in place), or as a
tuple of three ``Meter`` objects (used in place). float64 input is refused
unless ``convert=True`` asks for the rounding to float32.
)";
  module.attr("__version__") = AIMHUE_VERSION_STRING;
  aimhue::python::RegisterErrors(module);
  aimhue::python::RegisterMeter(module);
  aimhue::python::RegisterEngine(module);
  aimhue::python::RegisterReaders(module);
  aimhue::python::RegisterCorrection(module);
  aimhue::python::RegisterColour(module);
  aimhue::python::RegisterSynthetic(module);
}
