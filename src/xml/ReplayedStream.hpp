#pragma once

#include <opc/core/InputStream.hpp>

#include <cstddef>
#include <cstdlib>
#include <exception>
#include <memory>
#include <optional>
#include <string_view>

namespace opc::model {

/// Room for the bytes of a stream, which isn't set to zero first, and grows in place where the system can.
class ReadAheadBuffer {
public:
    ReadAheadBuffer() = default;
    ReadAheadBuffer(const ReadAheadBuffer&) = delete;
    ReadAheadBuffer& operator=(const ReadAheadBuffer&) = delete;

    unsigned char* data() const { return bytes.get(); }
    std::size_t size() const { return room; }

    /// @param larger  in bytes; what the room holds stays
    /// @throws std::bad_alloc  and the room is as it was
    void grow(std::size_t larger);

private:
    struct Deleter {
        void operator()(unsigned char* owned) const noexcept { std::free(owned); }
    };

    std::unique_ptr<unsigned char, Deleter> bytes;
    std::size_t room = 0;
};

/// A stream whose first bytes have been read ahead: gives those first and then what the stream itself
/// gives, as if nobody had looked. A failure in reading ahead is kept for whoever reads that far.
class ReplayedStream : public InputStream {
public:
    /// @param stream  open; must outlive this object
    explicit ReplayedStream(InputStream& stream) : stream(stream) {}

    /// Reads ahead to the end of the stream, but not much beyond `limit` bytes.
    /// @param buffer  grows as needed; must outlive this object and be left alone meanwhile
    /// @return the bytes, in the buffer, if the end was reached
    std::optional<std::string_view> readAhead(ReadAheadBuffer& buffer, std::size_t limit);

    void open() override;
    std::uint64_t read(unsigned char* buffer, std::uint64_t count) override;
    bool isDone() const override;
    void close() override;

private:
    InputStream& stream;
    const unsigned char* ahead = nullptr;
    std::size_t filled = 0; // of what is read ahead
    std::size_t position = 0;
    std::exception_ptr failure;
    bool gaveNothing = false; // behind what is read ahead, without being done
};

} // namespace opc::model
