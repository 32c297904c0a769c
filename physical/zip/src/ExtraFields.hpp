#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace opc::physical::zip {

/// The numbers of a ZIP64 field: sizes and an offset that have no room in their record. They stand in it
/// one behind the other, without those that had room.
class Zip64Field {
public:
    /// @param extra  the extra fields of a record; what isn't well-formed in them is passed over
    Zip64Field(const unsigned char* extra, std::size_t size);

    /// Replaces `value` by the field's next number, if `value` says that it has no room.
    /// @return whether there was a number
    bool resolve(std::uint64_t& value);

private:
    const unsigned char* next = nullptr;
    std::size_t left = 0;
};

/// @return `extra` without its ZIP64 field
std::string withoutZip64Field(std::string_view extra);

} // namespace opc::physical::zip
