#pragma once

#include <opc/core/InputStream.hpp>

#include <cstddef>
#include <cstdlib>
#include <exception>
#include <memory>
#include <optional>
#include <string_view>

namespace opc::model {

/// A buffer for the bytes of a stream. It isn't set to zero first, and grows in place where the system can do that.
class ReadAheadBuffer {
public:
    ReadAheadBuffer() = default;
    ReadAheadBuffer(const ReadAheadBuffer&) = delete;
    ReadAheadBuffer& operator=(const ReadAheadBuffer&) = delete;

    unsigned char* data() const { return bytes.get(); }
    std::size_t size() const { return room; }

    /// @param larger  the new size in bytes; the content stays
    /// @throws std::bad_alloc  and the buffer doesn't change
    void grow(std::size_t larger);

private:
    struct Deleter {
        void operator()(unsigned char* owned) const noexcept { std::free(owned); }
    };

    std::unique_ptr<unsigned char, Deleter> bytes;
    std::size_t room = 0;
};

/// A stream whose first bytes were read ahead. It gives those first, and then what the stream itself gives. If
/// reading ahead failed, the reader gets the failure when it comes to that point.
class ReplayedStream : public InputStream {
public:
    /// @param stream  open; must outlive this object
    explicit ReplayedStream(InputStream& stream) : stream(stream) {}

    /// Reads ahead to the end of the stream, but not much beyond `limit` bytes.
    /// @param buffer  grows as needed; must outlive this object, and nobody else may change it meanwhile
    /// @return all bytes of the stream, in the buffer; nothing if the stream is longer
    std::optional<std::string_view> readAhead(ReadAheadBuffer& buffer, std::size_t limit);

    void open() override;
    std::uint64_t read(unsigned char* buffer, std::uint64_t count) override;
    bool isDone() const override;
    void close() override;

private:
    InputStream& stream;
    const unsigned char* ahead = nullptr;
    std::size_t filled = 0; // the number of bytes that were read ahead
    std::size_t position = 0;
    std::exception_ptr failure;
    bool gaveNothing = false; // the stream gave no bytes after those, without being done
};

} // namespace opc::model
