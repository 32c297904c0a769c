#include "package/RelationshipSourceImpl.hpp"
#include "signatures/coverage/SignatureLayout.hpp"
#include "signatures/document/SignatureVocabulary.hpp"
#include "signatures/manager/DigitalSignatureManagerImpl.hpp"

#include <opc/core/Text.hpp>
#include <opc/model/Package.hpp>

#include <set>

/// @file
/// The number of a new signature: the next one whose names are free.

namespace opc::model {

namespace {

/// Adds the names of signatures that occur in the name of an item which isn't a part. Other programs, or a later version
/// of this one, may take the item for such a part, for a piece of it or for its relationships, in any spelling.
void addSignatureNames(const std::u16string& item, std::set<std::u16string>& names) {
    using namespace vocabulary::signatures;
    constexpr std::u16string_view FOLDER = PARTS_FOLDER.wide().substr(1, PARTS_FOLDER.wide().size() - 2);
    constexpr std::u16string_view PREFIX = NAME_PREFIX;
    constexpr std::u16string_view EXTENSION = PART_EXTENSION;
    const std::u16string text = toLowerASCIIString(item);
    const std::size_t folder = text.find(FOLDER);
    if (folder == std::u16string::npos)
        return;
    for (std::size_t start = text.find(PREFIX, folder + FOLDER.size()); start != std::u16string::npos;
         start = text.find(PREFIX, start + 1)) {
        const std::size_t end = text.find_first_not_of(u"0123456789", start + PREFIX.size());
        if (end != std::u16string::npos && text.compare(end, EXTENSION.size(), EXTENSION) == 0)
            names.insert(text.substr(start, end - start));
    }
}

} // namespace

std::u16string DigitalSignatureManager::Impl::takeID(const Selection& selection) {
    if (selection.isForCountersignature)
        return COUNTERSIGNATURE_ID;
    std::set<std::u16string> taken;
    for (const DigitalSignature& signature : list.signatures) // their parts may have other names
        taken.insert(signature.getName());
    for (const interfaces::IgnoredItem& item : package.getIgnoredItems())
        addSignatureNames(item.name, taken);

    const std::optional<Part> origin = findOriginForNew();
    const auto isTaken = [&](const std::u16string& id) {
        const std::u16string name = getSignatureName(id);
        const PartName partName = getSignaturePartName(name);
        std::u16string existing;
        return taken.count(name) > 0 || package.hasPart(partName) ||
               (package.isPartDerivedFromExistingPartName(partName, existing) &&
                existing == partName.toString()) || // a name further up would block every number
               (origin && origin->getState().usesID(getSignatureRelationshipID(id)));
    };
    std::u16string id;
    do
        id = toString(std::to_string(list.nextNumber++), true);
    while (isTaken(id));
    return id;
}

} // namespace opc::model
