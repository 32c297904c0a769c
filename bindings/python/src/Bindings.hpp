#pragma once

#include <pybind11/pybind11.h>

namespace opcpython {

/// Each declares the functions and classes of one concern in the module `opcmodel._opcmodel`.
/// @{
void bindErrors(pybind11::module_& module);
void bindArchiveSource(pybind11::module_& module);
void bindParts(pybind11::module_& module);
void bindRelationships(pybind11::module_& module);
void bindPackage(pybind11::module_& module);
void bindProperties(pybind11::module_& module);
void bindInspection(pybind11::module_& module);
void bindComparison(pybind11::module_& module);
void bindEditing(pybind11::module_& module);
void bindSignatures(pybind11::module_& module);
void bindStore(pybind11::module_& module);
void bindScanning(pybind11::module_& module);

/// At the end of the process: no scan reads a further file.
void stopScans() noexcept;
/// @}

} // namespace opcpython
