#include "signatures/coverage/SignedEntities.hpp"

#include "package/PartSearch.hpp"
#include "signatures/coverage/SelectableRelationships.hpp"
#include "signatures/document/SignatureRecords.hpp"

#include <opc/core/Text.hpp>
#include <opc/model/Errors.hpp>
#include <opc/model/Package.hpp>

#include <utility>

namespace opc::model {

namespace {

using Groups = std::vector<SignedRelationships::Group>;

[[noreturn]] void refuseSignature(const std::string& message) {
    throw InvalidSignature(message, bedrock::codesigning_verifier::ErrorMap<102>());
}

/// @param name  of the source: of a part, or "package"
void select(const Reference& reference, const RelationshipSource& source, const std::u16string& name,
            SelectableRelationships& selectable, Groups& selected) {
    const auto refuseMissing = [&name](const std::string& what, const std::u16string& criteria) {
        refuseSignature("Relationship with " + what + " " + toUDEString(criteria) +
                        " referenced to in the signature is not present in the " + toUDEString(name));
    };
    for (const std::u16string& id : reference.relationshipReferences) {
        if (!source.hasRelationship(id))
            refuseMissing("ID", id);
        selected.push_back(selectable.byID(source, id));
    }
    for (const std::u16string& type : reference.relationshipGroupReferences) {
        SignedRelationships::Group group = selectable.byType(source, type);
        if (!group)
            refuseMissing("Type", type);
        selected.push_back(std::move(group));
    }
}

void selectRelationships(const Package& package, const Reference& reference,
                         const PartName& relationshipsPart, PartSearch& sources,
                         SelectableRelationships& selectable, Groups& selected) {
    if (relationshipsPart == u"/_rels/.rels")
        return select(reference, package, u"package", selectable, selected);
    const std::u16string name = relationshipsPart.getSourcePartName();
    select(reference, sources.get(PartName(name)), name, selectable, selected);
}

} // namespace

SignedEntities findSignedEntities(const Package& package, const SignatureContent& content,
                                  SelectableRelationships& selectable) {
    SignedEntities found;
    Groups selected;
    PartSearch parts(package);
    for (const Reference& reference : content.manifestReferences) {
        const URI& uri = reference.referenceURI;
        if (uri.isAbsolute() || uri.isOpaque() || isSameDocumentReference(uri))
            refuseSignature(
                "URI referenced to in the manifest reference should not be an external reference or a "
                "same-document reference.");
        const PartName name(uri.getPath());
        if (name.isRelationshipName()) {
            selectRelationships(package, reference, name, parts, selectable, selected);
            continue;
        }
        if (parts.find(name) == nullptr)
            refuseSignature("Part referenced to by the signature is not present in the package." +
                            toUDEString(uri.getPath()));
        // It would be digested only as relationships, and not as a part.
        if (reference.selectsRelationships())
            refuseSignature("The signature selects relationships from a part that holds none: " +
                            toUDEString(uri.getPath()));
        found.partNames.push_back(name);
    }
    found.relationships = selectable.share(std::move(selected));
    return found;
}

} // namespace opc::model
