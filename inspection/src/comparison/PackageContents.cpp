#include "comparison/PackageContents.hpp"

#include "checks/contenttypes/TypeGrammar.hpp"
#include "format/ForeignFormats.hpp"
#include "subject/Names.hpp"
#include "subject/Targets.hpp"

#include <opc/model/XmlLimits.hpp>

#include <algorithm>
#include <unordered_set>

namespace opc::inspection {

namespace {

bool isReadInFull(const DocumentState& document) {
    return document.failure.empty() && document.faults.empty() && !document.usesMarkupCompatibility;
}

} // namespace

PackageContents::PackageContents(const Archive& archive)
    : source(archive), table(archive), contentTypes(archive, table),
      restOfEntries(model::XmlLimits().package.elements) {
    if (archive.items().empty() && !archive.isZip())
        throwNoArchive(archive);
    sortParts();
    findOtherItems();
}

void PackageContents::sortParts() {
    sorted.reserve(table.parts().size());
    for (PartView& part : table.parts())
        sorted.push_back({keyOfName(part.name), &part});
    const auto precedes = [](const KeyedPart& left, const KeyedPart& right) { return left.key < right.key; };
    std::stable_sort(sorted.begin(), sorted.end(), precedes);
}

void PackageContents::findOtherItems() {
    std::unordered_set<const ArchiveItem*> known;
    for (const PartView& part : table.parts())
        known.insert(part.items.begin(), part.items.end());
    if (isReadInFull(contentTypes.document))
        known.insert(table.contentTypes().begin(), table.contentTypes().end());
    for (const ArchiveItem& item : source.items())
        if (item.kind != ItemKind::Folder && known.count(&item) == 0)
            others.push_back(&item);
    const auto precedes = [](const ArchiveItem* left, const ArchiveItem* right) {
        return left->name < right->name;
    };
    std::stable_sort(others.begin(), others.end(), precedes);
}

RelationshipsView PackageContents::readRelationships(PartView& part) {
    RelationshipsView view = inspection::readRelationships(source, table, part, restOfEntries);
    restOfEntries -= view.entries.size();
    return view;
}

const PartView* PackageContents::partOfPackage(std::string_view lastSegment) {
    const auto found = std::find_if(table.parts().begin(), table.parts().end(), [](const PartView& part) {
        return part.isRelationships() && sourceOfRelationships(part.name) == "/";
    });
    if (found == table.parts().end())
        return nullptr;
    std::uint64_t most = model::XmlLimits().relationships.elements;
    for (const RelationshipView& entry : inspection::readRelationships(source, table, *found, most).entries)
        if (entry.part != nullptr && entry.lastSegment() == lastSegment)
            return entry.part;
    return nullptr;
}

bool isNothingElse(const RelationshipsView& relationships) {
    return isReadInFull(relationships.document) &&
           equalsCaseless(trimmed(relationships.part->contentType), RELATIONSHIPS_TYPE);
}

std::string keyOfType(const std::string& contentType) {
    const std::size_t parameters = std::min(contentType.find(';'), contentType.size());
    return toLowerASCII(trimmed(std::string_view(contentType).substr(0, parameters)))
        .append(trimmed(std::string_view(contentType).substr(parameters)));
}

std::string resolvedTarget(const RelationshipView& relationship) {
    if (relationship.isExternal || relationship.resolved.empty())
        return {};
    const Reference reference(trimmed(relationship.target));
    std::string target = relationship.resolved;
    if (reference.hasQuery)
        target.append("?").append(reference.query);
    if (reference.hasFragment)
        target.append("#").append(reference.fragment);
    return target;
}

RelationshipKey keyOf(const RelationshipView& relationship) {
    const std::string_view mode = trimmed(relationship.targetMode);
    const bool isUsual = mode.empty() || equalsCaseless(mode, "Internal") || relationship.isExternal;
    RelationshipKey key{std::string(trimmed(relationship.type)),
                        relationship.isExternal ? "External"
                        : isUsual               ? "Internal"
                                                : std::string(mode),
                        resolvedTarget(relationship)};
    if (key.target.empty())
        key.target = relationship.target;
    else
        key.target.replace(0, relationship.resolved.size(), keyOfName(relationship.resolved));
    return key;
}

} // namespace opc::inspection
