#include "SignatureAdditions.hpp"

#include <opc/core/Exception.hpp>
#include <opc/core/Text.hpp>
#include <opc/editing/Editor.hpp>
#include <opc/model/Package.hpp>

namespace opctool {

namespace {

using opc::editing::Change;
using opc::inspection::SignaturePartKind;
using opc::model::Package;
using opc::model::PartName;
using opc::model::Relationship;
using opc::model::RelationshipSource;

/// Calls `visit` with each relationship of the source that has a type of signatures.
template <typename Visit>
void visitRelationships(const RelationshipSource& source, const Visit& visit) {
    for (const Relationship& relationship : source.getRelationships())
        if (const auto kind =
                opc::inspection::targetOfSignatureType(opc::toUDEString(relationship.getType())))
            visit(*kind, relationship);
}

/// Calls `visit` with the part that the relationship leads to, if there is one.
template <typename Visit>
void visitTarget(const Package& package, const Relationship& relationship, const Visit& visit) {
    try {
        const PartName name(relationship.getTargetURI());
        if (package.hasPart(name))
            visit(package.getPart(name));
    } catch (const opc::Exception&) { // it leads to nothing that can be a part
    }
}

/// The relationships that lead to origins and signatures, as additions.
std::vector<Change> listRelationships(const Package& package) {
    std::vector<Change> all;
    const auto add = [&all](const Relationship& relationship) {
        all.push_back({Change::Kind::RelationshipAdded,
                       opc::toUDEString(relationship.getSourceURI().toString()),
                       opc::toUDEString(relationship.getID()),
                       {},
                       opc::editing::stateOf(relationship)});
    };
    visitRelationships(package, [&](SignaturePartKind kind, const Relationship& toOrigin) {
        add(toOrigin);
        if (kind == SignaturePartKind::Origin)
            visitTarget(package, toOrigin, [&](const RelationshipSource& origin) {
                visitRelationships(
                    origin, [&](SignaturePartKind, const Relationship& toSignature) { add(toSignature); });
            });
    });
    return all;
}

} // namespace

SignatureAdditions::SignatureAdditions(const Package& package) : signatures(package) {
    for (const Change& change : listRelationships(package))
        known.emplace(change.place, change.name);
}

std::vector<std::string> SignatureAdditions::findBroken(const Package& package) const {
    std::vector<Change> added;
    for (Change& change : listRelationships(package))
        if (known.count({change.place, change.name}) == 0)
            added.push_back(std::move(change));
    return signatures.brokenBy(added);
}

} // namespace opctool
