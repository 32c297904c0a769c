#include "ZipSession.hpp"

#include "ArchiveTail.hpp"
#include "ArchiveWriter.hpp"
#include "DirectoryEnd.hpp"
#include "Failure.hpp"
#include "NameText.hpp"
#include "Records.hpp"

#include <opc/core/Exception.hpp>
#include <opc/core/Text.hpp>

#include <algorithm>
#include <cerrno>

namespace opc::physical::zip {

using interfaces::OpenMode;

namespace {

std::string keyOfPieces(std::string text) {
    for (char& c : text)
        c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    return text;
}

} // namespace

ZipSession::ZipSession(ArchiveStore& store, const ZipOptions& options, OpenMode mode)
    : store(store), options(options) {
    context.place = store.place();
    context.readOnly = mode == OpenMode::ReadOnly;
    context.changed = mode == OpenMode::CreateOnly;
    if (mode != OpenMode::CreateOnly)
        load();
    if (mode != OpenMode::ReadOnly)
        prepareToWrite();
    if (!contentTypes)
        contentTypes.emplace(context, CONTENT_TYPES_ITEM, std::vector<ItemIndex>());
}

void ZipSession::prepareToWrite() {
    const auto& folder = options.temporaryFolder;
    context.spools = std::make_shared<SpoolStore>(folder.empty() ? store.temporaryFolder() : folder,
                                                  options.memoryForWrittenParts);
    store.checkWritable();
}

void ZipSession::load() {
    source = store.read();
    // A save reads all items in any case, and must not carry on what other programs would see in another way.
    const auto check = store.isSlow() && context.readOnly ? ArchiveReader::HeaderCheck::WhenRead
                                                          : ArchiveReader::HeaderCheck::Now;
    context.archive = std::make_unique<ArchiveReader>(source, context.place, options, check);
    parts.reserve(context.archive->itemCount());
    AllPieces pieces;
    for (ItemIndex item = 0; item < context.archive->itemCount(); ++item)
        take(item, context.archive->item(item), pieces);
    joinPieces(pieces);
    checkNames();
    takeFindings();
    if (const std::uint64_t count = context.archive->bytesBehind())
        odd.push_back({"", {}, 0, describeBytesBehind(count), "not read, and dropped by the next save"});
}

void ZipSession::take(ItemIndex item, const DirectoryEntry& entry, AllPieces& pieces) {
    checkLimits(entry);
    if (!isUsualItemName(entry.name))
        return takeUnusual(item, entry, pieces);
    checkReadable(entry);
    requireFirst(parts.add(entry.name, context, item), item, ItemName::Kind::Part);
}

void ZipSession::takeUnusual(ItemIndex item, const DirectoryEntry& entry, AllPieces& pieces) {
    const ItemName name = readItemName(entry.name);
    if (name.kind == ItemName::Kind::Refused)
        fail(itemPlace(context.place, entry.name), name.reason, EBADMSG);
    checkReadable(entry);
    if (name.kind != ItemName::Kind::Part || name.partName != entry.name || !isPlainPartName(entry.name))
        unusual.push_back(item);
    if (name.kind == ItemName::Kind::Ignored)
        return ignore(item, name.reason);
    if (name.piece)
        takePiece(item, name, pieces);
    else
        takeWhole(item, name);
}

void ZipSession::checkReadable(const DirectoryEntry& entry) {
    const std::string why = whyUnreadable(entry);
    if (why.empty())
        return;
    if (!options.lenient)
        fail(itemPlace(context.place, entry.name), why, ENOTSUP);
    odd.push_back({entry.flags & ENCRYPTION_FLAGS ? "M3.9" : "", toString(std::string(entry.name), true), 0,
                   why, "it can't be read, and stays as it is"});
}

void ZipSession::takePiece(ItemIndex item, const ItemName& name, AllPieces& pieces) {
    Pieces& siblings = pieces[keyOfPieces(name.partName)];
    if (!siblings.found.empty() && siblings.name.partName != name.partName)
        otherwiseNamed.push_back(item);
    siblings.name = name;
    if (!siblings.found.emplace(name.piece->number, FoundPiece{item, name.piece->last}).second)
        fail(context.archive->itemPlace(item), "another item is the same piece", EBADMSG);
}

void ZipSession::takeWhole(ItemIndex item, const ItemName& name) {
    const std::string_view itemName = context.archive->item(item).name;
    if (name.kind == ItemName::Kind::Part && name.partName == itemName)
        requireFirst(parts.add(itemName, context, item), item, name.kind);
    else
        takeJoined({item}, name);
}

void ZipSession::takeJoined(std::vector<ItemIndex> items, const ItemName& name) {
    const ItemIndex first = items.front();
    if (name.kind == ItemName::Kind::ContentTypes) {
        requireFirst(!contentTypes, first, name.kind);
        contentTypes.emplace(context, CONTENT_TYPES_ITEM, std::move(items));
    } else {
        requireFirst(parts.add(name.partName, context, name.partName, std::move(items)), first, name.kind);
    }
}

void ZipSession::requireFirst(bool isFirst, ItemIndex item, ItemName::Kind kind) const {
    if (!isFirst)
        fail(context.archive->itemPlace(item),
             kind == ItemName::Kind::ContentTypes ? "a second content types stream"
                                                  : "another item has the same part name",
             EBADMSG);
}

/// A content exists if it has all pieces from 0 to the one called last, and no others.
void ZipSession::joinPieces(AllPieces& pieces) {
    for (auto& [key, siblings] : pieces) {
        std::vector<ItemIndex> items;
        bool complete = true;
        for (const auto& [number, piece] : siblings.found) {
            complete = complete && number == items.size() &&
                       piece.last == (items.size() + 1 == siblings.found.size());
            items.push_back(piece.item);
        }
        if (complete) {
            takeJoined(std::move(items), siblings.name);
        } else {
            for (const ItemIndex item : items)
                ignore(item, "a piece of an incomplete sequence");
        }
    }
}

void ZipSession::ignore(ItemIndex item, const std::string& reason) {
    ignored.push_back({std::string(context.archive->item(item).name), reason});
}

/// Takes what the archive has found out beside its items, as far as that wasn't done yet.
void ZipSession::takeFindings() {
    const ArchiveReader& archive = *context.archive;
    for (; otherNameCount < archive.otherNames().size(); ++otherNameCount)
        checkOtherName(archive.otherNames()[otherNameCount]);
    for (; unreadCount < archive.unread().size(); ++unreadCount) {
        const UnreadData& data = archive.unread()[unreadCount];
        ignored.push_back({data.item, data.what, false});
        if (data.isLoose)
            loose.push_back(data.what);
    }
}

void ZipSession::checkOtherName(const OtherName& other) {
    const std::string name = other.name.substr(0, other.name.find('\0'));
    const ItemName meaning = readItemName(name);
    if (meaning.kind == ItemName::Kind::Refused)
        fail(context.archive->itemPlace(other.item), meaning.reason + " in its Unicode Path field", EBADMSG);
    checkName(other.item, name, "by its Unicode Path field ");
}

/// Throws if an item could be taken for another one that belongs to the package.
void ZipSession::checkNames() {
    const ArchiveReader& archive = *context.archive;
    for (const ItemIndex item : unusual) {
        const DirectoryEntry& entry = archive.item(item);
        checkName(item, entry.name, "");
        if (isASCII(entry.name))
            continue;
        checkName(item, fromCodePage437(entry.storedName()), "by its name in code page 437 ");
        checkName(item, fromLatin1(entry.storedName()), "by its name in Latin-1 ");
    }
}

/// @param name  one of the item's names
/// @param how   comes before the message
void ZipSession::checkName(ItemIndex item, std::string_view name, const std::string& how) {
    const ItemName own = readItemName(context.archive->item(item).name);
    const bool isPart = own.kind == ItemName::Kind::Part;
    std::optional<std::string> other;
    if (belongsToPackage(item, own))
        other = extractionNames.addOwned(isPart ? own.partName : CONTENT_TYPES_ITEM, name);
    else if (!(other = extractionNames.addIgnored(name)) && isPart) // pieces that aren't complete
        other = extractionNames.addIgnored(own.partName);
    if (other)
        fail(context.archive->itemPlace(item),
             how + "other programs may extract it over " + printable(*other), EBADMSG);
}

bool ZipSession::belongsToPackage(ItemIndex item, const ItemName& name) {
    const ZipContent* content = nullptr;
    if (name.kind == ItemName::Kind::ContentTypes) {
        content = contentTypes ? &*contentTypes : nullptr;
    } else if (name.kind == ItemName::Kind::Part) {
        const ZipPart* part = parts.find(name.partName);
        content = part ? &part->content : nullptr;
    }
    if (!content)
        return false;
    const ItemRange items = content->oldItems();
    const std::size_t number = name.piece ? name.piece->number : 0;
    return number < items.size() && items.first[number] == item;
}

void ZipSession::checkLimits(const DirectoryEntry& entry) {
    const auto exceeds = [&](const std::string& what, std::uint64_t limit) {
        fail(itemPlace(context.place, entry.name), what + " " + std::to_string(limit), EFBIG);
    };
    if (entry.size > options.maxItemSize)
        exceeds("its size in bytes is above the limit of", options.maxItemSize);
    if (entry.size > options.maxTotalSize - totalSize)
        exceeds("the size in bytes of all items together is above the limit of", options.maxTotalSize);
    totalSize += entry.size;
    if (exceedsRatio(entry, options))
        exceeds("the ratio of its size to its compressed size is above the limit of", options.maxRatio);
}

/// Whether one of the folders in a name has the name of a part. No extraction can have both.
bool ZipSession::isBelowPart(std::string_view itemName) {
    const std::string name = extractedName(itemName, false);
    const std::string contentTypesName = extractedName(CONTENT_TYPES_ITEM, false);
    for (std::size_t slash = name.find('/'); slash != std::string::npos; slash = name.find('/', slash + 1)) {
        const std::string folder = name.substr(0, slash);
        if (parts.find(folder) != nullptr || folder == contentTypesName)
            return true;
    }
    return false;
}

/// @return as words for a message; null if other programs find the item by its name
const char* ZipSession::whyMisnamed(const DirectoryEntry& entry, const ItemName& name) {
    constexpr std::uint64_t EMPTY_DEFLATE = 2; // bytes
    if (name.kind == ItemName::Kind::Ignored && isBelowPart(entry.name))
        return "a part has the name of its folder";
    if (isFolderName(entry.name))
        return entry.size > 0 || entry.compressedSize > EMPTY_DEFLATE
                   ? "it has the name of a folder, and content"
                   : nullptr;
    if (name.kind == ItemName::Kind::Ignored)
        return nullptr;
    if (const char* const defect = nameDefectForOthers(entry.name))
        return defect;
    if (const std::string_view segment = entry.name.substr(entry.name.rfind('/') + 1);
        name.piece &&
        std::any_of(segment.begin(), segment.end(), [](char c) { return c >= 'A' && c <= 'Z'; }))
        return "its name has another letter case than that of pieces";
    if (!isASCII(entry.name)) // some programs look for the encoded name, some for the other one
        return (entry.flags & NAME_IS_UTF8) == 0 ? "its name isn't marked as UTF-8"
                                                 : "its name isn't percent-encoded";
    return name.kind == ItemName::Kind::Part && changesWhenExtracted(entry.name)
               ? "some systems change its name"
               : nullptr;
}

std::vector<interfaces::MisnamedItem> ZipSession::misnamedItems() {
    std::vector<interfaces::MisnamedItem> all;
    const auto add = [&](ItemIndex item, const ItemName& name, std::string reason, bool isPiece) {
        if (name.kind == ItemName::Kind::Ignored || belongsToPackage(item, name))
            all.push_back(
                {toString(std::string(context.archive->item(item).name), true), std::move(reason), isPiece});
    };
    for (const ItemIndex item : unusual) {
        const DirectoryEntry& entry = context.archive->item(item);
        const ItemName name = readItemName(entry.name);
        if (const char* const reason = whyMisnamed(entry, name))
            add(item, name, reason, false);
        else if (name.piece && name.kind != ItemName::Kind::Ignored)
            add(item, name, "it is a piece of an interleaved part", true);
    }
    for (const ItemIndex item : otherwiseNamed)
        add(item, readItemName(context.archive->item(item).name),
            "another piece of the part has the name in another letter case", false);
    const auto addNamed = [&](ItemIndex item, std::string reason) {
        all.push_back(
            {toString(std::string(context.archive->item(item).name), true), std::move(reason), false});
    };
    if (context.archive) {
        context.archive->checkLayoutNow();
        context.archive->searchContents();
        context.archive->readAsMostProgramsDo();
        takeFindings();
        for (const Ambiguity& one : context.archive->ambiguities()) {
            if (one.item)
                addNamed(*one.item, one.reason);
            else
                all.push_back({u"the end of the archive", one.reason, false});
        }
        // Programs that don't use the directory read on in what follows.
        for (const ItemIndex item : context.archive->unfinishedItems())
            addNamed(item, "its compressed data has no last block");
    }
    for (const std::string& bytes : loose)
        all.push_back({toString(bytes, true), "they aren't read here", false});
    return all;
}

std::vector<interfaces::Oddity> ZipSession::oddities() const {
    std::vector<interfaces::Oddity> all = odd;
    if (context.archive)
        for (const ItemIndex item : context.archive->unfinishedItems())
            all.push_back({"", toString(std::string(context.archive->item(item).name), true), 0,
                           "its compressed data ends without the last block",
                           "it is read: size and checksum are right"});
    return all;
}

void ZipSession::requireWritable(const std::string& name) const {
    if (context.readOnly)
        fail(itemPlace(context.place, name), "the archive is opened to read", EACCES);
}

/// What is saved must be readable again under the same limits.
void ZipSession::requireRoomFor(const std::string& item) {
    const auto refuse = [&](const std::string& what, std::uint64_t limit) {
        fail(itemPlace(context.place, item), what + std::to_string(limit), EFBIG);
    };
    if (item.size() > options.maxNameLength)
        refuse("its name has more bytes than the limit of ", options.maxNameLength);
    if (static_cast<std::uint64_t>(std::count(item.begin(), item.end(), '/')) > options.maxDepth)
        refuse("deeper in folders than the limit of ", options.maxDepth);
    constexpr std::uint64_t CONTENT_TYPES_AND_THIS = 2;
    if (!parts.find(item) && parts.all().size() + ignored.size() + CONTENT_TYPES_AND_THIS > options.maxItems)
        refuse("too many items for the limit of ", options.maxItems);
}

ZipPart& ZipSession::create(const std::u16string& partName, interfaces::CompressionType compression) {
    std::string name = detail::toUTF8String(partName, true);
    requireWritable(name);
    if (const char* defect = partNameDefect(name))
        fail(itemPlace(context.place, name), std::string("no part name: ") + defect, EINVAL);
    name.erase(0, 1);
    requireRoomFor(name);
    if (const auto other = extractionNames.addOwned(name, name))
        fail(itemPlace(context.place, name),
             "no part name here: other programs may extract it over " + printable(*other), EINVAL);
    ZipPart* part = parts.add(name, context, name, std::vector<ItemIndex>());
    if (!part)
        part = parts.find(name);
    part->content.setCompression(compression);
    part->content.clear();
    return *part;
}

void ZipSession::remove(const std::u16string& partName) {
    const std::string name = detail::toUTF8String(partName, true);
    requireWritable(name);
    const ZipPart* part = partNameDefect(name) ? nullptr : parts.find(std::string_view(name).substr(1));
    if (!part)
        fail(itemPlace(context.place, name), "no such part", ENOENT);
    const ItemRange items = part->content.oldItems();
    removedItems.insert(removedItems.end(), items.begin(), items.end());
    parts.remove(part->name);
    context.changed = true;
}

void ZipSession::save() {
    if (context.readOnly || !context.changed)
        return;
    store.replace(source ? source->state() : FileState(), [this](ByteTarget& target) { write(target); });
}

void ZipSession::write(ByteTarget& target) {
    ArchiveTail tail(target);
    ArchiveWriter writer(context.archive.get(), tail, context.place, options);
    for (const ItemIndex item : removedItems)
        writer.remove(item);
    // Programs recognise a file by its first items: the content types, and the relationships of the package.
    if (contentTypes->written())
        writer.put(*contentTypes);
    for (const ZipPart& part : parts.all()) {
        if (!part.content.written())
            continue;
        if (part.name == PACKAGE_RELATIONSHIPS_ITEM)
            writer.putSecond(part.content);
        else
            writer.put(part.content);
    }
    writer.finish();
    try {
        readDirectoryEnd(tail, context.place, false);
    } catch (const Exception&) {
        fail(context.place, "can't save: the content of an item looks like the end of the archive", EBADMSG);
    }
}

} // namespace opc::physical::zip
