#pragma once

#include "BufferedTarget.hpp"
#include "FileDescriptor.hpp"
#include "UnfinishedFile.hpp"

#include <opc/physical/FileState.hpp>

#include <filesystem>
#include <string>

namespace opc::physical::zip {

/// A new file that will replace another one, all or nothing.
///
/// It is next to its target. Its name is the target's name with a dot before it and ".opcmodel-new" after it, or a
/// further name if a file that can't be removed has that name. It is locked while it exists, if the file system has
/// locks. An unlocked one is left over from a dead process, and the next save removes it. If it is destroyed without
/// `putInPlace`, or a signal ends the process and its handler calls `removeUnfinishedFiles`, the file is removed and
/// the target doesn't change.
class OPC_ZIP_EXPORT ReplacementFile : public ByteTarget {
public:
    /// @param path   the target; a symbolic link is followed
    /// @param place  how messages name it
    ReplacementFile(const std::filesystem::path& path, const std::string& place);
    ReplacementFile(const ReplacementFile&) = delete;
    ReplacementFile& operator=(const ReplacementFile&) = delete;
    ~ReplacementFile() override;

    int writeAt(std::uint64_t offset, const unsigned char* buffer, std::size_t count) noexcept override;
    std::uint64_t copyAt(std::uint64_t offset, const FileDescriptor& source, std::uint64_t sourceOffset,
                         std::uint64_t count) noexcept override {
        return file.copyAt(offset, source, sourceOffset, count);
    }

    /// Where it is now.
    std::filesystem::path path() const { return target.parent_path() / name; }

    /// Gives the file the attributes of its target, and syncs it. Nothing is written after that.
    void complete();

    /// Renames the complete file to the target's name.
    void putInPlace();

    /// Makes sure that the folder keeps the new name after a crash.
    void syncFolder();

    /// The state of the file as it is now.
    FileState state() const;

private:
    void make();
    bool create();
    bool removeAbandoned();
    FileDescriptor openAbandoned() const;
    bool isNamed(const FileDescriptor& opened) const;
    bool isStrangers(const FileDescriptor& opened) const;

    std::filesystem::path target;
    std::string place;
    FileDescriptor folder; ///< serves to find names, not to read
    std::string name;      ///< in the folder
    FileDescriptor file;
    UnfinishedFile unfinished;
    bool inPlace = false;
};

} // namespace opc::physical::zip
