#include "Bindings.hpp"
#include "PythonStreams.hpp"

#include <opc/editing/FileContent.hpp>

#include <pybind11/stl/filesystem.h>

#include <algorithm>
#include <cstring>

namespace opcpython {

namespace {

constexpr std::size_t BLOCK_SIZE = std::size_t{64} * 1024;

[[noreturn]] void raise(PyObject* type, const char* message) {
    PyErr_SetString(type, message);
    throw py::error_already_set();
}

} // namespace

std::uint64_t FileObject::size() const {
    return callPython([this] {
        file.get().attr("seek")(0, 2);
        return file.get().attr("tell")().cast<std::uint64_t>();
    });
}

void FileObject::seek(std::uint64_t offset) const {
    callPython([&] { file.get().attr("seek")(offset); });
}

std::size_t FileObject::read(unsigned char* buffer, std::size_t count) const {
    return callPython([&] {
        const py::object got = file.get().attr("read")(count);
        if (got.is_none())
            raise(PyExc_BlockingIOError, "the file object has no bytes yet");
        const py::bytes bytes(got);
        char* start = nullptr;
        Py_ssize_t size = 0;
        if (PyBytes_AsStringAndSize(bytes.ptr(), &start, &size) != 0)
            throw py::error_already_set();
        if (static_cast<std::size_t>(size) > count)
            raise(PyExc_ValueError, "the file object has read more than it was asked for");
        std::memcpy(buffer, start, static_cast<std::size_t>(size));
        return static_cast<std::size_t>(size);
    });
}

void FileObject::write(const char* bytes, std::size_t count) const {
    callPython([&] {
        while (count != 0) {
            const py::object written = file.get().attr("write")(py::bytes(bytes, count));
            const auto size = written.is_none() ? count : written.cast<std::size_t>();
            if (size == 0 || size > count)
                raise(PyExc_OSError, "the file object hasn't written what it was given");
            bytes += size;
            count -= size;
        }
    });
}

void FileObject::restart() const {
    callPython([this] {
        if (!py::hasattr(file.get(), "seekable") || !file.get().attr("seekable")().cast<bool>())
            return;
        file.get().attr("seek")(0);
        file.get().attr("truncate")();
    });
}

void FileObject::flush() const {
    callPython([this] {
        if (py::hasattr(file.get(), "flush"))
            file.get().attr("flush")();
    });
}

void FileObjectInput::fill() const {
    if (given != filled || isAtEnd)
        return;
    block.resize(BLOCK_SIZE);
    given = 0;
    filled = file.read(block.data(), block.size());
    isAtEnd = filled == 0;
}

bool FileObjectInput::isDone() const {
    fill();
    return isAtEnd;
}

std::uint64_t FileObjectInput::read(unsigned char* buffer, std::uint64_t count) {
    fill();
    const std::size_t size = static_cast<std::size_t>(std::min<std::uint64_t>(count, filled - given));
    std::copy_n(block.data() + given, size, buffer);
    given += size;
    return size;
}

std::uint64_t BytesInput::read(unsigned char* buffer, std::uint64_t count) {
    const std::size_t size =
        static_cast<std::size_t>(std::min<std::uint64_t>(count, bytes.size() - position));
    std::memcpy(buffer, bytes.data() + position, size);
    position += size;
    return size;
}

std::unique_ptr<opc::InputStream> makeInput(const py::object& content) {
    if (py::hasattr(content, "read"))
        return std::make_unique<FileObjectInput>(content);
    if (py::hasattr(content, "__fspath__"))
        return std::make_unique<opc::editing::FileContent>(content.cast<std::filesystem::path>());
    if (!PyObject_CheckBuffer(content.ptr()))
        raise(PyExc_TypeError, "the content of a part is bytes, a path object or a binary file object");
    return std::make_unique<BytesInput>(py::bytes(content).cast<std::string>());
}

} // namespace opcpython
