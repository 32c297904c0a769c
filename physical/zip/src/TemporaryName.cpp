#include "TemporaryName.hpp"

#include <zlib.h>

#include <algorithm>
#include <array>
#include <cstdio>

namespace opc::physical::zip {

namespace {

/// Distinguishes a name from others with the same beginning.
std::string checksum(const std::string& name) {
    const uLong sum = ::crc32(0, reinterpret_cast<const Bytef*>(name.data()), static_cast<uInt>(name.size()));
    std::array<char, 10> text{};
    std::snprintf(text.data(), text.size(), "~%08lx", sum);
    return text.data();
}

} // namespace

std::string temporaryName(const std::string& target, unsigned number, std::size_t longest) {
    std::string ending = ".opcmodel-new";
    if (number > 0)
        ending += "-" + std::to_string(number);
    if (1 + target.size() + ending.size() <= longest)
        return "." + target + ending;
    ending = checksum(target) + ending;
    std::size_t kept = std::min(target.size(), std::max(longest, 1 + ending.size()) - 1 - ending.size());
    const auto cutsCharacter = [&] { return (static_cast<unsigned char>(target[kept]) & 0xC0) == 0x80; };
    while (kept > 0 && cutsCharacter()) // some file systems require complete characters of UTF-8
        --kept;
    return "." + target.substr(0, kept) + ending;
}

} // namespace opc::physical::zip
