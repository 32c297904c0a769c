#pragma once

#include <opc/core/InputStream.hpp>

#include <cstddef>
#include <exception>
#include <vector>

namespace opc::model {

/// A stream whose first bytes have been read ahead: gives those first and then what the stream itself
/// gives, as if nobody had looked. A failure in reading ahead is kept for whoever reads that far.
class ReplayedStream : public InputStream {
public:
    /// @param source  open; must outlive this object
    explicit ReplayedStream(InputStream& source) : stream(source) {}

    /// Reads ahead to the end of the stream, but not much beyond `limit` bytes.
    /// @param bytes  takes what was read, in place of what it held; must outlive this object
    /// @return whether the end was reached
    bool readAhead(std::vector<unsigned char>& bytes, std::size_t limit);

    void open() override;
    std::uint64_t read(unsigned char* buffer, std::uint64_t count) override;
    bool isDone() const override;
    void close() override;

private:
    InputStream& stream;
    const std::vector<unsigned char>* ahead = nullptr;
    std::size_t position = 0;
    std::exception_ptr failure;
};

} // namespace opc::model
