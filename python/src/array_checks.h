// Checks at the border: every array that reaches the library is checked for
// dtype, shape and layout first, and refused with a TypeError or ValueError
// that names the argument.
#ifndef AIMHUE_PYTHON_ARRAY_CHECKS_H_
#define AIMHUE_PYTHON_ARRAY_CHECKS_H_

#include <aimhue/led_meter.h>

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>

#include <array>
#include <string>
#include <vector>

#include <opencv2/core.hpp>

namespace aimhue::python {

// A float32 array from `value`. float32 arrays are taken as they are;
// integer types of at most 16 bits and float16 are converted, since every
// value is exact in float32. Anything else (float64, 32- and 64-bit
// integers) would be rounded, so it is refused with a TypeError unless
// `convert` is true.
pybind11::array Float32Array(pybind11::handle value, const std::string& name, bool convert);

// The name NumPy gives a dtype ("float64").
std::string DtypeName(const pybind11::dtype& dtype);

// A cv::Mat over the memory of a 2-D float32 array, without a copy. The
// columns must be contiguous (rows may be strided); the array must stay
// alive while the matrix is used.
cv::Mat WrapPlane(const pybind11::array& plane, const std::string& name);

// A copy of a cv::Mat as a NumPy array of shape (rows, cols) or
// (rows, cols, channels) when it has several channels.
pybind11::array CopyToArray(const cv::Mat& matrix);

// A NumPy array that shares the matrix's memory: the array holds a
// reference to the matrix's buffer, so it stays valid even when the record
// that owned the matrix replaces or frees it.
pybind11::array ShareAsArray(const cv::Mat& matrix);

// A screen as the library's three meter triples, built from the Python
// forms of a primary:
//  - a float32 array (rows, cols, 3) holding X, Y, Z: split into three
//    planes (one copy of the data);
//  - a tuple of three (rows, cols) arrays X, Y, Z: used in place;
//  - a tuple of three aimhue.Meter objects X, Y, Z: used in place.
// The three primaries must have the same (rows, cols).
class ScreenInput {
 public:
  ScreenInput(pybind11::handle red, pybind11::handle green, pybind11::handle blue, bool convert);
  ScreenInput(ScreenInput&&) = default;

  const LedMeter* const* Triple(int primary) const { return triples_[primary].data(); }
  int Rows() const { return rows_; }
  int Cols() const { return cols_; }

 private:
  void AddPrimary(int primary, pybind11::handle value, const std::string& name, bool convert);

  std::array<std::array<LedMeter, 3>, 3> owned_;
  std::array<std::array<const LedMeter*, 3>, 3> triples_{};
  std::vector<pybind11::object> borrowed_;  // objects whose memory the meters use
  int rows_ = -1;
  int cols_ = -1;
};

// Four target points (red, green, blue, white; L, x, y each) from an array
// of shape (4, 3) or 12 numbers.
std::array<float, 12> TargetBlock(pybind11::handle value, const std::string& name, bool convert);

// A target block as a (4, 3) float32 array.
pybind11::array_t<float> TargetArray(const float* block);

}  // namespace aimhue::python

#endif  // AIMHUE_PYTHON_ARRAY_CHECKS_H_
