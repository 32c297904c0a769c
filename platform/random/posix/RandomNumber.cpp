#include "random/RandomNumber.hpp"

#include <sys/random.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace opc {

// std::random_device asks the processor, which takes long in a virtual machine, and the process waits for its code.
std::uint64_t randomNumber() {
    std::uint64_t number = 0;
    if (::getentropy(&number, sizeof number) != 0)
        throw std::system_error(errno, std::generic_category(), "getentropy");
    return number;
}

} // namespace opc
