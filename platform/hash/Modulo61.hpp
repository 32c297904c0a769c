#pragma once

#include <cstdint>

/// Arithmetic modulo the prime 2^61 - 1, where 2^61 is 1.
namespace opc::modulo61 {

inline constexpr std::uint64_t PRIME = (std::uint64_t{1} << 61) - 1;

/// left * right + more, with products of 64 bits.
/// @param left, right  at most the prime
/// @param more         less than 2^61
/// @return less than the prime
constexpr std::uint64_t multiplyInHalves(std::uint64_t left, std::uint64_t right, std::uint64_t more) {
    constexpr unsigned HALF = 31;
    constexpr std::uint64_t LOW = (std::uint64_t{1} << HALF) - 1;
    constexpr std::uint64_t BELOW_61 = (std::uint64_t{1} << (61 - HALF)) - 1;
    const std::uint64_t middle = (left >> HALF) * (right & LOW) + (left & LOW) * (right >> HALF);
    const std::uint64_t sum = 2 * ((left >> HALF) * (right >> HALF)) // 2^62 is 2
                              + (middle >> (61 - HALF)) + ((middle & BELOW_61) << HALF) +
                              (left & LOW) * (right & LOW) + more;
    const std::uint64_t result = (sum & PRIME) + (sum >> 61);
    return result >= PRIME ? result - PRIME : result;
}

/// The same in the fastest way.
#ifdef __SIZEOF_INT128__
constexpr std::uint64_t multiply(std::uint64_t left, std::uint64_t right, std::uint64_t more) {
    __extension__ using Wide = unsigned __int128;
    const Wide product = static_cast<Wide>(left) * right + more;
    const std::uint64_t result =
        static_cast<std::uint64_t>(product & PRIME) + static_cast<std::uint64_t>(product >> 61);
    return result >= PRIME ? result - PRIME : result;
}
#else
constexpr std::uint64_t multiply(std::uint64_t left, std::uint64_t right, std::uint64_t more) {
    return multiplyInHalves(left, right, more);
}
#endif

} // namespace opc::modulo61
