#include "signatures/coverage/SignedEntities.hpp"

#include "signatures/coverage/SelectableRelationships.hpp"
#include "signatures/signature/DigitalSignatureData.hpp"

#include <opc/core/Text.hpp>
#include <opc/model/Errors.hpp>
#include <opc/model/Package.hpp>

#include <utility>

namespace opc::model {

namespace {

[[noreturn]] void refuse(const std::string& message) {
    throw InvalidSignature(message, bedrock::codesigning_verifier::ErrorMap<102>());
}

/// The source of a relationships part.
struct Source {
    const RelationshipSource& relationships;
    std::u16string name;
    std::string label; // the name in messages
};

void select(const Reference& reference, const Source& source, SelectableRelationships& selectable,
            SignedRelationships& selected) {
    const auto refuseMissing = [&source](const std::string& what, const std::u16string& criteria) {
        refuse("Relationship with " + what + " " + toUDEString(criteria) +
               " referenced to in the signature is not present in the " + source.label);
    };
    for (const std::u16string& id : reference.relationshipReferences) {
        if (!source.relationships.hasRelationship(id))
            refuseMissing("ID", id);
        selected.add(selectable.byID(source.relationships, source.name, id));
    }
    for (const std::u16string& type : reference.relationshipGroupReferences) {
        const SignedRelationships::Group group = selectable.byType(source.relationships, source.name, type);
        if (!group)
            refuseMissing("Type", type);
        selected.add(group);
    }
}

void selectRelationships(const Package& package, const Reference& reference,
                         const PartName& relationshipsPart, SelectableRelationships& selectable,
                         SignedRelationships& selected) {
    if (relationshipsPart == u"/_rels/.rels")
        return select(reference, {package, u"/", "package"}, selectable, selected);
    const std::u16string name = relationshipsPart.getSourcePartName();
    const Part part = package.getPart(PartName(name));
    select(reference, {part, part.getName().toString(), toUDEString(name)}, selectable, selected);
}

} // namespace

void fillUpSignedEntities(const Package& package, DigitalSignatureData& data,
                          SelectableRelationships& selectable) {
    SignedRelationships selected;
    for (const Reference& reference : data.m_content.manifestReferences) {
        const URI& uri = reference.referenceURI;
        if (uri.isAbsolute() || uri.isOpaque() || isSameDocumentReference(uri))
            refuse("URI referenced to in the manifest reference should not be an external reference or a "
                   "same-document reference.");
        const PartName name(uri.getPath());
        if (name.isRelationshipName()) {
            selectRelationships(package, reference, name, selectable, selected);
            continue;
        }
        if (!package.hasPart(name))
            refuse("Part referenced to by the signature is not present in the package." +
                   toUDEString(uri.getPath()));
        // It would be digested only as relationships, and not as a part.
        if (reference.selectsRelationships())
            refuse("The signature selects relationships from a part that holds none: " +
                   toUDEString(uri.getPath()));
        data.m_signedPartNames.push_back(name);
    }
    data.m_signedRelationships = selectable.share(std::move(selected));
}

} // namespace opc::model
