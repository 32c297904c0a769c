#include "checks/container/ContainerChecks.hpp"

#include "subject/Names.hpp"

#include <algorithm>
#include <map>
#include <vector>

namespace opc::inspection {

namespace {

/// The items that have the name of one part, with and without a piece number.
struct Siblings {
    std::vector<const ArchiveItem*> pieces;
    const ArchiveItem* whole = nullptr;
};

/// What a piece is a piece of, as its item is called.
std::string prefixOf(const ArchiveItem& piece) {
    const std::string name = piece.name;
    return name.substr(0, name.find_last_of("/\\"));
}

void checkSequence(const std::vector<const ArchiveItem*>& pieces, Findings& findings) {
    const ArchiveItem& first = *pieces.front();
    for (std::size_t i = 1; i < pieces.size(); ++i)
        if (pieces[i]->pieceNumber == pieces[i - 1]->pieceNumber)
            return findings.add("M2.15", placeOf(*pieces[i]), "Another item is the same piece");
    if (first.kind == ItemKind::Ignored) {
        Place place = placeOf(first);
        findings.add("M2.16", std::move(place), "The pieces of " + prefixOf(first) + " are incomplete");
        return;
    }
    const auto standsBehind = [](const ArchiveItem* left, const ArchiveItem* right) {
        return left->headerOffset < right->headerOffset;
    };
    if (!std::is_sorted(pieces.begin(), pieces.end(), standsBehind))
        findings.add("S2.5", placeOf(first), "The pieces don't stand in the order of their numbers");
}

} // namespace

void checkPieces(const Subject& subject, Findings& findings) {
    std::map<std::string, Siblings> byName;
    for (const ArchiveItem& item : subject.archive().items())
        if (item.hasPieceName)
            byName[keyOfName(prefixOf(item))].pieces.push_back(&item);
    if (byName.empty())
        return;
    for (const ArchiveItem& item : subject.archive().items())
        if (!item.hasPieceName && item.central)
            if (const auto found = byName.find(keyOfName(item.name)); found != byName.end())
                found->second.whole = &item;
    for (auto& [name, siblings] : byName) {
        std::stable_sort(siblings.pieces.begin(), siblings.pieces.end(),
                         [](const ArchiveItem* left, const ArchiveItem* right) {
                             return left->pieceNumber < right->pieceNumber;
                         });
        if (siblings.whole)
            findings.add("M2.11", placeOf(*siblings.whole), "The part is stored both whole and in pieces");
        else
            checkSequence(siblings.pieces, findings);
    }
}

} // namespace opc::inspection
