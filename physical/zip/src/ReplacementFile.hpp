#pragma once

#include "BufferedTarget.hpp"
#include "FileDescriptor.hpp"

#include <filesystem>
#include <string>

namespace opc::physical::zip {

/// A file in the making that takes the place of another one, all or nothing.
///
/// It lies beside its target under the target's name with a dot in front and ".opcmodel-new" behind, and is
/// locked while it lives: one that nobody holds is the rest of a process that has died, and the next saving
/// removes it. Destroyed without `commit`, it is gone and the target is as it was.
class ReplacementFile : public ByteTarget {
public:
    /// @param path  the target; a symbolic link is followed
    explicit ReplacementFile(const std::filesystem::path& path);
    ReplacementFile(const ReplacementFile&) = delete;
    ReplacementFile& operator=(const ReplacementFile&) = delete;
    ~ReplacementFile() override;

    int writeAt(std::uint64_t offset, const unsigned char* buffer, std::size_t count) noexcept override;

    /// Gives the file the permissions of its target, syncs it, puts it in the target's place and syncs the
    /// folder. If only the last of these fails, the target is the new file already.
    void commit();

private:
    bool create();
    void removeAbandoned();
    void takeAttributes();
    void syncFolder();
    std::filesystem::path folder() const;

    std::filesystem::path target;
    std::filesystem::path temporary;
    std::string place;
    FileDescriptor file;
    bool committed = false;
};

} // namespace opc::physical::zip
