#pragma once

#include <cstddef>
#include <optional>

namespace opc::physical::zip {

/// The first block of Deflate data if its codes are its own, are complete and keep to the limits of RFC 1951, 3.2.7. All
/// decoders read such a block alike. Of other codes some refuse what others read.
class OrdinaryBlock {
public:
    /// @return nothing if the data begins with another block. Only the codes are read, not what follows them
    static std::optional<OrdinaryBlock> find(const unsigned char* data, std::size_t count) noexcept;

    /// Whether it is the last block, or only empty ones follow, as programs write them that flush the data first and end it then.
    /// @param end  how many bytes the block takes, the last one perhaps in part
    /// @return false as well if that isn't certain
    bool isAllOf(const unsigned char* data, std::size_t count, std::size_t end) const noexcept;

private:
    OrdinaryBlock(bool last, unsigned endCode, unsigned endLength)
        : last(last), endCode(endCode), endLength(endLength) {}

    bool last;
    unsigned endCode; ///< the code of its end, whose first bit is the lowest one, if it isn't the last block
    unsigned endLength; ///< of this code, in bits
};

} // namespace opc::physical::zip
