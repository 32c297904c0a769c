#pragma once

#include <opc/physical/ZipExport.hpp>

#include <zlib.h>

#include <cstddef>
#include <optional>

namespace opc::physical::zip {

/// Compresses contents of any size to Deflate data, piece by piece, one after another. It allocates 256 KiB.
class OPC_ZIP_EXPORT Deflater {
public:
    Deflater() = default;
    Deflater(const Deflater&) = delete;
    Deflater& operator=(const Deflater&) = delete;
    ~Deflater();

    /// Begins a new stream.
    void start(int level);

    /// Sets the next bytes to compress. They must stay in place until they are used up.
    void setInput(const unsigned char* bytes, std::size_t count, bool isLast) noexcept;

    /// @return how many bytes are in `output`; less than `count` if it needs more input or, after the last input, at
    ///         the end
    std::size_t compress(unsigned char* output, std::size_t count) noexcept;

private:
    z_stream stream{};
    std::optional<int> currentLevel; ///< empty before `stream` is made
    bool last = false;
};

} // namespace opc::physical::zip
