// The parts of the module, one per concept; module.cpp calls them in order.
#ifndef AIMHUE_PYTHON_BINDINGS_H_
#define AIMHUE_PYTHON_BINDINGS_H_

#include <pybind11/pybind11.h>

namespace aimhue::python {

void RegisterErrors(pybind11::module_& module);
void RegisterMeter(pybind11::module_& module);
void RegisterEngine(pybind11::module_& module);
void RegisterReaders(pybind11::module_& module);
void RegisterSynthetic(pybind11::module_& module);
void RegisterCorrection(pybind11::module_& module);
void RegisterColour(pybind11::module_& module);

}  // namespace aimhue::python

#endif  // AIMHUE_PYTHON_BINDINGS_H_
