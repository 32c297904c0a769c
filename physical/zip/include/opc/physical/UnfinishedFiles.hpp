#pragma once

#include <opc/physical/ZipExport.hpp>

namespace opc::physical {

/// Removes the temporary files of all `ZipPackage`s that this process is saving at this moment.
///
/// For the handler of a signal that ends the process: async-signal-safe, and unaware of threads. The library
/// installs no handler itself. The files that are to be replaced stay as they are; what is being saved can't
/// be finished any more and fails, so let the process end behind it.
OPC_ZIP_EXPORT void removeUnfinishedFiles() noexcept;

} // namespace opc::physical
