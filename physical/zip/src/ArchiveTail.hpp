#pragma once

#include "BufferedTarget.hpp"
#include "ByteSource.hpp"

namespace opc::physical::zip {

/// Passes a new archive on to a target, and keeps its end for reading: as much as the records after the directory can
/// take. Earlier bytes can't be read.
class ArchiveTail : public ByteTarget, public ByteSource {
public:
    explicit ArchiveTail(ByteTarget& out) : out(out) {}

    int writeAt(std::uint64_t offset, const unsigned char* buffer, std::size_t count) noexcept override;

    std::uint64_t size() const noexcept override { return start + kept.size(); }
    int readAt(std::uint64_t offset, unsigned char* buffer, std::size_t count,
               std::size_t& got) noexcept override;

private:
    void keep(std::uint64_t offset, const unsigned char* buffer, std::size_t count);

    ByteTarget& out;
    std::vector<unsigned char> kept;
    std::uint64_t start = 0; ///< the offset of the first byte that is kept
};

} // namespace opc::physical::zip
