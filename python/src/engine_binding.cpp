// aimhue.Engine: the engine handle as a Python object, and aimhue.coverage.
#include <aimhue/api.h>

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <array>
#include <cmath>
#include <cstring>
#include <mutex>
#include <optional>
#include <vector>

#include "array_checks.h"
#include "bindings.h"
#include "errors.h"

namespace py = pybind11;

namespace aimhue::python {
namespace {

bool InUnitRange(float value) { return value > 0.0f && value <= 1.0f; }

std::array<float, 4> FourFractions(const std::vector<float>& values, const char* name) {
  if (values.size() != 4) {
    throw py::value_error(std::string(name) + ": expected four values (red, green, blue, all)");
  }
  std::array<float, 4> result{};
  for (size_t index = 0; index < 4; ++index) {
    if (!InUnitRange(values[index])) {
      throw py::value_error(std::string(name) + ": every value must lie in (0, 1], got " +
                            std::to_string(values[index]) + " at " + std::to_string(index));
    }
    result[index] = values[index];
  }
  return result;
}

py::array_t<float> FloatArray(const float* values, py::ssize_t count) {
  py::array_t<float> array(count);
  std::memcpy(array.mutable_data(), values, static_cast<size_t>(count) * sizeof(float));
  return array;
}

// One engine record and the settings written to it. The library has no
// getters for the settings, so the object keeps what it last set; they are
// not part of the saved results, so a load leaves them as they are, as in
// the record. Calls on one engine are serialised by a lock (the record
// itself has none); separate engines run in parallel.
class Engine {
 public:
  Engine() {
    LogCapture capture;
    ThrowIfFailed(AimhueCreateHandle(&handle_), "AimhueCreateHandle", capture);
    if (handle_ == nullptr) throw std::bad_alloc();
  }
  ~Engine() { AimhueDestroyHandle(handle_); }
  Engine(const Engine&) = delete;
  Engine& operator=(const Engine&) = delete;

  // Runs `call` on the handle without the GIL and under the engine's lock;
  // raises aimhue.Error for a non-zero status.
  template <typename Call>
  void Run(const char* operation, Call call) {
    int status = 0;
    std::optional<LibraryError> failure;
    {
      py::gil_scoped_release release;
      std::lock_guard<std::mutex> guard(lock_);
      if (handle_ == nullptr) {
        status = -1;
      } else {
        LogCapture capture;
        status = call(handle_);
        if (status != 0) failure = LibraryError{status, operation, capture.Lines()};
      }
    }
    if (status == -1) throw py::value_error("the engine is closed");
    if (failure) throw *failure;
  }

  void Close() {
    py::gil_scoped_release release;
    std::lock_guard<std::mutex> guard(lock_);
    AimhueDestroyHandle(handle_);
    handle_ = nullptr;
  }
  bool Closed() {
    std::lock_guard<std::mutex> guard(lock_);
    return handle_ == nullptr;
  }

  // The results as the library stores them in a ".aimhue" file.
  std::vector<char> Record() {
    std::vector<char> record;
    Run("AimhueToBuffer", [&](AimhueHandle handle) {
      uint64_t size = 0;
      int status = AimhueGetBufferSize(handle, &size);
      if (status != 0) return status;
      record.resize(size);
      return AimhueToBuffer(handle, record.data(), &size);
    });
    return record;
  }

  AimhueResults Results() {
    AimhueResults results{};
    Run("AimhueGetResults", [&](AimhueHandle handle) { return AimhueGetResults(handle, &results); });
    return results;
  }

  float ngThresh = 0.08f;
  std::array<float, 4> percentEnd{1.0f, 1.0f, 1.0f, 1.0f};

