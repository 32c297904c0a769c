#pragma once

#include "BufferedTarget.hpp"

#include <opc/physical/FileState.hpp>

#include <filesystem>
#include <memory>
#include <string>

namespace opc::physical::zip {

/// A new file that will replace another one, all or nothing.
///
/// It is next to its target. Its name is the target's name with a dot before it and ".opcmodel-new" after it, or a
/// further name if a file that can't be removed has that name. It is locked while it exists, if the file system has
/// locks. An unlocked one is left over from a dead process, and the next save removes it. If it is destroyed without
/// `putInPlace`, or a signal ends the process and its handler calls `removeUnfinishedFiles`, the file is removed and
/// the target doesn't change.
class ReplacementFile : public ByteTarget {
public:
    /// @param path   the target; a symbolic link is followed
    /// @param place  how messages name it
    static std::unique_ptr<ReplacementFile> make(const std::filesystem::path& path, const std::string& place);

    /// Where it is now.
    virtual std::filesystem::path path() const = 0;

    /// Gives the file the attributes of its target, if the system has it do that now, and syncs it. Nothing is written
    /// after that.
    virtual void complete() = 0;

    /// Gives the complete file the target's name.
    virtual void putInPlace() = 0;

    /// Makes sure that the folder keeps the new name after a crash.
    virtual void syncFolder() = 0;

    /// The state of the file as it is now.
    virtual FileState state() const = 0;
};

} // namespace opc::physical::zip
