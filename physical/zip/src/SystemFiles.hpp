#pragma once

#include "FileDescriptor.hpp"

#include <opc/physical/FileState.hpp>

#include <filesystem>

/// @file
/// What the library asks the system about files by their paths. With `FileDescriptor`, `ReplacementFile` and
/// `UnfinishedFile` these are all calls of the system for files in this library. The functions return an error number, 0
/// for success.

namespace opc::physical::zip {

enum class FileKind { Regular, Folder, Other };

struct FileStatus {
    FileKind kind = FileKind::Other;
    FileState state;
};

/// Opens a file for reading, without waiting if somebody has put a pipe there.
int openForReading(const std::filesystem::path& path, FileDescriptor& file) noexcept;

/// Makes a file that nobody else finds, and that ends with the descriptor.
int openTemporary(const std::filesystem::path& folder, FileDescriptor& file);

int readStatus(const std::filesystem::path& path, FileStatus& status) noexcept;
int readStatus(const FileDescriptor& file, FileStatus& status) noexcept;

/// Succeeds if this process may write to the file at `path`.
int checkWritable(const std::filesystem::path& path) noexcept;

} // namespace opc::physical::zip