 private:
  std::mutex lock_;
  AimhueHandle handle_ = nullptr;
};

py::array_t<float> Block(const TargetLxy (&points)[4]) { return TargetArray(&points[0].L); }

void SetNgThresh(Engine& engine, float threshold) {
  if (!InUnitRange(threshold)) {
    throw py::value_error("ng_thresh: must lie in (0, 1], got " + std::to_string(threshold));
  }
  engine.Run("AimhueSetNGThresh",
             [&](AimhueHandle handle) { return AimhueSetNGThresh(handle, threshold); });
  engine.ngThresh = threshold;
}

void SetPercentEnd(Engine& engine, const std::vector<float>& values) {
  const std::array<float, 4> ends = FourFractions(values, "percent_end");
  engine.Run("AimhueSetPercentEnd",
             [&](AimhueHandle handle) { return AimhueSetPercentEnd(handle, ends.data()); });
  engine.percentEnd = ends;
}

void SetFractions(Engine& engine, const std::vector<float>& values) {
  const std::array<float, 4> fractions = FourFractions(values, "fractions");
  engine.Run("AimhueSetPercentCalcChroma", [&](AimhueHandle handle) {
    return AimhueSetPercentCalcChroma(handle, fractions.data());
  });
}

std::unique_ptr<Engine> MakeEngine(std::optional<std::vector<float>> percentEnd,
                                   std::optional<float> ngThresh) {
  auto engine = std::make_unique<Engine>();
  if (percentEnd) SetPercentEnd(*engine, *percentEnd);
  if (ngThresh) SetNgThresh(*engine, *ngThresh);
  return engine;
}

void SetTargets(Engine& engine, py::handle value) {
  const std::array<float, 12> block = TargetBlock(value, "targets", false);
  for (size_t point = 0; point < 4; ++point) {
    const float* lxy = &block[3 * point];
    if (!std::isfinite(lxy[0]) || !std::isfinite(lxy[1]) || !std::isfinite(lxy[2]) ||
        !(lxy[2] > 0.0f)) {
      throw py::value_error("targets: every value must be finite and every y > 0 (point " +
                            std::to_string(point) + ")");
    }
  }
  // Every other result stays as it is.
  engine.Run("AimhueSetTargets",
             [&](AimhueHandle handle) { return AimhueSetTargets(handle, block.data()); });
}

const char* const kScreenArguments = R"(
Parameters
----------
red, green, blue : ndarray or tuple
    Each primary as a float32 array of shape (rows, cols, 3) holding X, Y,
    Z (split into three planes: one copy), as a tuple of three float32
    (rows, cols) arrays X, Y, Z, or as a tuple of three ``Meter`` objects
    (both used in place). All three must have the same (rows, cols).
convert : bool, optional
    Round float64 (or 32/64-bit integer) planes to float32 (one copy each).
    Without it such planes raise ``TypeError``.
)";

std::string Doc(const char* summary, const char* rest = "") {
  return std::string(summary) + "\n" + kScreenArguments + rest;
}

}  // namespace

