#include "ItemKind.hpp"

#include "ItemName.hpp"

namespace opc::physical::zip {

const char* kindByAttributes(std::uint32_t attributes, std::string_view name) {
    constexpr std::uint32_t DOS_LABEL = 0x08;
    constexpr std::uint32_t DOS_FOLDER = 0x10;
    switch (attributes >> 16U & 0170000U) { // a mode of Unix, whatever system has made the item
    case 0120000U:
        return "a symbolic link";
    case 0060000U:
    case 0020000U:
        return "a device";
    case 0010000U:
        return "a pipe";
    case 0140000U:
        return "a socket";
    case 0040000U:
        return isFolderName(name) ? nullptr : "a folder";
    case 0:
    case 0100000U:
        break;
    default:
        return "a file of an unknown kind";
    }
    if ((attributes & DOS_LABEL) != 0)
        return "the label of a disk";
    return (attributes & DOS_FOLDER) != 0 && !isFolderName(name) ? "a folder" : nullptr;
}

} // namespace opc::physical::zip
