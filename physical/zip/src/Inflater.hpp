#pragma once

#include <zlib.h>

#include <array>
#include <cstddef>

namespace opc::physical::zip {

/// Expands Deflate data, one stream after another. It takes 55 KiB with its input, and so serves many items.
class Inflater {
public:
    enum class Result { More, End, Damaged };

    Inflater();
    Inflater(const Inflater&) = delete;
    Inflater& operator=(const Inflater&) = delete;
    ~Inflater() { ::inflateEnd(&stream); }

    /// Forgets the stream that it is in.
    void restart() noexcept;

    /// Whether the input has been used up.
    bool needsInput() const noexcept { return stream.avail_in == 0; }

    /// Room for input that doesn't lie in memory otherwise.
    std::array<unsigned char, 16384>& input() noexcept { return buffer; }

    /// The next bytes to expand, which stay in place until they are used up.
    void setInput(const unsigned char* bytes, std::size_t count) noexcept;

    /// Expands what it can.
    /// @param got  gets how many bytes there are now in `output`
    /// @return End where the compressed stream says that it ends
    Result expand(unsigned char* output, std::size_t count, std::size_t& got) noexcept;

    /// Hands input on as it is: that of an item that isn't compressed.
    /// @return how many bytes there are now in `output`
    std::size_t pass(unsigned char* output, std::size_t count) noexcept;

private:
    z_stream stream{};
    std::array<unsigned char, 16384> buffer{};
};

} // namespace opc::physical::zip
