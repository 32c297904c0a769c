#include "subject/PartTable.hpp"

#include "subject/Names.hpp"

#include <algorithm>

namespace opc::inspection {

namespace {

std::uint64_t itemSize(const ArchiveItem& item) {
    return item.central ? item.central->size : item.local ? item.local->size : 0;
}

void sortPieces(std::vector<const ArchiveItem*>& items) {
    const auto precedes = [](const ArchiveItem* left, const ArchiveItem* right) {
        return left->pieceNumber < right->pieceNumber;
    };
    if (items.size() > 1)
        std::stable_sort(items.begin(), items.end(), precedes);
}

} // namespace

PartTable::PartTable(const Archive& archive) {
    all.reserve(archive.items().size());
    byKey.reserve(archive.items().size());
    Places joined;
    for (const ArchiveItem& item : archive.items())
        add(item, joined);
    for (PartView& part : all)
        sortPieces(part.items);
    sortPieces(contentTypesItems);
}

void PartTable::add(const ArchiveItem& item, Places& joined) {
    if (item.hasPieceName && item.kind == ItemKind::Ignored)
        incomplete.insert(keyOfName('/' + item.name.substr(0, item.name.find_last_of("/\\"))));
    const bool isPiece = item.kind == ItemKind::Piece;
    const std::string key = keyOfName(item.partName);
    if (item.kind == ItemKind::ContentTypes || (isPiece && (key.empty() || key == CONTENT_TYPES_KEY))) {
        if (contentTypesItems.empty() || (isPiece && contentTypesItems.front()->kind == ItemKind::Piece))
            contentTypesItems.push_back(&item);
        return;
    }
    if (item.kind != ItemKind::Part && item.kind != ItemKind::Relationships && !isPiece)
        return;
    if (isPiece) {
        const auto [place, isFirst] = joined.emplace(key, all.size());
        if (!isFirst) {
            PartView& part = all[place->second];
            part.items.push_back(&item);
            part.size += itemSize(item);
            return;
        }
    }
    byKey.emplace(key, all.size());
    PartView& part = all.emplace_back();
    part.name = item.partName;
    part.items.push_back(&item);
    part.size = itemSize(item);
    part.hasRelationshipsName = isRelationshipsName(part.name);
}

bool PartTable::isIncomplete(std::string_view name) const {
    return !incomplete.empty() && incomplete.count(keyOfName(name)) != 0;
}

const PartView* PartTable::find(std::string_view name) const {
    const auto found = byKey.find(keyOfName(name));
    return found == byKey.end() ? nullptr : &all[found->second];
}

} // namespace opc::inspection
