#pragma once

#include <opc/physical/ZipExport.hpp>

#include <string>
#include <string_view>

/// @file
/// The one form of all messages: "place: what", with the place an archive, or an archive and an item.

namespace opc::physical::zip {

/// Raises `opc::Exception` with `code`, a value of the generic category.
[[noreturn]] OPC_ZIP_EXPORT void fail(const std::string& place, const std::string& what, int code);

/// The same for a system call that has failed with the error number `code`, which is put in words.
[[noreturn]] OPC_ZIP_EXPORT void failSystem(const std::string& place, const std::string& what, int code);

/// @return a name from an archive for messages: control characters in it become question marks
OPC_ZIP_EXPORT std::string printable(std::string_view name);

/// @param item  a name from an archive
OPC_ZIP_EXPORT std::string itemPlace(const std::string& archive, std::string_view item);

} // namespace opc::physical::zip
