#pragma once

#include <opc/editing/Export.hpp>
#include <opc/inspection/Archive.hpp>

#include <filesystem>
#include <ostream>

namespace opc::editing {

/// Writes an archive to a stream.
/// @throws opc::Exception  it can't be read, or the stream takes no more
OPC_EDITING_EXPORT void writeTo(std::ostream& stream, const inspection::Archive& archive);

/// Writes an archive to a file, which is replaced as a whole or stays as it was.
/// @throws opc::Exception  the archive can't be read, or the file can't be written
OPC_EDITING_EXPORT void writeTo(const std::filesystem::path& file, const inspection::Archive& archive);

/// The same for the file that the archive was made from: nothing that another program saves there meanwhile is lost.
/// @param read  the state of the file when it was read (`inspection::Archive::fileState`)
/// @throws model::PackageCloseFailed  another program has changed the file since then; or it can't be written. `code()` gives
///                                    the cause
OPC_EDITING_EXPORT void writeBack(const std::filesystem::path& file, const inspection::Archive& archive,
                                  const physical::FileState& read);

} // namespace opc::editing
