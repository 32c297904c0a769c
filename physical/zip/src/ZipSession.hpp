#pragma once

#include "ArchiveStore.hpp"
#include "ExtractionNames.hpp"
#include "ItemName.hpp"
#include "ZipContent.hpp"

#include <opc/interfaces/OpenMode.hpp>
#include <opc/physical/ZipPackage.hpp>

#include "shared/NamedList.hpp"

#include <map>
#include <optional>

namespace opc::physical::zip {

/// An open package: what its archive holds, and what has changed since.
class ZipSession {
public:
    ZipSession(ArchiveStore& store, const ZipOptions& options, interfaces::OpenMode mode);

    /// Writes the changes, if there are any. A failure changes nothing.
    void save();

    ZipPart& create(const std::u16string& partName, interfaces::CompressionType compression);
    void remove(const std::u16string& partName);

    NamedList<ZipPart>::Items& allParts() { return parts.all(); }
    ZipContent& contentTypesStream() { return *contentTypes; }
    const std::vector<ZipPackage::IgnoredItem>& ignoredItems() const { return ignored; }

    /// The items that other programs may take for something else, and the bytes of the archive that belong to no item. From now
    /// on, contents are read as most programs do.
    std::vector<interfaces::MisnamedItem> misnamedItems();

    /// What was accepted so far although it breaks the standard, including findings in the items that were read.
    std::vector<interfaces::Oddity> oddities() const;

private:
    struct FoundPiece {
        ItemIndex item;
        bool last;
    };
    /// The pieces of one content by their numbers.
    struct Pieces {
        ItemName name;
        std::map<std::uint32_t, FoundPiece> found;
    };
    /// By part name in lower case. The content types stream has the empty name.
    using AllPieces = std::map<std::string, Pieces>;

    void load();
    void prepareToWrite();
    void take(ItemIndex item, const DirectoryEntry& entry, AllPieces& pieces);
    void takeUnusual(ItemIndex item, const DirectoryEntry& entry, AllPieces& pieces);
    void checkReadable(const DirectoryEntry& entry);
    void takePiece(ItemIndex item, const ItemName& name, AllPieces& pieces);
    void takeWhole(ItemIndex item, const ItemName& name);
    void takeJoined(std::vector<ItemIndex> items, const ItemName& name);
    void requireFirst(bool isFirst, ItemIndex item, ItemName::Kind kind) const;
    void joinPieces(AllPieces& pieces);
    void ignore(ItemIndex item, const std::string& reason);
    bool belongsToPackage(ItemIndex item, const ItemName& name);
    void checkNames();
    void checkOtherName(const OtherName& other);
    void takeFindings();
    bool isBelowPart(std::string_view itemName);
    const char* whyMisnamed(const DirectoryEntry& entry, const ItemName& name);
    void checkName(ItemIndex item, std::string_view name, const std::string& how);
    void checkLimits(const DirectoryEntry& entry);
    void requireWritable(const std::string& name) const;
    void requireRoomFor(const std::string& item);
    void write(ByteTarget& target);

    ArchiveStore& store;
    const ZipOptions& options;
    std::shared_ptr<ByteSource> source; ///< null while a package is being created
    std::uint64_t totalSize = 0;
    ZipContext context;
    NamedList<ZipPart> parts;
    std::optional<ZipContent> contentTypes;
    ExtractionNames extractionNames{parts};
    std::vector<ItemIndex> otherwiseNamed; ///< pieces
    std::vector<ItemIndex> unusual;        ///< items that don't have the plain name of a part
    std::vector<ItemIndex> removedItems;
    std::vector<ZipPackage::IgnoredItem> ignored;
    std::vector<std::string> loose;      ///< bytes that belong to no item
    std::size_t otherNameCount = 0;      ///< how many other names of the archive were checked
    std::size_t unreadCount = 0;         ///< how many of its unread data were taken
    std::vector<interfaces::Oddity> odd; ///< found at opening
};

} // namespace opc::physical::zip
