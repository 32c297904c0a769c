#pragma once

#include "BufferedTarget.hpp"
#include "FileDescriptor.hpp"
#include "FileIdentity.hpp"
#include "UnfinishedFile.hpp"

#include <filesystem>
#include <string>

namespace opc::physical::zip {

/// A file in the making that takes the place of another one, all or nothing.
///
/// It lies beside its target, under the target's name with a dot in front and ".opcmodel-new" behind, or under
/// a further name if a file stands there that can't be removed. It is locked while it lives, where the file
/// system has locks: one that nobody holds is the rest of a process that has died, and the next saving removes
/// it. Destroyed without `putInPlace`, or ended by a signal whose handler calls `removeUnfinishedFiles`, it is
/// gone and the target is as it was.
class ReplacementFile : public ByteTarget {
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

    /// Gives the file the attributes of its target, syncs it and puts it in the target's place.
    void putInPlace();

    /// Makes sure that the folder keeps the file under its new name.
    void syncFolder();

    /// Of the file as it is now.
    FileIdentity identity() const;

private:
    void make();
    bool create();
    bool removeAbandoned();
    FileDescriptor openAbandoned() const;
    bool isNamed(const FileDescriptor& opened) const;
    bool isStrangers(const FileDescriptor& opened) const;

    std::filesystem::path target;
    std::string place;
    FileDescriptor folder; ///< to find names in, not to read
    std::string name;      ///< in the folder
    FileDescriptor file;
    UnfinishedFile unfinished;
    bool inPlace = false;
};

} // namespace opc::physical::zip
