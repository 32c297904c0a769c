#pragma once

#include "zip/src/BufferedTarget.hpp"

#include <opc/inspection/Archive.hpp>

#include <functional>

namespace opc::editing::archive {

/// An archive that `write` writes: in memory while it is small, otherwise in a temporary file without a name.
/// @param options  limits, and the folder of that file
/// @throws opc::Exception  the file can't be written; or what `write` throws
inspection::Archive makeTemporaryArchive(const physical::ZipOptions& options,
                                         const std::function<void(physical::zip::ByteTarget&)>& write);

} // namespace opc::editing::archive
