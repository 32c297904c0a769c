#include "archive/UnpackedTree.hpp"

#include "archive/HiddenContents.hpp"
#include "archive/ItemOrder.hpp"

#include "hash/TextHash.hpp"
#include "zip/src/Failure.hpp"

#include <opc/core/Exception.hpp>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <map>
#include <memory>
#include <unordered_map>
#include <utility>

namespace opc::editing::archive {

using inspection::Archive;
using inspection::ArchiveItem;
using inspection::ItemKind;
using physical::zip::fail;
using physical::zip::failSystem;
using physical::zip::FileDescriptor;

namespace {

constexpr std::size_t COMPARED_AT_ONCE = std::size_t{256} * 1024;

std::string readWhole(const FileDescriptor& file, std::size_t most, const std::string& place) {
    std::string text;
    std::size_t got = 0;
    do {
        const std::size_t start = text.size();
        text.resize(start + COMPARED_AT_ONCE);
        if (const int error = file.readAt(start, reinterpret_cast<unsigned char*>(text.data()) + start,
                                          COMPARED_AT_ONCE, got))
            failSystem(place, "can't be read", error);
        text.resize(start + got);
        if (text.size() > most)
            fail(place, "is too large", EFBIG);
    } while (got > 0);
    return text;
}

} // namespace

UnpackedTree::UnpackedTree(const std::filesystem::path& folder, const physical::ZipOptions& limits)
    : tree(folder), files(tree.list()), block(COMPARED_AT_ONCE), otherBlock(COMPARED_AT_ONCE) {
    readDescription();
    if (tree.has(ORIGINAL_FILE)) {
        physical::ZipOptions options = limits;
        options.lenient = true;
        archive.emplace(std::filesystem::path(tree.place(ORIGINAL_FILE)), options);
    }
    compare();
}

void UnpackedTree::readDescription() {
    hasDescription = tree.has(DESCRIPTION_FILE);
    if (!hasDescription)
        return;
    const std::string place = tree.place(DESCRIPTION_FILE);
    described =
        TreeDescription::read(readWhole(tree.open(DESCRIPTION_FILE), TreeDescription::LARGEST, place), place);
}

/// The paths of the files of the original's items; empty for those that have none.
std::vector<std::string> UnpackedTree::originalFiles() const {
    std::vector<std::string> paths;
    for (const ArchiveItem& item : archive->items()) {
        if (item.kind == ItemKind::Hidden)
            break;
        paths.push_back(isEmptyFolder(item) ? std::string() : item.name);
    }
    const auto apply = [&](const std::vector<TreeDescription::Item>& entries) {
        for (const TreeDescription::Item& item : entries) {
            if (item.number >= paths.size() || archive->items()[item.number].name != item.name)
                fail(tree.place(DESCRIPTION_FILE), "doesn't fit the original", EBADMSG);
            paths[item.number] = item.file;
        }
    };
    apply(described.renamed);
    apply(described.left);
    return paths;
}

void UnpackedTree::compare() {
    std::unordered_map<std::string_view, const FolderTree::File*, TextHash> unclaimed;
    for (const FolderTree::File& file : files)
        unclaimed.emplace(file.path, &file);
    if (archive) {
        const std::vector<std::string> paths = originalFiles();
        for (std::size_t i = 0; i < paths.size(); ++i) {
            const auto found = unclaimed.find(paths[i]);
            const FolderTree::File* const file = found == unclaimed.end() ? nullptr : found->second;
            if (file)
                unclaimed.erase(found);
            const bool isKept = file ? hasSameBytes(archive->items()[i], *file) : paths[i].empty();
            items.push_back({isKept ? OldItem::Fate::Kept
                             : file ? OldItem::Fate::Replaced
                                    : OldItem::Fate::Removed,
                             file});
        }
    }
    std::vector<const FolderTree::File*> left;
    for (const FolderTree::File& file : files)
        if (unclaimed.count(file.path) != 0)
            left.push_back(&file);
    nameNewFiles(left);
}

bool UnpackedTree::hasSameBytes(const ArchiveItem& item, const FolderTree::File& file) {
    if (!item.unreadable.empty() || item.central->size != file.size)
        return false;
    const FileDescriptor opened = tree.open(file.path);
    std::uint64_t offset = 0;
    try {
        const std::unique_ptr<InputStream> content = archive->open(item);
        while (!content->isDone()) {
            const auto count = static_cast<std::size_t>(content->read(block.data(), block.size()));
            std::size_t got = 0;
            if (const int error = opened.readAt(offset, otherBlock.data(), count, got))
                failSystem(tree.place(file.path), "can't be read", error);
            if (got != count || std::memcmp(block.data(), otherBlock.data(), count) != 0)
                return false;
            offset += count;
        }
    } catch (const Exception&) {
        return false; // a file has taken the place of a damaged item
    }
    return offset == file.size;
}

void UnpackedTree::nameNewFiles(const std::vector<const FolderTree::File*>& unclaimed) {
    std::map<std::string_view, const std::string*> names; // by path
    if (!archive)
        for (const TreeDescription::Item& item : described.renamed)
            names.emplace(item.file, &item.name);
    for (const FolderTree::File* file : unclaimed) {
        const auto found = names.find(file->path);
        if (found == names.end() && file->path.find('\\') != std::string::npos)
            fail(tree.place(file->path), "no item can have this name", EINVAL);
        added.push_back({file, found == names.end() ? file->path : *found->second});
    }
    std::sort(added.begin(), added.end(), [](const NewFile& left, const NewFile& right) {
        return ItemOrder(left.item) < ItemOrder(right.item);
    });
}

bool UnpackedTree::isUntouched() const {
    return archive && added.empty() && std::all_of(items.begin(), items.end(), [](const OldItem& item) {
               return item.fate == OldItem::Fate::Kept;
           });
}

} // namespace opc::editing::archive
