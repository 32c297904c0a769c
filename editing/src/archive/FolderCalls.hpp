#pragma once

#include "zip/src/FileDescriptor.hpp"

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

/// @file
/// What `FolderTree` asks the system. A name is that of a file or a folder in an open folder, in UTF-8; no link is followed.
/// The functions return an error number, 0 for success.

namespace opc::editing::archive {

using physical::zip::FileDescriptor;

enum class EntryKind { File, Folder, Other };

struct EntryStatus {
    EntryKind kind = EntryKind::Other;
    std::uint64_t size = 0;
};

/// Opens a folder by its path. Here links are followed.
int openFolder(const std::filesystem::path& path, FileDescriptor& folder);

int openFolderIn(const FileDescriptor& above, const std::string& name, FileDescriptor& folder);
int makeFolderIn(const FileDescriptor& above, const std::string& name);
int removeFolderIn(const FileDescriptor& above, const std::string& name);

/// Opens a file for reading, without waiting if it is a pipe.
int openFileIn(const FileDescriptor& folder, const std::string& name, FileDescriptor& file);

/// Makes a file and opens it for writing.
int makeFileIn(const FileDescriptor& folder, const std::string& name, FileDescriptor& file);
int removeFileIn(const FileDescriptor& folder, const std::string& name);

int readStatusOf(const FileDescriptor& file, EntryStatus& status);
int readStatusIn(const FileDescriptor& folder, const std::string& name, EntryStatus& status);

/// All names in a folder, without those of itself and of the folder above it.
int listNames(const FileDescriptor& folder, std::vector<std::string>& names);

} // namespace opc::editing::archive
