#pragma once

#include <zlib.h>

#include <array>
#include <cstddef>

namespace opc::physical::zip {

/// Expands Deflate data, one stream after another. It takes 40 KiB to make, and so serves many items.
class Inflater {
public:
    enum class Result { More, End, Damaged };

    Inflater();
    Inflater(const Inflater&) = delete;
    Inflater& operator=(const Inflater&) = delete;
    ~Inflater() { ::inflateEnd(&stream); }

    /// Forgets the stream that it is in.
    void restart() noexcept;

    /// Whether `input` has been used up.
    bool needsInput() const noexcept { return stream.avail_in == 0; }

    /// Where the next compressed bytes go, and how many of them are there now.
    std::array<unsigned char, 16384>& input() noexcept { return buffer; }
    void setInput(std::size_t count) noexcept;

    /// Expands what it can.
    /// @param got  gets how many bytes there are now in `output`
    /// @return End where the compressed stream says that it ends
    Result expand(unsigned char* output, std::size_t count, std::size_t& got) noexcept;

private:
    z_stream stream{};
    std::array<unsigned char, 16384> buffer{};
};

} // namespace opc::physical::zip
