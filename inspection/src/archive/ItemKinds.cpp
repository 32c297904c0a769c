#include "archive/ItemKinds.hpp"

#include "zip/src/ItemName.hpp"

#include <algorithm>
#include <map>
#include <string_view>

namespace opc::inspection::archive {

namespace {

using physical::zip::ItemName;

std::string toLowerCase(std::string text) {
    for (char& c : text)
        c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    return text;
}

/// @param name  with `_rels` and `.rels` in the letter case of the standard
bool isNameOfRelationships(std::string_view name) {
    constexpr std::string_view FOLDER = "/_rels/";
    constexpr std::string_view EXTENSION = ".rels";
    const std::size_t file = name.rfind('/') + 1;
    return file >= FOLDER.size() && name.substr(file - FOLDER.size(), FOLDER.size()) == FOLDER &&
           name.size() - file >= EXTENSION.size() && name.substr(name.size() - EXTENSION.size()) == EXTENSION;
}

void takePart(ArchiveItem& item, std::string name) {
    item.partName = std::move(name);
    item.kind = isNameOfRelationships(item.partName) ? ItemKind::Relationships : ItemKind::Part;
}

void ignore(ArchiveItem& item, std::string reason) {
    item.kind = ItemKind::Ignored;
    item.partName.clear();
    item.reason = std::move(reason);
}

/// The pieces of one content. They make one up if all from 0 to the one called last are there, each once.
void join(std::vector<ArchiveItem*>& pieces) {
    std::stable_sort(pieces.begin(), pieces.end(), [](const ArchiveItem* left, const ArchiveItem* right) {
        return left->pieceNumber < right->pieceNumber;
    });
    bool isComplete = true;
    for (std::size_t i = 0; i < pieces.size(); ++i)
        isComplete =
            isComplete && pieces[i]->pieceNumber == i && pieces[i]->isLastPiece == (i + 1 == pieces.size());
    for (ArchiveItem* piece : pieces) {
        if (isComplete)
            piece->kind = ItemKind::Piece;
        else
            ignore(*piece, "a piece of an incomplete sequence");
    }
}

} // namespace

void tellKinds(std::vector<ArchiveItem>& items) {
    std::map<std::string, std::vector<ArchiveItem*>> pieces; // by what they are pieces of
    for (ArchiveItem& item : items) {
        if (!item.central)
            continue;
        if (physical::zip::isUsualItemName(item.name)) {
            takePart(item, '/' + item.name);
            continue;
        }
        ItemName name = physical::zip::readItemName(item.name);
        if (name.piece) {
            item.hasPieceName = true;
            item.pieceNumber = name.piece->number;
            item.isLastPiece = name.piece->last;
        }
        switch (name.kind) {
        case ItemName::Kind::ContentTypes:
            item.kind = ItemKind::ContentTypes;
            break;
        case ItemName::Kind::Part:
            takePart(item, '/' + name.partName);
            break;
        default:
            ignore(item, std::move(name.reason));
            if (!item.name.empty() && item.name.back() == '/' && item.central->size == 0 &&
                name.kind == ItemName::Kind::Ignored)
                item.kind = ItemKind::Folder;
        }
        if (item.hasPieceName && item.kind != ItemKind::Ignored)
            pieces[toLowerCase(item.partName)].push_back(&item);
    }
    for (auto& [name, siblings] : pieces)
        join(siblings);
}

} // namespace opc::inspection::archive
