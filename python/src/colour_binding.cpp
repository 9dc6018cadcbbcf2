// Colour maths on NumPy arrays: CIELAB, CIEDE2000 and the daylight locus,
// vectorised with NumPy's broadcasting rules over the leading axes.
#include <aimhue/colorimetry.h>

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>

#include <string>

#include "bindings.h"

namespace py = pybind11;

namespace aimhue::python {
namespace {

using Doubles = py::array_t<double, py::array::c_style>;

// `value` as float64. Every real or integer dtype up to 32 bits widens
// exactly; others are refused.
py::array AsFloat64(py::handle value, const char* name) {
  py::array array = py::module_::import("numpy").attr("asarray")(value);
  const char kind = array.dtype().kind();
  if (kind != 'f' && kind != 'i' && kind != 'u') {
    throw py::type_error(std::string(name) + ": expected real numbers");
  }
  return array;
}

// The leading shape of an array whose last axis must hold `channels` values.
py::tuple LeadingShape(const py::array& array, const char* name, py::ssize_t channels) {
  if (array.ndim() < 1 || array.shape(array.ndim() - 1) != channels) {
    throw py::value_error(std::string(name) + ": the last axis must hold " +
                          std::to_string(channels) + " values");
  }
  py::tuple leading(array.ndim() - 1);
  for (py::ssize_t axis = 0; axis + 1 < array.ndim(); ++axis) leading[axis] = array.shape(axis);
  return leading;
}

// Both arrays broadcast to a common leading shape and made contiguous
// float64 (..., channels).
std::pair<Doubles, Doubles> BroadcastPair(py::handle first, const char* firstName,
                                          py::handle second, const char* secondName,
                                          py::ssize_t channels, py::tuple& leading) {
  py::module_ numpy = py::module_::import("numpy");
  const py::array a = AsFloat64(first, firstName);
  const py::array b = AsFloat64(second, secondName);
  const py::tuple shapeA = LeadingShape(a, firstName, channels);
  const py::tuple shapeB = LeadingShape(b, secondName, channels);
  try {
    leading = numpy.attr("broadcast_shapes")(shapeA, shapeB);
  } catch (py::error_already_set&) {
    throw py::value_error(std::string(firstName) + ", " + secondName +
                          ": shapes do not broadcast together");
  }
  py::tuple full(leading.size() + 1);
  for (size_t axis = 0; axis < leading.size(); ++axis) full[axis] = leading[axis];
  full[leading.size()] = channels;
  auto expand = [&](const py::array& array) {
    return Doubles::ensure(numpy.attr("ascontiguousarray")(
        numpy.attr("broadcast_to")(array, full), "float64"));
  };
  return {expand(a), expand(b)};
}

py::array_t<double> NewArray(const py::tuple& leading, py::ssize_t channels) {
  std::vector<py::ssize_t> shape;
  for (auto size : leading) shape.push_back(size.cast<py::ssize_t>());
  if (channels > 0) shape.push_back(channels);
  return py::array_t<double>(shape);
}

// Applies `apply(a, b, out)` to every pair of colours (three values each) of
// two arrays broadcast together, without the GIL; `out` receives
// `channels` values per pair (one when `channels` is 0, a scalar per pair).
template <typename Apply>
py::array_t<double> MapColourPairs(py::handle first, const char* firstName, py::handle second,
                                   const char* secondName, py::ssize_t channels, Apply apply) {
  py::tuple leading;
  auto [a, b] = BroadcastPair(first, firstName, second, secondName, 3, leading);
  py::array_t<double> result = NewArray(leading, channels);
  const double* firsts = a.data();
  const double* seconds = b.data();
  double* out = result.mutable_data();
  const py::ssize_t width = channels > 0 ? channels : 1;
  const py::ssize_t count = result.size() / width;
  {
    py::gil_scoped_release release;
    for (py::ssize_t i = 0; i < count; ++i) {
      apply(firsts + 3 * i, seconds + 3 * i, out + width * i);
    }
  }
  return result;
}

}  // namespace

void RegisterColour(py::module_& module) {
  module.def(
      "delta_e_2000",
      [](py::handle lab1, py::handle lab2) {
        return MapColourPairs(lab1, "lab1", lab2, "lab2", 0,
                              [](const double* first, const double* second, double* out) {
                                *out = CieDe2000(cv::Vec3d(first), cv::Vec3d(second));
                              });
      },
      py::arg("lab1"), py::arg("lab2"),
      R"(The CIEDE2000 colour difference (kL = kC = kH = 1).

Reference: Sharma, Wu and Dalal, Color Res. Appl. 30 (2005) 21-30.

Parameters
----------
lab1, lab2 : array_like (..., 3)
    CIELAB colours L*, a*, b*; the leading axes broadcast.

Returns
-------
ndarray (...) float64
    The differences; NaN where either colour holds a NaN.
)");
  module.def(
      "xyz_to_lab",
      [](py::handle xyz, py::handle white) {
        return MapColourPairs(xyz, "xyz", white, "white", 3,
                              [](const double* values, const double* whites, double* out) {
                                const cv::Vec3d lab =
                                    XyzToLab(cv::Vec3d(values), cv::Vec3d(whites));
                                for (int c = 0; c < 3; ++c) out[c] = lab[c];
                              });
      },
      py::arg("xyz"), py::arg("white"),
      R"(CIE 1976 L*a*b* of tristimulus values relative to a reference white.

Reference: CIE 15:2004 (epsilon = 216/24389, kappa = 24389/27).

Parameters
----------
xyz : array_like (..., 3)
    X, Y, Z.
white : array_like (..., 3)
    The reference white's X, Y, Z (its Y sets the scale); broadcasts
    against ``xyz``.

Returns
-------
ndarray (..., 3) float64
    L*, a*, b*.
)");
  module.def(
      "daylight_xy",
      [](py::handle kelvin) {
        const py::array temperatures = AsFloat64(kelvin, "kelvin");
        const Doubles values = Doubles::ensure(temperatures);
        py::tuple leading(values.ndim());
        for (py::ssize_t axis = 0; axis < values.ndim(); ++axis) leading[axis] = values.shape(axis);
        py::array_t<double> result = NewArray(leading, 2);
        const double* input = values.data();
        double* out = result.mutable_data();
        const py::ssize_t count = values.size();
        {
          py::gil_scoped_release release;
          for (py::ssize_t i = 0; i < count; ++i) {
            const cv::Vec2d xy = DaylightXy(input[i]);
            out[2 * i] = xy[0];
            out[2 * i + 1] = xy[1];
          }
        }
        return result;
      },
      py::arg("kelvin"),
      R"(The CIE daylight locus: chromaticity x, y at a correlated colour temperature.

Reference: CIE 15:2004, daylight chromaticity polynomials.

Parameters
----------
kelvin : array_like (...)
    Temperatures in kelvin; defined from 4000 K to 25000 K.

Returns
-------
ndarray (..., 2) float64
    x, y; NaN outside the defined range. D65 lies near 6504 K.
)");
}

}  // namespace aimhue::python
