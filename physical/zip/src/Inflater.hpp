#pragma once

#include <zlib.h>

#include <array>
#include <cstddef>

namespace opc::physical::zip {

/// Expands Deflate data, one stream after another. It allocates 55 KiB with its input buffer, so it is used for many
/// items. Memory that isn't used isn't touched.
class Inflater {
public:
    enum class Result { More, End, Damaged };

    Inflater();
    Inflater(const Inflater&) = delete;
    Inflater& operator=(const Inflater&) = delete;
    ~Inflater() { ::inflateEnd(&stream); }

    /// Forgets the current stream.
    void restart() noexcept;

    /// Whether the input is used up.
    bool needsInput() const noexcept { return stream.avail_in == 0; }

    /// Room for input that isn't in memory.
    std::array<unsigned char, 16384>& input() noexcept { return buffer; }

    /// Sets the next bytes to expand. They must stay in place until they are used up.
    void setInput(const unsigned char* bytes, std::size_t count) noexcept;

    /// Expands as much as possible.
    /// @param got  receives the number of bytes in `output`
    /// @return End if the compressed stream says that it ends
    Result expand(unsigned char* output, std::size_t count, std::size_t& got) noexcept;

    /// Copies input unchanged, for an item that isn't compressed.
    /// @return the number of bytes in `output`
    std::size_t pass(unsigned char* output, std::size_t count) noexcept;

private:
    z_stream stream{};
    std::array<unsigned char, 16384> buffer; // not cleared: what is in memory is expanded from there
};

} // namespace opc::physical::zip
