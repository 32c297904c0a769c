#include "random/RandomNumber.hpp"

#include <random>

namespace opc {

std::uint64_t randomNumber() {
    std::random_device device;
    const std::uint64_t high = device();
    return high << 32 | device();
}

} // namespace opc
