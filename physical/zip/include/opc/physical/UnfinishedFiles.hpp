#pragma once

#include <opc/physical/ZipExport.hpp>

namespace opc::physical {

/// Removes the temporary files of all `ZipPackage`s that this process is saving now.
///
/// Call it in the handler of a signal that ends the process. It is async-signal-safe; the library installs no handler
/// itself. The files that were to be replaced stay unchanged. The running saves can't be completed and fail, so let the
/// process end after the call.
OPC_ZIP_EXPORT void removeUnfinishedFiles() noexcept;

} // namespace opc::physical
