#include "Checksum.hpp"

#include <libdeflate.h>
#include <zlib.h>

#include <atomic>

namespace opc::physical::zip {

namespace {

/// Whether so few bytes have been checked in this process that zlib should go on. libdeflate is four times as fast, but
/// its first call costs 40 us: it asks the processor what it can do, which a virtual machine answers slowly, and its
/// code and tables come into memory.
bool isEarly(std::size_t count) noexcept {
    constexpr std::size_t EARLY = 16384;
    static std::atomic<std::size_t> checked{0};
    if (checked.load(std::memory_order_relaxed) + count > EARLY)
        return false;
    checked.fetch_add(count, std::memory_order_relaxed);
    return true;
}

} // namespace

std::uint32_t addToChecksum(std::uint32_t checksum, const unsigned char* bytes, std::size_t count) noexcept {
    if (isEarly(count))
        return static_cast<std::uint32_t>(::crc32(checksum, bytes, static_cast<uInt>(count)));
    return ::libdeflate_crc32(checksum, bytes, count);
}

} // namespace opc::physical::zip
