#include "array_checks.h"

#include <aimhue/records.h>

#include <climits>
#include <cstring>
#include <memory>

namespace py = pybind11;

namespace aimhue::python {
namespace {

constexpr int kPrimaryCount = 3;
constexpr uint32_t kColourCodes[kPrimaryCount] = {1, 2, 4};  // red, green, blue
constexpr uint32_t kAxisTypes[kPrimaryCount] = {CIE_X, CIE_Y, CIE_Z};
const char* const kAxisNames[kPrimaryCount] = {"X", "Y", "Z"};

bool ExactInFloat32(const py::dtype& dtype) {
  const char kind = dtype.kind();
  const auto size = dtype.itemsize();
  if (kind == 'f') return size <= 4;
  if (kind == 'i' || kind == 'u') return size <= 2;
  return kind == 'b';
}

py::dtype DtypeOf(int depth) {
  switch (depth) {
    case CV_8U: return py::dtype::of<uint8_t>();
    case CV_8S: return py::dtype::of<int8_t>();
    case CV_16U: return py::dtype::of<uint16_t>();
    case CV_16S: return py::dtype::of<int16_t>();
    case CV_32S: return py::dtype::of<int32_t>();
    case CV_32F: return py::dtype::of<float>();
    case CV_64F: return py::dtype::of<double>();
    default: throw py::type_error("a matrix of an element type NumPy has no dtype for");
  }
}

std::vector<py::ssize_t> ShapeOf(const cv::Mat& matrix) {
  std::vector<py::ssize_t> shape{matrix.rows, matrix.cols};
  if (matrix.channels() > 1) shape.push_back(matrix.channels());
  return shape;
}

std::vector<py::ssize_t> StridesOf(const cv::Mat& matrix) {
  const auto element = static_cast<py::ssize_t>(matrix.elemSize());
  std::vector<py::ssize_t> strides{static_cast<py::ssize_t>(matrix.step[0]), element};
  if (matrix.channels() > 1) strides.push_back(static_cast<py::ssize_t>(matrix.elemSize1()));
  return strides;
}

std::string ShapeText(const py::array& array) {
  std::string text = "(";
  for (py::ssize_t axis = 0; axis < array.ndim(); ++axis) {
    if (axis > 0) text += ", ";
    text += std::to_string(array.shape(axis));
  }
  return text + (array.ndim() == 1 ? ",)" : ")");
}

}  // namespace

std::string DtypeName(const py::dtype& dtype) {
  return py::str(static_cast<const py::handle&>(dtype)).cast<std::string>();
}

py::array Float32Array(py::handle value, const std::string& name, bool convert) {
  py::module_ numpy = py::module_::import("numpy");
  py::array array;
  try {
    array = numpy.attr("asarray")(value);
  } catch (py::error_already_set&) {
    throw py::type_error(name + ": expected a NumPy array of float32");
  }
  const py::dtype dtype = array.dtype();
  if (dtype.is(py::dtype::of<float>()) || dtype.equal(py::dtype::of<float>())) return array;
  const char kind = dtype.kind();
  if (kind != 'f' && kind != 'i' && kind != 'u' && kind != 'b') {
    throw py::type_error(name + ": expected a numeric array, got dtype " +
                         DtypeName(dtype));
  }
  if (!ExactInFloat32(dtype) && !convert) {
    throw py::type_error(name + ": dtype " + DtypeName(dtype) +
                         " is not exact in float32; pass convert=True to round it to float32 "
                         "(one copy)");
  }
  return array.attr("astype")(numpy.attr("float32"));
}

cv::Mat WrapPlane(const py::array& plane, const std::string& name) {
  if (plane.ndim() != 2) {
    throw py::value_error(name + ": expected a 2-D array (rows, cols), got shape " +
                          ShapeText(plane));
  }
  const py::ssize_t rows = plane.shape(0);
  const py::ssize_t cols = plane.shape(1);
  if (rows > INT_MAX || cols > INT_MAX) throw py::value_error(name + ": too many rows or columns");
  const py::ssize_t itemSize = plane.itemsize();
  const py::ssize_t rowStride = plane.strides(0);
  if ((cols > 1 && plane.strides(1) != itemSize) ||
      (rows > 1 && (rowStride < cols * itemSize || rowStride % itemSize != 0))) {
    throw py::value_error(name + ": the columns must be contiguous in memory and rows "
                          "increasing (use numpy.ascontiguousarray)");
  }
  const size_t step = rows > 1 ? static_cast<size_t>(rowStride) : static_cast<size_t>(cols * itemSize);
  if (rows == 0 || cols == 0) return cv::Mat(static_cast<int>(rows), static_cast<int>(cols), CV_32FC1);
  // The library only reads a primary's planes, so the matrix may point at
  // read-only memory.
  return cv::Mat(static_cast<int>(rows), static_cast<int>(cols), CV_32FC1,
                 const_cast<void*>(plane.data()), step);
}

py::array CopyToArray(const cv::Mat& matrix) {
  if (matrix.empty()) return py::array(DtypeOf(matrix.depth()), std::vector<py::ssize_t>{0, 0});
  py::array array(DtypeOf(matrix.depth()), ShapeOf(matrix));
  cv::Mat view(matrix.rows, matrix.cols, matrix.type(), array.mutable_data());
  matrix.copyTo(view);
  return array;
}

py::array ShareAsArray(const cv::Mat& matrix) {
  if (matrix.empty()) return py::array(DtypeOf(matrix.depth()), std::vector<py::ssize_t>{0, 0});
  auto owner = std::make_unique<cv::Mat>(matrix);
  void* data = owner->data;
  py::capsule base(owner.get(), [](void* pointer) { delete static_cast<cv::Mat*>(pointer); });
  owner.release();
  return py::array(DtypeOf(matrix.depth()), ShapeOf(matrix), StridesOf(matrix), data, base);
}

ScreenInput::ScreenInput(py::handle red, py::handle green, py::handle blue, bool convert) {
  AddPrimary(0, red, "red", convert);
  AddPrimary(1, green, "green", convert);
  AddPrimary(2, blue, "blue", convert);
}

void ScreenInput::AddPrimary(int primary, py::handle value, const std::string& name,
                             bool convert) {
  auto& meters = owned_[primary];
  auto& triple = triples_[primary];
  auto checkShape = [&](int rows, int cols, const std::string& what) {
    if (rows_ < 0) {
      rows_ = rows;
      cols_ = cols;
    } else if (rows != rows_ || cols != cols_) {
      throw py::value_error(what + ": shape (" + std::to_string(rows) + ", " +
                            std::to_string(cols) + ") differs from the screen's (" +
                            std::to_string(rows_) + ", " + std::to_string(cols_) + ")");
    }
  };
  auto setUp = [&](int axis, cv::Mat plane) {
    meters[axis].color = kColourCodes[primary];
    meters[axis].type = kAxisTypes[axis];
    meters[axis].chroma = std::move(plane);
    triple[axis] = &meters[axis];
  };

  if (py::isinstance<py::tuple>(value) || py::isinstance<py::list>(value)) {
    const py::sequence parts = py::reinterpret_borrow<py::sequence>(value);
    if (parts.size() != kPrimaryCount) {
      throw py::value_error(name + ": expected three planes or meters (X, Y, Z), got " +
                            std::to_string(parts.size()));
    }
    for (int axis = 0; axis < kPrimaryCount; ++axis) {
      const std::string partName = name + "[" + std::to_string(axis) + "] (" +
                                   kAxisNames[axis] + ")";
      py::object part = parts[axis];
      if (py::isinstance<LedMeter>(part)) {
        const LedMeter* meter = part.cast<const LedMeter*>();
        checkShape(meter->chroma.rows, meter->chroma.cols, partName);
        triple[axis] = meter;
      } else {
        py::array plane = Float32Array(part, partName, convert);
        cv::Mat wrapped = WrapPlane(plane, partName);
        checkShape(wrapped.rows, wrapped.cols, partName);
        setUp(axis, std::move(wrapped));
        part = plane;
      }
      borrowed_.push_back(std::move(part));
    }
    return;
  }

  if (py::isinstance<LedMeter>(value)) {
    throw py::type_error(name + ": a primary needs its three meters X, Y, Z as a tuple");
  }
  py::array interleaved = Float32Array(value, name, convert);
  if (interleaved.ndim() != 3 || interleaved.shape(2) != kPrimaryCount) {
    throw py::value_error(name + ": expected an array of shape (rows, cols, 3) holding X, Y, Z "
                          "or a tuple of three (rows, cols) planes, got shape " +
                          ShapeText(interleaved));
  }
  if (interleaved.shape(0) > INT_MAX || interleaved.shape(1) > INT_MAX) {
    throw py::value_error(name + ": too many rows or columns");
  }
  const int rows = static_cast<int>(interleaved.shape(0));
  const int cols = static_cast<int>(interleaved.shape(1));
  checkShape(rows, cols, name);
  // The one copy of this form: X, Y and Z become planes of their own, in
  // one pass over the array (without the GIL: other threads may run).
  const auto strideRow = interleaved.strides(0), strideCol = interleaved.strides(1),
             strideAxis = interleaved.strides(2);
  const char* base = static_cast<const char*>(interleaved.data());
  cv::Mat planes[kPrimaryCount];
  for (auto& plane : planes) plane.create(rows, cols, CV_32FC1);
  const auto floatSize = static_cast<py::ssize_t>(sizeof(float));
  const bool packed = strideAxis == floatSize && strideCol == kPrimaryCount * floatSize &&
                      strideRow >= cols * strideCol && strideRow % floatSize == 0;
  if (packed) {
    // The usual layout: OpenCV's vectorised split.
    py::gil_scoped_release release;
    const cv::Mat whole(rows, cols, CV_32FC3, const_cast<char*>(base),
                        static_cast<size_t>(strideRow));
    cv::split(whole, planes);
  } else {
    py::gil_scoped_release release;
    for (int row = 0; row < rows; ++row) {
      const char* source = base + row * strideRow;
      float* targets[kPrimaryCount] = {planes[0].ptr<float>(row), planes[1].ptr<float>(row),
                                       planes[2].ptr<float>(row)};
      for (int col = 0; col < cols; ++col, source += strideCol) {
        for (int axis = 0; axis < kPrimaryCount; ++axis) {
          std::memcpy(&targets[axis][col], source + axis * strideAxis, sizeof(float));
        }
      }
    }
  }
  for (int axis = 0; axis < kPrimaryCount; ++axis) setUp(axis, std::move(planes[axis]));
  borrowed_.push_back(std::move(interleaved));
}

std::array<float, 12> TargetBlock(py::handle value, const std::string& name, bool convert) {
  py::array array;
  if (py::isinstance<py::array>(value)) {
    array = Float32Array(value, name, convert);
  } else {
    try {
      array = py::module_::import("numpy").attr("asarray")(value, "float32");
    } catch (py::error_already_set&) {
      throw py::type_error(name + ": expected four points L, x, y as numbers");
    }
  }
  const bool block = array.ndim() == 2 && array.shape(0) == 4 && array.shape(1) == 3;
  const bool flat = array.ndim() == 1 && array.shape(0) == 12;
  if (!block && !flat) {
    throw py::value_error(name + ": expected shape (4, 3) (red, green, blue, white; L, x, y), "
                          "got " + ShapeText(array));
  }
  std::array<float, 12> result{};
  auto contiguous = py::array_t<float, py::array::c_style | py::array::forcecast>::ensure(array);
  std::memcpy(result.data(), contiguous.data(), sizeof(result));
  return result;
}

py::array_t<float> TargetArray(const float* block) {
  py::array_t<float> array({4, 3});
  std::memcpy(array.mutable_data(), block, 12 * sizeof(float));
  return array;
}

}  // namespace aimhue::python
