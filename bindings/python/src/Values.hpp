#pragma once

#include <opc/core/Text.hpp>

#include <pybind11/pybind11.h>

#include <string>
#include <string_view>

namespace opcpython {

namespace py = pybind11;

/// Text in UTF-8 as a `str`. What isn't well-formed becomes U+FFFD: packages can say anything.
inline py::str toPython(std::string_view text) {
    PyObject* made = PyUnicode_DecodeUTF8(text.data(), static_cast<Py_ssize_t>(text.size()), "replace");
    if (made == nullptr)
        throw py::error_already_set();
    return py::reinterpret_steal<py::str>(made);
}

inline std::string toText(const std::u16string& text) {
    return opc::toUDEString(text);
}

inline std::u16string fromText(const std::string& text) {
    return opc::toString(text, true);
}

/// `None` for an empty text.
inline py::object orNone(std::string_view text) {
    return text.empty() ? py::object(py::none()) : py::object(toPython(text));
}

} // namespace opcpython
