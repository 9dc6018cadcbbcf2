// aimhue.Meter: one measured quantity per LED, read from and written to
// ".meter" files, with its planes as NumPy arrays.
#include <aimhue/led_meter.h>

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>


#include "array_checks.h"
#include "bindings.h"
#include "errors.h"
#include "record_methods.h"

namespace py = pybind11;

namespace aimhue::python {
namespace {

// A copy of `value` as a matrix of `type` with the given name, for planes
// given to a meter (the meter owns its planes).
cv::Mat PlaneFrom(py::handle value, const char* name, int type, bool convert) {
  if (type == CV_32FC1) {
    const py::array plane = Float32Array(value, name, convert);
    return WrapPlane(plane, name).clone();
  }
  py::array array = py::module_::import("numpy").attr("asarray")(value);
  if (array.dtype().kind() == 'b') array = array.attr("view")("uint8");
  if (!array.dtype().equal(py::dtype::of<uint8_t>())) {
    throw py::type_error(std::string(name) + ": expected uint8, got dtype " +
                         DtypeName(array.dtype()));
  }
  if (array.ndim() != 2) throw py::value_error(std::string(name) + ": expected a 2-D array");
  auto contiguous = py::array_t<uint8_t, py::array::c_style>::ensure(array);
  cv::Mat view(static_cast<int>(contiguous.shape(0)), static_cast<int>(contiguous.shape(1)),
               CV_8UC1, const_cast<uint8_t*>(contiguous.data()));
  return view.clone();
}

// Refuses a record given with unknown or missing fields.
void CheckFields(const py::dict& fields, std::initializer_list<const char*> names,
                 const char* what) {
  for (auto item : fields) {
    const std::string key = py::str(item.first);
    bool known = false;
    for (const char* name : names) known = known || key == name;
    if (!known) throw py::value_error(std::string(what) + ": unknown field '" + key + "'");
  }
  for (const char* name : names) {
    if (!fields.contains(name)) {
      throw py::value_error(std::string(what) + ": missing field '" + name + "'");
    }
  }
}

}  // namespace

void RegisterMeter(py::module_& module) {
  py::class_<LedMeter> meter(module, "Meter", R"(One measured quantity for every LED of a screen region.

A meter holds one of a primary's X, Y or Z planes (``values``), a state
plane (bit 0 marks a dead LED), the colour code of the primary (1 red,
2 green, 4 blue), the measurement type (1 X, 2 Y, 4 Z) and optional
descriptive records. Three meters X, Y, Z of one primary can be passed to
``Engine.search`` as a tuple, without copying their planes.

Parameters
----------
values : array_like (rows, cols) of float32, optional
    The measured value of each LED (copied into the meter).
color : int, optional
    Colour code of the primary: 1 red, 2 green, 4 blue.
type : int, optional
    Measurement type: 1 CIE X, 2 CIE Y, 4 CIE Z.
state : array_like (rows, cols) of uint8, optional
    Per-LED state (copied); bit 0 marks a dead LED.
convert : bool, optional
    Round float64 values to float32; without it they raise ``TypeError``.
)");
  meter
      .def(py::init([](py::handle values, uint32_t color, uint32_t type, py::handle state,
                       bool convert) {
             auto result = std::make_unique<LedMeter>();
             result->color = color;
             result->type = type;
             if (!values.is_none()) result->chroma = PlaneFrom(values, "values", CV_32FC1, convert);
             if (!state.is_none()) result->state = PlaneFrom(state, "state", CV_8UC1, false);
             return result;
           }),
           py::arg("values") = py::none(), py::kw_only(), py::arg("color") = 0,
           py::arg("type") = 0, py::arg("state") = py::none(), py::arg("convert") = false)
      .def_readwrite("color", &LedMeter::color, "int: colour code of the primary (1, 2 or 4).")
      .def_readwrite("type", &LedMeter::type, "int: measurement type (1 X, 2 Y, 4 Z).")
      .def_property(
          "values", [](const LedMeter& self) { return ShareAsArray(self.chroma); },
          [](LedMeter& self, py::handle value) {
            self.chroma = PlaneFrom(value, "values", CV_32FC1, false);
          },
          R"(ndarray (rows, cols) float32: the measured value of each LED.

Reading gives an array that shares the meter's memory (writing into it
changes the meter); it stays valid after the meter is loaded again or freed.
Assigning copies a float32 array into the meter.)")
      .def_property(
          "state", [](const LedMeter& self) { return ShareAsArray(self.state); },
          [](LedMeter& self, py::handle value) {
            self.state = PlaneFrom(value, "state", CV_8UC1, false);
          },
          "ndarray (rows, cols) uint8: per-LED state, bit 0 marks a dead LED; shared as "
          "``values``.")
      .def_property_readonly(
          "pos", [](const LedMeter& self) { return ShareAsArray(self.pos); },
          "ndarray (rows, cols, 2) float32: each LED's position (x, y) in its capture.")
      .def_property_readonly(
          "shape", [](const LedMeter& self) { return py::make_tuple(self.chroma.rows, self.chroma.cols); },
          "tuple: (rows, cols) of ``values``.")
      .def_property(
          "partition",
          [](const LedMeter& self) {
            const Partition* p = self.partition.get();
            return p ? py::object(py::dict(py::arg("x") = p->x, py::arg("y") = p->y,
                                           py::arg("w") = p->w, py::arg("h") = p->h,
                                           py::arg("screen_w") = p->screen_w,
                                           py::arg("screen_h") = p->screen_h))
                     : py::object(py::none());
          },
          [](LedMeter& self, const py::dict& fields) {
            CheckFields(fields, {"x", "y", "w", "h", "screen_w", "screen_h"},
                                  "partition");
            const Partition value{fields["x"].cast<int32_t>(), fields["y"].cast<int32_t>(),
                                  fields["w"].cast<int32_t>(), fields["h"].cast<int32_t>(),
                                  fields["screen_w"].cast<int32_t>(),
                                  fields["screen_h"].cast<int32_t>()};
            RunLibraryCall("LedMeter::SetPartition", [&] { return self.SetPartition(value); });
          },
          "dict or None: where the region lies on the screen (x, y, w, h, screen_w, "
          "screen_h), in LEDs. Setting it checks it (aimhue.Error 108).")
      .def_property(
          "led_panel",
          [](const LedMeter& self) {
            const LedPanel* p = self.led_panel.get();
            return p ? py::object(py::dict(py::arg("type") = p->type,
                                           py::arg("layout") = p->layout,
                                           py::arg("subpixel_type") = p->subpixel_type,
                                           py::arg("w") = p->w, py::arg("h") = p->h,
                                           py::arg("pixel_pitch") = p->pixel_pitch))
                     : py::object(py::none());
          },
          [](LedMeter& self, const py::dict& fields) {
            CheckFields(fields, {"type", "layout", "subpixel_type", "w", "h",
                                          "pixel_pitch"},
                                 "led_panel");
            const LedPanel value{fields["type"].cast<int32_t>(), fields["layout"].cast<int32_t>(),
                                 fields["subpixel_type"].cast<int32_t>(),
                                 fields["w"].cast<int32_t>(), fields["h"].cast<int32_t>(),
                                 fields["pixel_pitch"].cast<float>()};
            RunLibraryCall("LedMeter::SetLedPanel", [&] { return self.SetLedPanel(value); });
          },
          "dict or None: the panel geometry (type, layout, subpixel_type, w, h, pixel_pitch). "
          "Setting it checks it (aimhue.Error 106).")
      .def_property(
          "layer",
          [](const LedMeter& self) {
            const Layer* p = self.layer.get();
            return p ? py::object(py::dict(py::arg("index") = p->index,
                                           py::arg("linear_norms") = p->linear_norms,
                                           py::arg("value") = p->value))
                     : py::object(py::none());
          },
          [](LedMeter& self, const py::dict& fields) {
            CheckFields(fields, {"index", "linear_norms", "value"}, "layer");
            const Layer value{fields["index"].cast<int32_t>(),
                              fields["linear_norms"].cast<float>(), fields["value"].cast<int32_t>()};
            RunLibraryCall("LedMeter::SetLayer", [&] { return self.SetLayer(value); });
          },
          "dict or None: the measurement layer (index, linear_norms, value).")
      .def_property(
          "capture",
          [](const LedMeter& self) {
            const Capture* p = self.capture.get();
            return p ? py::object(py::dict(py::arg("exposure") = p->exposure,
                                           py::arg("gain") = p->gain,
                                           py::arg("aperture") = p->aperture,
                                           py::arg("microfocus") = p->microfocus,
                                           py::arg("filter") = p->filter))
                     : py::object(py::none());
          },
          [](LedMeter& self, const py::dict& fields) {
            CheckFields(fields, {"exposure", "gain", "aperture", "microfocus", "filter"},
                                "capture");
            const Capture value{fields["exposure"].cast<int32_t>(), fields["gain"].cast<int32_t>(),
                                fields["aperture"].cast<int32_t>(),
                                fields["microfocus"].cast<int32_t>(),
                                fields["filter"].cast<int32_t>()};
            RunLibraryCall("LedMeter::SetCapture", [&] { return self.SetCapture(value); });
          },
          "dict or None: the capture settings (exposure, gain, aperture, microfocus, filter).")
      .def(
          "fix_dead_points",
          [](LedMeter& self) {
            RunLibraryCall("LedMeter::FixDeadPoint", [&] { return self.FixDeadPoint(); });
          },
          R"(Replaces each dead LED's value (state bit 0) by the 3 x 3 median around it.

Raises
------
aimhue.Error
    9 when the state plane's size differs from the values'.
)")
      .def("__repr__", [](const LedMeter& self) {
        return "<aimhue.Meter color=" + std::to_string(self.color) +
               " type=" + std::to_string(self.type) + " shape=(" +
               std::to_string(self.chroma.rows) + ", " + std::to_string(self.chroma.cols) + ")>";
      });
  DefineRecordFileMethods(meter, "LedMeter",
                          {R"(Writes the meter as a ``.meter`` file.

Raises
------
aimhue.Error
    8 (name not ending in ".meter"), 4 (cannot be written).
)",
                           R"(Reads a ``.meter`` file.

Raises
------
aimhue.Error
    8 (name not ending in ".meter"), 2 (cannot open), 10 (byte-order mark),
    3 (version, or damaged or truncated data).
)",
                           R"(The bytes of the meter's ``.meter`` file.

Raises
------
aimhue.Error
    5 when the meter has no values.
)",
                           "A meter from the bytes of a ``.meter`` file (errors as ``load``)."});
}

}  // namespace aimhue::python
