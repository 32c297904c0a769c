#pragma once

#include <opc/physical/ZipExport.hpp>

#include <cerrno>
#include <string>
#include <string_view>

/// @file
/// The form of all messages: "place: what". The place is an archive, or an archive and an item.

namespace opc::physical::zip {

/// The code of a failure because somebody else has changed a file meanwhile.
#ifdef ESTALE
constexpr int CHANGED_MEANWHILE = ESTALE;
#else // Windows has no such error number
constexpr int CHANGED_MEANWHILE = EBUSY;
#endif

/// Throws `opc::Exception` with `code`, a value of the generic category.
[[noreturn]] OPC_ZIP_EXPORT void fail(const std::string& place, const std::string& what, int code);

/// The same for a system call that failed with the error number `code`, which is explained in words.
[[noreturn]] OPC_ZIP_EXPORT void failSystem(const std::string& place, const std::string& what, int code);

/// @return a name from an archive for messages, with question marks instead of control characters
OPC_ZIP_EXPORT std::string printable(std::string_view name);

/// @param item  a name from an archive
OPC_ZIP_EXPORT std::string itemPlace(const std::string& archive, std::string_view item);

} // namespace opc::physical::zip
