#include "StandardInput.hpp"

#include <opc/core/Exception.hpp>

#include <cerrno>
#include <cstdio>

namespace opctool {

std::uint64_t StandardInput::read(unsigned char* buffer, std::uint64_t count) {
    const std::size_t got = std::fread(buffer, 1, static_cast<std::size_t>(count), stdin);
    if (std::ferror(stdin) != 0)
        throw opc::Exception("Standard input can't be read", {errno, boost::system::generic_category()});
    done = got < count;
    return got;
}

} // namespace opctool
