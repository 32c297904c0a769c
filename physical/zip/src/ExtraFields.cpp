#include "ExtraFields.hpp"

#include "Records.hpp"

namespace opc::physical::zip {

namespace {

constexpr std::size_t FIELD_HEADER = 4; ///< kind and size

/// The size of the field at `field` with its header; 0 if there is none.
std::size_t fieldSize(const unsigned char* field, std::size_t left) {
    if (left < FIELD_HEADER)
        return 0;
    const std::size_t size = FIELD_HEADER + read16(field + 2);
    return size <= left ? size : 0;
}

} // namespace

Zip64Field::Zip64Field(const unsigned char* extra, std::size_t size) {
    while (const std::size_t step = fieldSize(extra, size)) {
        if (read16(extra) == ZIP64_FIELD) {
            next = extra + FIELD_HEADER;
            left = step - FIELD_HEADER;
            return;
        }
        extra += step;
        size -= step;
    }
}

bool Zip64Field::resolve(std::uint64_t& value) {
    if (value != NO_ROOM_32)
        return true;
    if (left < 8)
        return false;
    value = read64(next);
    next += 8;
    left -= 8;
    return true;
}

std::string withoutZip64Field(std::string_view extra) {
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast): characters are bytes here
    const auto* bytes = reinterpret_cast<const unsigned char*>(extra.data());
    std::string others(extra);
    std::size_t place = 0;
    while (const std::size_t step = fieldSize(bytes + place, extra.size() - place)) {
        if (read16(bytes + place) == ZIP64_FIELD)
            return others.erase(place, step);
        place += step;
    }
    return others;
}

} // namespace opc::physical::zip