void RegisterEngine(py::module_& module) {
  py::class_<Engine> engine(module, "Engine", R"(The calibration target engine of one screen.

An engine holds the settings (required coverage, NG threshold) and the
results (targets, both search results, interpolation fractions, NG limit).
The calling order is: ``search``; set ``fractions`` (places the targets
between the search's first and final result and fills their luminances);
``calc_white``; then read ``targets``, ``calc_ng``, ``judge``, ``save``.

Use it as a context manager, or call ``close``, to free it at once. Calls
on one engine are serialised; separate engines may run in separate threads
(the long calls release the GIL).

Parameters
----------
percent_end : sequence of 4 float, optional
    Required coverage of red, green, blue and all three, each in (0, 1].
    Default 1, 1, 1, 1.
ng_thresh : float, optional
    The NG threshold in (0, 1]: the allowed drop in coverage of all three
    targets before a later screen is NG. Default 0.08.

Raises
------
ValueError
    A setting outside (0, 1] (NaN included).
)");
  engine
      .def(py::init(&MakeEngine), py::kw_only(), py::arg("percent_end") = py::none(),
           py::arg("ng_thresh") = py::none())
      .def("close", &Engine::Close, "Frees the engine record; later calls raise ValueError.")
      .def_property_readonly("closed", &Engine::Closed, "True once ``close`` has run.")
      .def("__enter__", [](py::object self) { return self; })
      .def("__exit__",
           [](Engine& self, py::handle, py::handle, py::handle) {
             self.Close();
             return false;
           })
      .def_property(
          "ng_thresh", [](const Engine& self) { return self.ngThresh; }, &SetNgThresh,
          "float: NG threshold in (0, 1]; the NG limit is the coverage of all three minus it.")
      .def_property(
          "percent_end",
          [](const Engine& self) { return FloatArray(self.percentEnd.data(), 4); },
          &SetPercentEnd,
          "ndarray of 4 float32: required coverage of red, green, blue and all three, each "
          "in (0, 1].")
      .def_property(
          "fractions",
          [](Engine& self) {
            std::array<float, 12> targets{};
            std::array<float, 4> fractions{};
            self.Run("AimhueGet", [&](AimhueHandle handle) {
              return AimhueGet(handle, targets.data(), fractions.data());
            });
            return FloatArray(fractions.data(), 4);
          },
          &SetFractions,
          R"(ndarray of 4 float32: interpolation fractions (red, green, blue, unused).

Setting them places each primary's target between the search's first-stage
result (towards 0) and its final result (1) and fills the targets'
luminances; each value must lie in (0, 1] (``ValueError`` otherwise, where
the library would silently keep the old targets).)")
      .def_property(
          "targets", [](Engine& self) { return Block(self.Results().targets); },
          &SetTargets,
          R"(ndarray (4, 3) float32: red, green, blue, white; L, x, y each.

Setting it replaces the four points and keeps every other result; every
value must be finite and every y > 0 (``ValueError`` otherwise).)")
      .def_property_readonly(
          "search_start",
          [](Engine& self) { return Block(self.Results().searchStart); },
          "ndarray (4, 3) float32: the search's first-stage result (the primaries' means).")
      .def_property_readonly(
          "search_end", [](Engine& self) { return Block(self.Results().searchEnd); },
          "ndarray (4, 3) float32: the search's final result.")
      .def_property_readonly(
          "ng_limit",
          [](Engine& self) { return self.Results().ngLimit; },
          "float: the NG limit stored by ``calc_ng`` (0.8 on a new engine).")
      .def(
          "search",
          [](Engine& self, py::handle red, py::handle green, py::handle blue, bool convert) {
            ScreenInput screen(red, green, blue, convert);
            self.Run("AimhueSearch", [&](AimhueHandle handle) {
              return AimhueSearch(handle, screen.Triple(0), screen.Triple(1), screen.Triple(2),
                                  3);
            });
          },
          py::arg("red"), py::arg("green"), py::arg("blue"), py::kw_only(),
          py::arg("convert") = false,
          Doc("Finds the targets that the required share of LEDs can reach.\n\n"
              "Stores both search results and the targets' chromaticities; set ``fractions``\n"
              "next to fill the luminances. A dead LED (X = Y = Z = 0) makes its primary's\n"
              "mean NaN: repair dead LEDs first (``Meter.fix_dead_points``).",
              R"(
Raises
------
aimhue.Error
    The library refused the planes or the search did not converge.
)")
              .c_str())
      .def(
          "calc_white",
          [](Engine& self, std::pair<float, float> white, float scale, bool capped) {
            if (!InUnitRange(scale)) {
              throw py::value_error("scale: must lie in (0, 1], got " + std::to_string(scale));
            }
            if (!std::isfinite(white.first) || !std::isfinite(white.second) ||
                !(white.second > 0.0f)) {
              throw py::value_error("white: x and y must be finite and y > 0");
            }
            const TargetLxy point{0.0f, white.first, white.second};
            self.Run("AimhueCalcWhite", [&](AimhueHandle handle) {
              return AimhueCalcWhite(handle, scale, &point, capped ? 0 : 1);
            });
          },
          py::kw_only(), py::arg("white"), py::arg("scale") = 1.0f, py::arg("capped") = true,
          R"(Rescales the target luminances and balances them to a white point.

Parameters
----------
white : tuple of 2 float
    The wanted white's chromaticity x, y (y > 0).
scale : float, optional
    Luminance scale in (0, 1]; default 1.
capped : bool, optional
    Scale the gains down together so that none exceeds the engine's cap
    (1.1); default True.

Raises
------
ValueError
    ``scale`` outside (0, 1] or a white point that is not finite (the
    library would keep the old targets without a status).
)")
      .def(
          "calc_ng",
          [](Engine& self, py::handle red, py::handle green, py::handle blue, bool convert) {
            ScreenInput screen(red, green, blue, convert);
            self.Run("AimhueCalcPercentNG", [&](AimhueHandle handle) {
              return AimhueCalcPercentNG(handle, screen.Triple(0), screen.Triple(1),
                                         screen.Triple(2), 3);
            });
            return self.Results().ngLimit;
          },
          py::arg("red"), py::arg("green"), py::arg("blue"), py::kw_only(),
          py::arg("convert") = false,
          Doc("Stores the NG limit: this screen's coverage of all three targets minus\n"
              "``ng_thresh``.",
              R"(
Returns
-------
float
    The new NG limit.
)")
              .c_str())
      .def(
          "judge",
          [](Engine& self, py::handle red, py::handle green, py::handle blue, bool convert) {
            ScreenInput screen(red, green, blue, convert);
            bool ng = false;
            self.Run("AimhueJudgeNG", [&](AimhueHandle handle) {
              return AimhueJudgeNG(handle, &ng, screen.Triple(0), screen.Triple(1),
                                   screen.Triple(2), 3);
            });
            return ng;
          },
          py::arg("red"), py::arg("green"), py::arg("blue"), py::kw_only(),
          py::arg("convert") = false,
          Doc("Judges a later measurement against the stored NG limit.", R"(
Returns
-------
bool
    True when the screen is NG: its coverage of all three targets is below
    the NG limit. False when it passes.
)")
              .c_str())
      .def(
          "save",
          [](Engine& self, const std::string& path) {
            self.Run("AimhueSave",
                     [&](AimhueHandle handle) { return AimhueSave(handle, path.c_str()); });
          },
          py::arg("path"),
          R"(Saves the results as a 169-byte ``.aimhue`` file.

The settings (``percent_end``, ``ng_thresh``) are not stored.

Raises
------
aimhue.Error
    Status 8 for a name not ending in ".aimhue", 4 when it cannot be written.
)")
      .def_static(
          "load",
          [](const std::string& path) {
            auto engine = std::make_unique<Engine>();
            engine->Run("AimhueLoad",
                        [&](AimhueHandle handle) { return AimhueLoad(handle, path.c_str()); });
            return engine;
          },
          py::arg("path"),
          R"(A new engine with the results of a ``.aimhue`` file and default settings.

Raises
------
aimhue.Error
    8 (extension), 2 (cannot open), 10 (byte-order mark), 3 (version or
    short file).
)")
      .def(
          "to_bytes",
          [](Engine& self) {
            const auto record = self.Record();
            return py::bytes(record.data(), record.size());
          },
          "The results as the 169 bytes of a ``.aimhue`` file.")
      .def_static(
          "from_bytes",
          [](const py::bytes& data) {
            const std::string content = data;
            auto engine = std::make_unique<Engine>();
            engine->Run("AimhueFromBuffer", [&](AimhueHandle handle) {
              return AimhueFromBuffer(handle, content.data(),
                                      static_cast<int64_t>(content.size()));
            });
            return engine;
          },
          py::arg("data"),
          R"(A new engine with the results of ``to_bytes`` and default settings.

Raises
------
aimhue.Error
    10 (byte-order mark), 3 (version or fewer than 169 bytes).
)");

  module.def(
      "coverage",
      [](py::handle red, py::handle green, py::handle blue, py::handle targets,
         py::handle mask, bool convert) {
        ScreenInput screen(red, green, blue, convert);
        const std::array<float, 12> block = TargetBlock(targets, "targets", convert);
        py::array maskArray;
        AimhueImage image{};
        const AimhueImage* maskPointer = nullptr;
        if (!mask.is_none()) {
          maskArray = py::module_::import("numpy").attr("asarray")(mask);
          const py::dtype dtype = maskArray.dtype();
          if (dtype.kind() == 'b') maskArray = maskArray.attr("view")("uint8");
          if (!maskArray.dtype().equal(py::dtype::of<uint8_t>())) {
            throw py::type_error("mask: expected uint8 or bool, got dtype " +
                                 DtypeName(dtype));
          }
          if (maskArray.ndim() != 2 || maskArray.shape(0) != screen.Rows() ||
              maskArray.shape(1) != screen.Cols()) {
            throw py::value_error("mask: expected the screen's shape (" +
                                  std::to_string(screen.Rows()) + ", " +
                                  std::to_string(screen.Cols()) + ")");
          }
          if (!(maskArray.flags() & py::array::c_style)) {
            throw py::value_error("mask: must be C-contiguous (use numpy.ascontiguousarray)");
          }
          if (static_cast<uint64_t>(maskArray.size()) > UINT32_MAX) {
            throw py::value_error("mask: more than 2**32 - 1 LEDs");
          }
          image = AimhueImage{screen.Rows(), screen.Cols(), 0,
                              static_cast<uint32_t>(maskArray.size()), maskArray.data()};
          maskPointer = &image;
        }
        std::array<float, 4> fractions{};
        int status = 0;
        std::optional<LibraryError> failure;
        {
          py::gil_scoped_release release;
          LogCapture capture;
          status = AimhueCalcPercentOfTarget(screen.Triple(0), screen.Triple(1),
                                             screen.Triple(2), block.data(), fractions.data(),
                                             maskPointer, 3);
          if (status != 0) failure = LibraryError{status, "AimhueCalcPercentOfTarget",
                                                  capture.Lines()};
        }
        if (failure) throw *failure;
        return FloatArray(fractions.data(), 4);
      },
      py::arg("red"), py::arg("green"), py::arg("blue"), py::arg("targets"),
      py::arg("mask") = py::none(), py::kw_only(), py::arg("convert") = false,
      Doc("The share of LEDs whose own gamut holds each target.",
          R"(targets : array_like (4, 3) or 12 numbers
    Red, green, blue, white; L, x, y each (only the x, y of the primaries
    are read), for example ``Engine.targets``. float64 arrays need
    ``convert``; plain Python numbers are read as float32.
mask : ndarray of uint8 or bool (rows, cols), optional
    Counts only the LEDs where it is non-zero; C-contiguous.

Returns
-------
ndarray of 4 float32
    Coverage of red, green, blue and all three (NaN when the mask counts no
    LED).
)")
          .c_str());
}

}  // namespace aimhue::python
