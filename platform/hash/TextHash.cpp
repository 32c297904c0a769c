#include "hash/TextHash.hpp"

#include "random/RandomNumber.hpp"

namespace opc {

std::uint64_t secretBase() {
    constexpr std::uint64_t SMALLEST = 0x10000;
    static const std::uint64_t BASE = randomNumber() % (modulo61::PRIME - SMALLEST) + SMALLEST;
    return BASE;
}

} // namespace opc
