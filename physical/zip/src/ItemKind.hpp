#pragma once

#include <opc/physical/ZipExport.hpp>

#include <cstdint>
#include <string_view>

namespace opc::physical::zip {

/// What the attributes in the directory make of an item for programs that extract it: a folder although its name is that of a
/// file, a symbolic link, a device and so on.
/// @param attributes  the external ones
/// @return words such as "a folder"; null if the item is a file, or a folder by its name, too
OPC_ZIP_EXPORT const char* kindByAttributes(std::uint32_t attributes, std::string_view name);

} // namespace opc::physical::zip
