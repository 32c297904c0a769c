#pragma once

#include "Lock.hpp"

#include <opc/core/Exception.hpp>

#include <pybind11/pybind11.h>

#include <optional>
#include <type_traits>
#include <utility>

/// @file
/// How a call goes from Python to the library, and from the library back to Python's own objects.

namespace opcpython {

namespace py = pybind11;

/// What Python's own objects have raised during a call of the library. The library takes that for a failure of a store, and
/// may go on after it; the call ends with the exception itself.
class RaisedInCall {
public:
    RaisedInCall() : outer(std::exchange(current(), this)) {}
    RaisedInCall(const RaisedInCall&) = delete;
    RaisedInCall& operator=(const RaisedInCall&) = delete;
    ~RaisedInCall() { current() = outer; }

    /// Keeps the first exception of the call that runs. Outside of a call something is destroyed, which can't raise.
    static void keep(py::error_already_set&& raised) {
        if (current() == nullptr)
            raised.discard_as_unraisable("the end of an object of opcmodel");
        else if (!current()->first)
            current()->first.emplace(std::move(raised));
    }

    /// Raises it if there was one.
    void rethrow() {
        if (first)
            throw py::error_already_set(*std::exchange(first, std::nullopt));
    }

private:
    static RaisedInCall*& current(); ///< of this thread

    RaisedInCall* const outer; ///< of a call that this one is part of
    std::optional<py::error_already_set> first;
};

/// Calls the library without the interpreter's lock. Such calls can be nested.
/// @param action  uses no object of Python but through `callPython`
template <typename Action>
auto withoutLock(Action&& action) -> decltype(action()) {
    if (PyGILState_Check() == 0)
        return action();
    RaisedInCall raised;
    try {
        if constexpr (std::is_void_v<decltype(action())>) {
            {
                const LockReleased released;
                action();
            }
            raised.rethrow();
        } else {
            auto result = [&] {
                const LockReleased released;
                return action();
            }();
            raised.rethrow();
            return result;
        }
    } catch (const py::error_already_set&) {
        throw;
    } catch (...) {
        raised.rethrow();
        throw;
    }
}

/// The failure of an object of Python, as the library sees it. It isn't an `opc::Exception`, after which the library could
/// go on.
class CallFailed : public std::runtime_error {
public:
    CallFailed() : std::runtime_error("an object of Python has raised an exception") {}
};

/// Calls an object of Python from the library, with the interpreter's lock.
/// @throws CallFailed  it has raised something
template <typename Action>
auto callPython(Action&& action) -> decltype(action()) {
    const LockTaken taken;
    try {
        return action();
    } catch (py::error_already_set& raised) {
        RaisedInCall::keep(std::move(raised));
    } catch (const py::cast_error& wrong) {
        PyErr_SetString(PyExc_TypeError, wrong.what());
        RaisedInCall::keep(py::error_already_set());
    } catch (const py::builtin_exception& wrong) {
        wrong.set_error();
        RaisedInCall::keep(py::error_already_set());
    }
    throw CallFailed();
}

/// An object of Python that may be dropped without the interpreter's lock.
class PythonObject {
public:
    explicit PythonObject(py::object object) : object(std::move(object)) {}
    PythonObject(const PythonObject&) = delete;
    PythonObject& operator=(const PythonObject&) = delete;
    ~PythonObject() {
        const LockTaken taken;
        object = py::object();
    }

    /// With the interpreter's lock.
    /// @{
    const py::object& get() const { return object; }
    int visit(visitproc visit, void* arg) const {
        Py_VISIT(object.ptr());
        return 0;
    }
    void forget() { object = py::none(); }
    /// @}

private:
    py::object object;
};

} // namespace opcpython
