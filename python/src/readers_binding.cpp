// Camera files: the raw, DNG and PGM readers and the Shot record.
#include <aimhue/bimage.h>
#include <aimhue/shot.h>
#include <aimhue/status.h>

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>

#include <optional>

#include "array_checks.h"
#include "bindings.h"
#include "errors.h"
#include "record_methods.h"

namespace py = pybind11;

namespace aimhue::python {
namespace {

// Runs a reader without the GIL. The readers report failure by an empty
// image; that becomes aimhue.Error with status 2 (an image read failed) and
// the reader's log lines.
template <typename Read>
py::array ReadImage(const char* operation, Read read) {
  cv::Mat image;
  std::optional<LibraryError> failure;
  {
    py::gil_scoped_release release;
    LogCapture capture;
    const bool ok = read(image);
    if (!ok || image.empty()) failure = LibraryError{kOpenReadFailed, operation, capture.Lines()};
  }
  if (failure) throw *failure;
  return ShareAsArray(image);
}

}  // namespace

void RegisterReaders(py::module_& module) {
  module.def(
      "read_raw",
      [](const std::string& path, int rows, int cols) {
        if (rows < 1 || cols < 1) throw py::value_error("rows, cols: must be at least 1");
        return ReadImage("BImage::ReadOrvoRaw", [&](cv::Mat& image) {
          image = BImage::ReadOrvoRaw(path, rows, cols);
          return true;
        });
      },
      py::arg("path"), py::arg("rows"), py::arg("cols"),
      R"(Reads a headerless raw dump of rows x cols little-endian 16-bit samples.

Parameters
----------
path : str
    The file; its size must be exactly rows * cols * 2 bytes.
rows, cols : int
    The sensor geometry.

Returns
-------
ndarray (rows, cols) uint16
    The mosaiced samples.

Raises
------
aimhue.Error
    Status 2 when the file cannot be opened or has another size.

Notes
-----
The conversion runs in parallel and sets the process's OpenMP thread count
to the number of processors minus one (at least one).
)");
  module.def(
      "read_dng",
      [](const std::string& path, bool flipped) {
        return ReadImage(flipped ? "BImage::ReadDngToup" : "BImage::ReadRggbDng",
                         [&](cv::Mat& image) {
                           image = flipped ? BImage::ReadDngToup(path)
                                           : BImage::ReadRggbDng(path);
                           return true;
                         });
      },
      py::arg("path"), py::kw_only(), py::arg("flipped") = false,
      R"(Reads the 16-bit samples of a DNG/TIFF file (first directory, one strip).

Parameters
----------
path : str
    The file.
flipped : bool, optional
    The variant whose strip-offsets value is the data position itself and
    whose image is stored upside down (it is flipped back). Default: the
    strip-offsets value points at an array of offsets.

Returns
-------
ndarray (rows, cols) uint16

Raises
------
aimhue.Error
    Status 2 when the file cannot be read as such an image.
)");
  module.def(
      "read_pgm",
      [](const std::string& path) {
        return ReadImage("BImage::ReadPgm",
                         [&](cv::Mat& image) { return BImage::ReadPgm(path, image); });
      },
      py::arg("path"),
      R"(Reads a 16-bit binary PGM file ("P5", width and height, maximum value).

Returns
-------
ndarray (rows, cols) uint16

Raises
------
aimhue.Error
    Status 2 when the file cannot be read or holds no samples (this reader
    writes its messages to standard output or standard error, not to the
    error's lines).
)");

  py::class_<Shot> shot(module, "Shot",
                        R"(One camera capture with its metadata, as stored in ``.shot`` files.

Only reading, writing and the image are offered here; captures are built
into meters by the calibration host.
)");
  shot
      .def_property_readonly(
          "image", [](const Shot& self) { return ShareAsArray(self.image); },
          "ndarray: the capture (uint16, or float32 after a colour conversion); shares the "
          "shot's memory.")
      .def_readonly("type", &Shot::type, "int: what the image holds (a measurement-type bit set).")
      .def_property_readonly(
          "color",
          [](const Shot& self) {
            return self.color ? py::object(py::int_(*self.color)) : py::object(py::none());
          },
          "int or None: the displayed primary (the caller's code).");
  DefineRecordFileMethods(
      shot, "Shot",
      {"Writes a ``.shot`` file (the image stored as uint16). aimhue.Error 8 or 4.",
       R"(Reads a ``.shot`` file.

Raises
------
aimhue.Error
    8 (name not ending in ".shot"), 2 (cannot open), 10 (byte-order mark),
    3 (version, damaged or truncated data).
)",
       "The bytes of the shot's ``.shot`` file. aimhue.Error 5 for an empty image.",
       "A shot from the bytes of a ``.shot`` file (errors as ``load``)."});
}

}  // namespace aimhue::python
