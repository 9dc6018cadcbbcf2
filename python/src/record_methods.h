// What the module's record classes (Meter, Shot, Correction) share: a
// library call run without the GIL that raises aimhue.Error on a non-zero
// status, and the save / load / to_bytes / from_bytes methods around the
// records' file and buffer operations.
#ifndef AIMHUE_PYTHON_RECORD_METHODS_H_
#define AIMHUE_PYTHON_RECORD_METHODS_H_

#include <pybind11/pybind11.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "errors.h"

namespace aimhue::python {

// Runs `call` (returning a library status) without the GIL; a non-zero
// status raises aimhue.Error naming `operation`, with the error lines the
// call logged.
template <typename Call>
void RunLibraryCall(const std::string& operation, Call call) {
  std::optional<LibraryError> failure;
  {
    pybind11::gil_scoped_release release;
    LogCapture capture;
    const int status = call();
    if (status != 0) failure = LibraryError{status, operation, capture.Lines()};
  }
  if (failure) throw *failure;
}

// The docstrings of the four methods of DefineRecordFileMethods.
struct RecordFileDocs {
  const char* save;
  const char* load;
  const char* toBytes;
  const char* fromBytes;
};

// Defines save(path), the static load(path), to_bytes() and the static
// from_bytes(data) on `cls`, calling Record's Save, Load, GetBufferSize and
// ToBuffer, and FromBuffer. Errors name the operation "<name>::Save" and so
// on, `name` being the record's C++ class name.
template <typename Record>
void DefineRecordFileMethods(pybind11::class_<Record>& cls, const std::string& name,
                             const RecordFileDocs& docs) {
  namespace py = pybind11;
  cls.def(
         "save",
         [name](const Record& self, const std::string& path) {
           RunLibraryCall(name + "::Save", [&] { return self.Save(path); });
         },
         py::arg("path"), docs.save)
      .def_static(
          "load",
          [name](const std::string& path) {
            auto result = std::make_unique<Record>();
            RunLibraryCall(name + "::Load", [&] { return result->Load(path); });
            return result;
          },
          py::arg("path"), docs.load)
      .def(
          "to_bytes",
          [name](const Record& self) {
            uint64_t size = 0;
            RunLibraryCall(name + "::GetBufferSize", [&] { return self.GetBufferSize(&size); });
            std::string content(size, '\0');
            RunLibraryCall(name + "::ToBuffer",
                           [&] { return self.ToBuffer(content.data(), &size); });
            return py::bytes(content.data(), size);
          },
          docs.toBytes)
      .def_static(
          "from_bytes",
          [name](const py::bytes& data) {
            const std::string content = data;
            auto result = std::make_unique<Record>();
            RunLibraryCall(name + "::FromBuffer",
                           [&] { return result->FromBuffer(content.data(), content.size()); });
            return result;
          },
          py::arg("data"), docs.fromBytes);
}

}  // namespace aimhue::python

#endif  // AIMHUE_PYTHON_RECORD_METHODS_H_
