#include "mending/Menders.hpp"
#include "mending/PlainName.hpp"

#include "zip/src/ItemName.hpp"

#include <iterator>

namespace opc::editing::mending {

namespace {

using physical::zip::ItemName;
using Stage = Mender::Stage;

Outcome rename(Round& round, const Finding& finding) {
    const ArchiveItem* const item = round.itemOf(finding);
    if (item == nullptr || !item->central || !item->dataOffset || item->hasPieceName)
        return left("Only who named the item knows what is meant");
    const std::string name = plainName(item->name);
    const ItemName read = physical::zip::readItemName(name);
    if (read.kind != ItemName::Kind::Part && read.kind != ItemName::Kind::ContentTypes)
        return left("No name of a part is like that of the item");
    for (const ArchiveItem* const other : round.itemsLike(*item))
        if (other != item && other->central)
            return left("There is another item of the name " + name);
    round.plan.touch(*item).name = name;
    Change change{Change::Kind::PartRenamed, item->partName, {}, {}, {}};
    change.after.text = '/' + name;
    return mended("The item is renamed to " + name, {change});
}

constexpr char RENAMES[] = "Renames the item if its name has one plain spelling, and no other item has it";

constexpr Mender NAME_MENDERS[] = {
    {"M1.3", Stage::Whole, RENAMES, rename},
    {"M1.6", Stage::Whole, RENAMES, rename},
    {"M1.8", Stage::Whole, RENAMES, rename},
    {"M3.2", Stage::Whole, RENAMES, rename},
};

} // namespace

MenderRows nameMenders() {
    return {NAME_MENDERS, std::size(NAME_MENDERS)};
}

} // namespace opc::editing::mending
