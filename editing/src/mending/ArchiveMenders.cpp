#include "hash/TextHash.hpp"
#include "mending/Menders.hpp"
#include "mending/PlainName.hpp"

#include "subject/Names.hpp"
#include "zip/src/ItemKind.hpp"
#include "zip/src/Records.hpp"

#include <algorithm>
#include <iterator>
#include <unordered_set>

namespace opc::editing::mending {

namespace {

using inspection::ItemKind;
using inspection::keyOfName;
using Stage = Mender::Stage;

const char* const NO_SUCH_ITEM = "The item isn't found again";

Outcome writeAnew(Round& round, const Finding& finding) {
    round.plan.isDue = true;
    const ArchiveItem* const item = round.itemOf(finding);
    if (item != nullptr && !item->central && !round.plan.fateOf(*item).isDropped)
        return mended("The item is listed again"); // it was lost
    return mended("The archive is written anew without that");
}

/// An end record within a content stays with it, and one within the comment goes with it.
Outcome writeOneEnd(Round& round, const Finding& finding) {
    const std::uint64_t place = finding.place.offset.value_or(0);
    for (const ArchiveItem& item : round.archive().items())
        if (item.central && item.endOffset && *item.headerOffset <= place && place < *item.endOffset)
            return left("It stands in the content of " + item.name);
    if (round.archive().comment().find("PK\x05\x06") != std::string::npos)
        round.plan.losesComment = true;
    return writeAnew(round, finding);
}

/// Takes in the items that the directory has lost, and leaves out those whose content is lost.
Outcome recover(Round& round, const Finding&) {
    std::unordered_set<std::string, TextHash> names;
    std::string lost;
    const auto lose = [&lost](const ArchiveItem& item) { lost += (lost.empty() ? "" : ", ") + item.name; };
    for (const ArchiveItem& item : round.archive().items()) {
        if (item.central && item.endOffset) {
            names.insert(keyOfName(item.name));
        } else if (item.central) {
            round.plan.fateOf(item).isDropped = true;
            lose(item);
        }
    }
    for (const ArchiveItem& item : round.archive().items()) {
        if (item.central)
            continue;
        const bool isThere = item.endOffset && round.isWhole(item);
        if (!isThere)
            lose(item);
        else if (names.insert(keyOfName(item.name)).second)
            round.plan.touch(item).isDropped = false;
    }
    if (names.empty())
        return left("No item can be read");
    round.plan.isDue = true;
    return mended("The archive is written anew with the items that are there: " +
                  std::to_string(names.size()) + (lost.empty() ? "" : "; lost: " + lost));
}

/// @return the hidden item that is what a listed one should be; null if there is none
const ArchiveItem* findHiddenTwin(Round& round, const ArchiveItem& item) {
    for (const ArchiveItem* const other : round.itemsLike(item))
        if (!other->central && other->name == item.name && round.isWhole(*other))
            return other;
    return nullptr;
}

Outcome agree(Round& round, const Finding& finding) {
    const ArchiveItem* const item = round.itemOf(finding);
    if (item == nullptr || !item->central)
        return left(NO_SUCH_ITEM);
    if (item->endOffset) {
        if (!round.isWhole(*item))
            return left("The content isn't what any record says");
        round.plan.writeHeader(*item);
        return mended("The headers of the item are written anew as the directory has them");
    }
    const ArchiveItem* const twin = findHiddenTwin(round, *item);
    if (twin == nullptr)
        return left("The content of the item isn't found");
    round.plan.drop(*item);
    round.plan.fateOf(*twin).isDropped = false;
    round.plan.writeHeader(*twin);
    return mended("The directory leads to the item again");
}

Outcome simplify(Round& round, const Finding& finding) {
    const ArchiveItem* const item = round.itemOf(finding);
    if (item == nullptr || !item->dataOffset)
        return left(NO_SUCH_ITEM);
    round.plan.writeHeader(*item);
    return mended("The headers of the item are written anew");
}

Outcome dropFields(Round& round, const Finding& finding) {
    const ArchiveItem* const item = round.itemOf(finding);
    if (item == nullptr || !item->dataOffset)
        return left(NO_SUCH_ITEM);
    round.plan.touch(*item).losesExtraFields = true;
    return mended("The item loses its extra fields");
}

Outcome shorten(Round& round, const Finding& finding) {
    const ArchiveItem* const item = round.itemOf(finding);
    if (item == nullptr || !item->dataOffset || !item->central)
        return left(NO_SUCH_ITEM);
    constexpr std::size_t MOST = 0xFFFF;
    ItemFate& fate = round.plan.touch(*item);
    fate.losesExtraFields = true;
    fate.losesComment = item->central->name.size() + item->comment.size() > MOST;
    return mended(fate.losesComment ? "The item loses its extra fields and its comment"
                                    : "The item loses its extra fields");
}

Outcome dropEncryptionField(Round& round, const Finding& finding) {
    const ArchiveItem* const item = round.itemOf(finding);
    if (item == nullptr || !item->central || (item->central->flags & physical::zip::ENCRYPTION_FLAGS) != 0 ||
        !round.isWhole(*item))
        return left("The item can't be read without its password");
    return dropFields(round, finding);
}

Outcome dropComment(Round& round, const Finding& finding) {
    if (finding.place.part.empty() && finding.place.item.empty()) {
        round.plan.losesComment = round.plan.isDue = true;
        return mended("The archive loses its comment");
    }
    const ArchiveItem* const item = round.itemOf(finding);
    if (item == nullptr || !item->dataOffset)
        return left(NO_SUCH_ITEM);
    round.plan.touch(*item).losesComment = true;
    return mended("The item loses its comment");
}

Outcome dropRights(Round& round, const Finding& finding) {
    constexpr std::uint32_t KIND = 0170000U << 16U;
    constexpr std::uint32_t REGULAR = 0100000U << 16U;
    const ArchiveItem* const item = round.itemOf(finding);
    if (item == nullptr || !item->dataOffset)
        return left(NO_SUCH_ITEM);
    const std::uint32_t kind = item->externalAttributes & KIND;
    if ((kind != 0 && kind != REGULAR) ||
        physical::zip::kindByAttributes(item->externalAttributes, item->name) != nullptr)
        return left("Only who packed it knows the file that is meant");
    round.plan.touch(*item).losesRights = true;
    return mended("The item loses the rights of its owner and group");
}

/// Of two items of one name, drops the one of the finding if both have the same content.
Outcome dropTwin(Round& round, const Finding& finding) {
    const ArchiveItem* const item = round.itemOf(finding);
    if (item == nullptr || !item->central)
        return left(NO_SUCH_ITEM);
    for (const ArchiveItem* const other : round.itemsLike(*item)) {
        if (other == item || !other->central || round.plan.fateOf(*other).isDropped ||
            keyOfName(other->name) != keyOfName(item->name))
            continue;
        if (!round.areEqual({item}, {other}))
            return left("The contents differ, and only a person knows which one is meant");
        round.plan.drop(*item);
        return mended("One of the two is taken out: they are the same");
    }
    return left(NO_SUCH_ITEM);
}

bool precedes(const ArchiveItem* first, const ArchiveItem* second) {
    return first->pieceNumber < second->pieceNumber;
}

Outcome dropPieces(Round& round, const Finding& finding) {
    const ArchiveItem* const item = round.itemOf(finding);
    if (item == nullptr)
        return left(NO_SUCH_ITEM);
    Round::Items pieces = round.piecesOf(item->name);
    std::stable_sort(pieces.begin(), pieces.end(), precedes);
    const bool areComplete = !pieces.empty() && pieces.front()->kind == ItemKind::Piece;
    if (!areComplete || !round.areEqual(pieces, {item}))
        return left("The contents differ, and only a person knows which one is meant");
    for (const ArchiveItem* const piece : pieces)
        round.plan.drop(*piece);
    return mended("The pieces are taken out: together they are the same as the whole");
}

/// Nothing has changed the order of other items before: see the order of the checks.
Outcome orderPieces(Round& round, const Finding& finding) {
    const ArchiveItem* const item = round.itemOf(finding);
    if (item == nullptr)
        return left(NO_SUCH_ITEM);
    Round::Items pieces = round.piecesOf(prefixOfPiece(item->name));
    std::vector<std::size_t> places;
    for (const ArchiveItem* const piece : pieces)
        places.push_back(round.plan.indexOf(*piece));
    std::stable_sort(pieces.begin(), pieces.end(), precedes);
    for (std::size_t i = 0; i < places.size(); ++i)
        round.plan.order[places[i]] = round.plan.indexOf(*pieces[i]);
    round.plan.isDue = true;
    return mended("The pieces are written in their order");
}

Outcome writeTypesFirst(Round& round, const Finding&) {
    const std::vector<const ArchiveItem*>& items = round.subject.contentTypesItems();
    const ArchiveItem* const first = round.archive().items().data();
    std::stable_partition(round.plan.order.begin(), round.plan.order.end(), [&](std::size_t index) {
        return std::find(items.begin(), items.end(), first + index) != items.end();
    });
    round.plan.isDue = true;
    return mended("The content types are written first");
}

constexpr char WRITES_ANEW[] = "Writes the archive anew without the bytes";
constexpr char DROPS_FIELDS[] = "Takes the extra fields of the item out";
constexpr char WRITES_HEADERS[] = "Writes the headers of the item anew";

constexpr Mender ARCHIVE_MENDERS[] = {
    {"M3.16", Stage::Whole,
     "Writes the archive anew with the items that are there, and names those that are lost", recover},
    {"M3.17", Stage::Whole, "Writes one archive without these records", writeAnew},
    {"SEC-50", Stage::Whole, "Writes the archive anew with the items of the record that `items` shows",
     writeOneEnd},
    {"SEC-46", Stage::Whole, WRITES_ANEW, writeAnew},
    {"SEC-48", Stage::Whole, "Writes the archive anew without hidden items and gaps", writeAnew},
    {"M3.3", Stage::Whole, "Takes one of the two out if they are the same", dropTwin},
    {"M1.12", Stage::Whole, "Takes one of the two out if they are the same", dropTwin},
    {"M3.14", Stage::Whole, "Writes the headers anew if the content is what the directory says", agree},
    {"M3.8", Stage::Whole, "Takes the extra fields of the item out, and its comment if need be", shorten},
    {"M3.9", Stage::Whole, "Takes the extra field out if the item can be read all the same",
     dropEncryptionField},
    {"ZIP-VERSION", Stage::Whole, WRITES_HEADERS, simplify},
    {"ZIP-FLAGS", Stage::Whole, WRITES_HEADERS, simplify},
    {"M2.11", Stage::Whole, "Takes the pieces out if they are the same as the whole", dropPieces},
    {"M2.15", Stage::Whole, "Takes one of the two out if they are the same", dropTwin},
    {"S2.5", Stage::Whole, "Writes the pieces in their order", orderPieces},
    {"S3.2", Stage::Whole, DROPS_FIELDS, dropFields},
    {"SEC-47", Stage::Whole, "Takes the rights of owner and group from a file; leaves links and devices",
     dropRights},
    {"SEC-51", Stage::Whole, "Takes the comment out", dropComment},
    {"SEC-52", Stage::Whole, DROPS_FIELDS, dropFields},
    {"SEC-53", Stage::Whole, DROPS_FIELDS, dropFields},
    {"S2.3", Stage::Whole, "Writes the content types first", writeTypesFirst},
};

} // namespace

MenderRows archiveMenders() {
    return {ARCHIVE_MENDERS, std::size(ARCHIVE_MENDERS)};
}

} // namespace opc::editing::mending
