#pragma once

#include <opc/inspection/Archive.hpp>

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace opc::editing::mending {

using Bytes = std::vector<unsigned char>;

/// What becomes of an item of an archive in the new one.
struct ItemFate {
    bool isDropped = false;
    bool hasNewHeader = false; ///< written anew from what the directory says; otherwise copied as it lies
    bool losesExtraFields = false;
    bool losesComment = false;
    bool losesRights = false;             ///< that Unix gives to who runs it
    std::string name{};                   ///< the new one, in ASCII; empty for the old one
    std::optional<std::string> content{}; ///< the new one
};

struct NewItem {
    std::string name; ///< in ASCII
    std::string content;
};

/// How a new archive is made of an old one: which items it takes, and which change.
struct ArchivePlan {
    explicit ArchivePlan(const inspection::Archive& archive);

    const inspection::Archive& archive;
    std::vector<ItemFate> fates;    ///< one for each item of the archive
    std::vector<std::size_t> order; ///< places of items: the order of the new archive
    std::vector<NewItem> first;     ///< in front of all others
    bool losesComment = false;      ///< that of the archive
    bool isDue = false;             ///< whether the archive must be written

    std::size_t indexOf(const inspection::ArchiveItem& item) const {
        return static_cast<std::size_t>(&item - archive.items().data());
    }
    ItemFate& fateOf(const inspection::ArchiveItem& item);
    void drop(const inspection::ArchiveItem& item);
    void writeHeader(const inspection::ArchiveItem& item) { touch(item).hasNewHeader = true; }

    /// @return its fate, in which it gets new headers
    ItemFate& touch(const inspection::ArchiveItem& item);

    /// Whether the new archive would have no item.
    bool isEmpty() const;

    /// The first item that the new archive takes although its place isn't known; null if there is none.
    const inspection::ArchiveItem* findLost() const;
};

using Sink = std::function<void(const unsigned char* bytes, std::size_t count)>;

/// Writes the new archive. Compressed bytes of items whose content stays are copied.
/// @throws Exception  the old archive can't be read
void write(const ArchivePlan& plan, const Sink& sink);

} // namespace opc::editing::mending
