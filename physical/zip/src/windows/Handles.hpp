#pragma once

#include "zip/src/FileDescriptor.hpp"

#include <windows.h>

namespace opc::physical::zip {

/// The system's handle of an open file. A descriptor owns it.
HANDLE handleOf(const FileDescriptor& file) noexcept;

/// Gives a handle to a descriptor, which closes it.
/// @param handle  `INVALID_HANDLE_VALUE` if the call that should have opened it has failed
/// @return an error number, 0 for success
int adopt(HANDLE handle, FileDescriptor& file) noexcept;

/// @return the error number that says the same as an error of the system
int toErrorNumber(DWORD error) noexcept;

/// @return the error number of the last call, or 0 if it has succeeded
int errorOf(bool succeeded) noexcept;

} // namespace opc::physical::zip
