#pragma once

#include <string>

namespace opc::physical::zip {

/// A file that `removeUnfinishedFiles` removes while it is registered.
class UnfinishedFile {
public:
    UnfinishedFile();
    UnfinishedFile(const UnfinishedFile&) = delete;
    UnfinishedFile& operator=(const UnfinishedFile&) = delete;
    ~UnfinishedFile();

    /// @param folder  a descriptor; must stay open until the file is forgotten
    /// @param name    its name in that folder, at most 255 bytes
    void remember(int folder, const std::string& name) noexcept;
    void forget() noexcept;

    /// Async-signal-safe.
    static void removeAll() noexcept;

private:
    struct Entry;

    Entry* entry;
};

} // namespace opc::physical::zip
