#pragma once

#include "Calls.hpp"

#include <opc/core/InputStream.hpp>
#include <opc/physical/RandomAccessSource.hpp>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

/// @file
/// File objects of Python as streams of the library. The library calls them without the interpreter's lock.

namespace opcpython {

/// A binary file object. Copies of what Python calls go through it.
class FileObject {
public:
    explicit FileObject(py::object file) : file(std::move(file)) {}

    std::uint64_t size() const;

    /// @return how many bytes were read; 0 at the end
    std::size_t read(unsigned char* buffer, std::size_t count) const;
    void seek(std::uint64_t offset) const;
    void write(const char* bytes, std::size_t count) const;

    /// Goes to the start of a file that can seek, and drops what is there.
    void restart() const;
    void flush() const;

    PythonObject& object() { return file; }

private:
    PythonObject file;
};

/// A file object that can seek.
class FileObjectSource : public opc::physical::RandomAccessSource {
public:
    explicit FileObjectSource(std::shared_ptr<FileObject> file) : file(std::move(file)) {}

    std::uint64_t size() override { return file->size(); }
    std::size_t read(std::uint64_t offset, unsigned char* buffer, std::size_t count) override {
        file->seek(offset);
        return file->read(buffer, count);
    }

private:
    std::shared_ptr<FileObject> file;
};

/// Reads a file object from where it stands to its end.
class FileObjectInput : public opc::InputStream {
public:
    explicit FileObjectInput(py::object file) : file(std::move(file)) {}

    void open() override {}
    std::uint64_t read(unsigned char* buffer, std::uint64_t count) override;
    bool isDone() const override;
    void close() override {}

private:
    void fill() const;

    FileObject file;
    mutable std::vector<unsigned char> block; ///< what was read and not yet given
    mutable std::size_t given = 0, filled = 0;
    mutable bool isAtEnd = false;
};

/// Reads bytes.
class BytesInput : public opc::InputStream {
public:
    explicit BytesInput(std::string bytes) : bytes(std::move(bytes)) {}

    void open() override { position = 0; }
    std::uint64_t read(unsigned char* buffer, std::uint64_t count) override;
    bool isDone() const override { return position == bytes.size(); }
    void close() override {}

private:
    const std::string bytes;
    std::size_t position = 0;
};

/// The content of a part as Python gives it: bytes, a path, or a file object.
std::unique_ptr<opc::InputStream> makeInput(const py::object& content);

} // namespace opcpython
