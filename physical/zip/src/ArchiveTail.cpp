#include "ArchiveTail.hpp"

#include <algorithm>
#include <cerrno>
#include <exception>

namespace opc::physical::zip {

namespace {

/// An end record with the longest comment, and the records of ZIP64 in front of it.
constexpr std::size_t LONGEST_TAIL = std::size_t{66} * 1024;

} // namespace

int ArchiveTail::writeAt(std::uint64_t offset, const unsigned char* buffer, std::size_t count) noexcept {
    if (const int error = out.writeAt(offset, buffer, count))
        return error;
    try {
        keep(offset, buffer, count);
    } catch (const std::exception&) {
        return ENOMEM;
    }
    return 0;
}

void ArchiveTail::keep(std::uint64_t offset, const unsigned char* buffer, std::size_t count) {
    const std::uint64_t end = offset + count;
    if (end <= start)
        return;
    const std::uint64_t from = std::max(offset, start);
    if (end > size())
        kept.resize(static_cast<std::size_t>(end - start));
    std::copy(buffer + (from - offset), buffer + count,
              kept.begin() + static_cast<std::ptrdiff_t>(from - start));
    if (kept.size() > 2 * LONGEST_TAIL) {
        const std::size_t surplus = kept.size() - LONGEST_TAIL;
        kept.erase(kept.begin(), kept.begin() + static_cast<std::ptrdiff_t>(surplus));
        start += surplus;
    }
}

int ArchiveTail::readAt(std::uint64_t offset, unsigned char* buffer, std::size_t count,
                        std::size_t& got) noexcept {
    got = 0;
    if (offset < start || offset >= size())
        return 0;
    got = static_cast<std::size_t>(std::min<std::uint64_t>(count, size() - offset));
    std::copy_n(kept.begin() + static_cast<std::ptrdiff_t>(offset - start), got, buffer);
    return 0;
}

} // namespace opc::physical::zip
