#pragma once

#include "BufferedTarget.hpp"
#include "ByteSource.hpp"

namespace opc::physical::zip {

/// Passes a new archive on to a target, and keeps the end of it to be looked at: as much as the records behind
/// the directory can take. What lies in front of that reads as if it weren't there.
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
    std::uint64_t start = 0; ///< where in the archive the first byte that is kept stands
};

} // namespace opc::physical::zip
