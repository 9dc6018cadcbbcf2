// aimhue.correct and aimhue.Correction: the per-LED correction of a screen
// with its planes as NumPy arrays.
#include <aimhue/correction.h>

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>

#include <cstring>

#include "array_checks.h"
#include "bindings.h"
#include "errors.h"
#include "record_methods.h"

namespace py = pybind11;

namespace aimhue::python {
namespace {

CorrectionMode ModeFrom(const std::string& mode) {
  if (mode == "chroma") return CorrectionMode::Chroma;
  if (mode == "brightness") return CorrectionMode::Brightness;
  throw py::value_error("mode: expected \"chroma\" or \"brightness\", got \"" + mode + "\"");
}

const char* ModeName(CorrectionMode mode) {
  return mode == CorrectionMode::Brightness ? "brightness" : "chroma";
}

}  // namespace

void RegisterCorrection(py::module_& module) {
  py::class_<Correction> correction(module, "Correction",
                                    R"(The per-LED correction of a screen (see ``aimhue.correct``).

The arrays share the record's memory (they stay valid after it is freed).
)");
  correction
      .def_property_readonly(
          "coeff",
          [](const Correction& self) {
            py::array shared = ShareAsArray(self.coeff);
            if (self.coeff.empty()) return shared;
            return py::array(shared.attr("reshape")(self.coeff.rows, self.coeff.cols, 3, 3));
          },
          "ndarray (rows, cols, 3, 3) float32: ``coeff[r, c, k, j]`` is emitter k's drive "
          "for input primary j.")
      .def_property_readonly(
          "flags", [](const Correction& self) { return ShareAsArray(self.flags); },
          "ndarray (rows, cols) uint8: flag bits (1 dead, 2 not finite, 4 singular, 8/16/32 "
          "red/green/blue target clipped, 64 dimmed, 128 rounding repaired).")
      .def_property_readonly(
          "gain", [](const Correction& self) { return ShareAsArray(self.gain); },
          "ndarray (rows, cols) float32: 1, 1 / row sum for a dimmed LED, 0 when skipped.")
      .def_property_readonly(
          "delta_e_before", [](const Correction& self) { return ShareAsArray(self.deltaEBefore); },
          "ndarray (rows, cols, 4) float32: CIEDE2000 of each LED's red, green, blue and white "
          "against the screen's medians.")
      .def_property_readonly(
          "delta_e_after", [](const Correction& self) { return ShareAsArray(self.deltaEAfter); },
          "ndarray (rows, cols, 4) float32: CIEDE2000 of the corrected LED against the scaled "
          "targets.")
      .def_readonly("scale", &Correction::scale, "float: the common luminance scale k.")
      .def_property_readonly(
          "targets", [](const Correction& self) { return TargetArray(&self.targets[0].L); },
          "ndarray (4, 3) float32: the targets with every L times ``scale``.")
      .def_property_readonly(
          "quantile", [](const Correction& self) { return self.settings.quantile; },
          "float: the quantile it was computed with.")
      .def_property_readonly(
          "mode", [](const Correction& self) { return ModeName(self.settings.mode); },
          "str: \"chroma\" or \"brightness\".")
      .def_property_readonly(
          "bits", [](const Correction& self) { return self.settings.bits; },
          "int: 0 for float coefficients, else the fixed-point width.")
      .def_property_readonly(
          "counts",
          [](const Correction& self) {
            const CorrectionCounts& c = self.counts;
            return py::dict(py::arg("corrected") = c.corrected, py::arg("dead") = c.dead,
                            py::arg("not_finite") = c.notFinite, py::arg("singular") = c.singular,
                            py::arg("clipped_red") = c.clippedRed,
                            py::arg("clipped_green") = c.clippedGreen,
                            py::arg("clipped_blue") = c.clippedBlue, py::arg("dimmed") = c.dimmed,
                            py::arg("rounding_repaired") = c.roundingRepaired);
          },
          "dict: how many LEDs carry each flag (``corrected`` counts those not skipped).");
  DefineRecordFileMethods(
      correction, "Correction",
      {"Writes a ``.corr`` file. aimhue.Error 8 (name) or 4 (write).",
       "Reads a ``.corr`` file. aimhue.Error 8, 2, 10 or 3 as for ``Meter.load``.",
       "The bytes of the ``.corr`` file.", "A correction from the bytes of a ``.corr`` file."});

  module.def(
      "correct",
      [](py::handle targets, py::handle red, py::handle green, py::handle blue, float quantile,
         const std::string& mode, int bits, bool convert) {
        CorrectionSettings settings;
        if (!(quantile > 0.0f && quantile <= 1.0f)) {
          throw py::value_error("quantile: must lie in (0, 1], got " + std::to_string(quantile));
        }
        settings.quantile = quantile;
        settings.mode = ModeFrom(mode);
        if (bits != 0 && (bits < 8 || bits > 16)) {
          throw py::value_error("bits: must be 0 (float) or 8..16, got " + std::to_string(bits));
        }
        settings.bits = bits;
        const std::array<float, 12> block = TargetBlock(targets, "targets", convert);
        ScreenInput screen(red, green, blue, convert);
        TargetLxy points[4];
        std::memcpy(points, block.data(), sizeof(points));
        auto result = std::make_unique<Correction>();
        RunLibraryCall("CalcCorrection", [&] {
          return CalcCorrection(points, screen.Triple(0), screen.Triple(1), screen.Triple(2),
                                settings, result.get());
        });
        return result;
      },
      py::arg("targets"), py::arg("red"), py::arg("green"), py::arg("blue"),
      py::arg("quantile") = 0.999f, py::arg("mode") = "chroma", py::arg("bits") = 0,
      py::kw_only(), py::arg("convert") = false,
      R"(The per-LED correction that makes every LED show the targets.

Parameters
----------
targets : array_like (4, 3)
    Red, green, blue, white; L, x, y each (for example ``Engine.targets``).
red, green, blue : ndarray or tuple
    The primaries, as for ``Engine.search``. Dead LEDs (state bit 0 of a
    ``Meter``, or X = Y = Z = 0) are skipped and flagged.
quantile : float, optional
    Share of LEDs whose largest emitter load sets the common luminance
    scale, in (0, 1]; the rest are dimmed. Default 0.999.
mode : {"chroma", "brightness"}, optional
    Full 3 x 3 mixing, or a diagonal gain per emitter.
bits : int, optional
    0 for float coefficients, or 8..16 for fixed-point steps.
convert : bool, optional
    Round float64 planes to float32 (one copy each).

Returns
-------
Correction

Raises
------
ValueError
    A setting out of range (before the library is called).
aimhue.Error
    9 for targets the model cannot use (L or y not positive, dependent
    primaries), 5 when every LED is skipped, 12 for empty planes.
)");
}

}  // namespace aimhue::python
