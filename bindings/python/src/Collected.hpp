#pragma once

#include <pybind11/pybind11.h>

/// @file
/// Objects of Python that the library holds, for the garbage collector. A store can hold the package that is open on it: only
/// the collector finds that nobody else holds either.

namespace opcpython {

namespace py = pybind11;

/// The owner in an object of Python; null while it is being made.
template <typename Owner>
Owner* ownerIn(PyObject* object) noexcept {
    auto holder = reinterpret_cast<py::detail::instance*>(object)->get_value_and_holder();
    return holder.holder_constructed() ? holder.template value_ptr<Owner>() : nullptr;
}

/// Lets the collector see what the objects of a class hold.
/// @tparam Owner  has the functions
///                `int visit(visitproc, void*)`: visits each object that it alone holds, or none while it is in use;
///                `void finish()`: ends what it does with them, and may call them;
///                `void forget()`: drops them. It is called after `finish`, and no other function after it needs them
template <typename Owner>
py::custom_type_setup collected() {
    return py::custom_type_setup([](PyHeapTypeObject* heapType) {
        PyTypeObject& type = heapType->ht_type;
        type.tp_flags |= Py_TPFLAGS_HAVE_GC;
        type.tp_traverse = [](PyObject* self, visitproc visit, void* arg) {
            Py_VISIT(Py_TYPE(self));
            Owner* const owner = ownerIn<Owner>(self);
            return owner == nullptr ? 0 : owner->visit(visit, arg);
        };
        type.tp_finalize = [](PyObject* self) {
            const py::error_scope pending;
            if (Owner* const owner = ownerIn<Owner>(self))
                try {
                    owner->finish();
                } catch (...) { // as in a destructor
                }
        };
        type.tp_clear = [](PyObject* self) {
            if (Owner* const owner = ownerIn<Owner>(self))
                owner->forget();
            return 0;
        };
        type.tp_dealloc = [](PyObject* self) {
            PyObject_GC_UnTrack(self); // what is destroyed can call Python, and so the collector
            py::detail::pybind11_object_dealloc(self);
        };
    });
}

} // namespace opcpython
