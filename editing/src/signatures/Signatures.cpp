#include <opc/editing/Signatures.hpp>

#include "graph/Targets.hpp"
#include "subject/Subject.hpp"

#include <opc/core/Exception.hpp>
#include <opc/core/Text.hpp>
#include <opc/model/Package.hpp>

#include <algorithm>

namespace opc::editing {

using inspection::SignaturePartKind;
using model::Package;
using model::Part;
using model::PartName;
using model::Relationship;
using model::RelationshipSource;

namespace {

std::string lowered(std::string name) {
    std::transform(name.begin(), name.end(), name.begin(), [](char character) {
        return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a') : character;
    });
    return name;
}

/// Calls `visit` with each part that a relationship of signatures leads to.
template <typename Visit>
void visitTargets(const Package& package, const RelationshipSource& source, SignaturePartKind kind,
                  const Visit& visit) {
    for (const Relationship& relationship : source.getRelationships()) {
        if (inspection::targetOfSignatureType(toUDEString(relationship.getType())) != kind)
            continue;
        const std::optional<PartName> name = targetOf(relationship);
        if (name && package.hasPart(*name))
            visit(package.getPart(*name));
    }
}

std::string partNameOf(const Part& part) {
    return toUDEString(part.getName().toString());
}

} // namespace

BreaksSignatures::~BreaksSignatures() = default;

void throwIfBroken(const std::vector<std::string>& signatures) {
    if (signatures.empty())
        return;
    std::string names;
    for (const std::string& part : signatures)
        names += (names.empty() ? "" : ", ") + part;
    throw BreaksSignatures("This would break the signature" +
                           std::string(signatures.size() > 1 ? "s " : " ") + names);
}

Signatures::Signatures(const Package& package) {
    visitTargets(package, package, SignaturePartKind::Origin, [&](const Part& origin) {
        if (!origins.insert(lowered(partNameOf(origin))).second)
            return;
        own.insert(lowered(partNameOf(origin)));
        visitTargets(package, origin, SignaturePartKind::Signature, [&](const Part& signature) {
            if (!own.insert(lowered(partNameOf(signature))).second)
                return;
            InputStream& content = signature.getInputStream();
            found.push_back({partNameOf(signature), inspection::SignatureExtent(content)});
            content.close();
            content.open(); // for the next reader
            visitTargets(package, signature, SignaturePartKind::Certificate,
                         [&](const Part& certificate) { own.insert(lowered(partNameOf(certificate))); });
        });
    });
}

Signatures::Signatures(const inspection::Archive& archive) {
    const inspection::Subject subject(archive, {});
    const auto visit = [&subject](std::string_view source, SignaturePartKind kind, const auto& use) {
        const inspection::RelationshipsView* const view = subject.relationshipsOf(source);
        if (view == nullptr)
            return;
        for (const inspection::RelationshipView& entry : view->entries)
            if (entry.part != nullptr && inspection::targetOfSignatureType(entry.type) == kind)
                use(*entry.part);
    };
    visit("/", SignaturePartKind::Origin, [&](const inspection::PartView& origin) {
        if (!origins.insert(lowered(origin.name)).second)
            return;
        own.insert(lowered(origin.name));
        visit(origin.name, SignaturePartKind::Signature, [&](const inspection::PartView& signature) {
            if (!own.insert(lowered(signature.name)).second)
                return;
            try {
                found.push_back({signature.name, inspection::SignatureExtent(*subject.open(signature))});
            } catch (const Exception&) {
                return; // it can't be read
            }
            visit(signature.name, SignaturePartKind::Certificate,
                  [&](const inspection::PartView& certificate) { own.insert(lowered(certificate.name)); });
        });
    });
}

void Signatures::throwIfBrokenBy(const std::vector<Change>& changes) const {
    const std::vector<std::string> broken = brokenBy(changes);
    if (broken.empty())
        return;
    std::string names;
    for (const std::string& part : broken)
        names += (names.empty() ? "" : ", ") + part;
    throw BreaksSignatures("This would break the signature" + std::string(broken.size() > 1 ? "s " : " ") +
                           names);
}

bool Signatures::consistOf(const std::string& part) const {
    return own.count(lowered(part)) != 0;
}

bool Signatures::sign(const std::string& part) const {
    return std::any_of(found.begin(), found.end(), [&part](const Signature& signature) {
        return signature.extent.signsPart(part) || signature.extent.signsRelationshipsOf(part);
    });
}

std::vector<std::string> Signatures::brokenBy(const std::vector<Change>& changes) const {
    std::vector<std::string> broken;
    for (const Signature& signature : found)
        if (std::any_of(changes.begin(), changes.end(),
                        [&](const Change& change) { return isBrokenBy(change, signature); }))
            broken.push_back(signature.part);
    return broken;
}

std::vector<std::string> Signatures::narrowedBy(const std::vector<Change>& changes) const {
    const auto adds = [this](const Change& change) {
        return change.kind == Change::Kind::PartAdded
                   ? !consistOf(change.place)
                   : change.kind == Change::Kind::RelationshipAdded &&
                         !inspection::targetOfSignatureType(change.after.type);
    };
    std::vector<std::string> narrowed;
    if (!std::any_of(changes.begin(), changes.end(), adds))
        return narrowed;
    const std::vector<std::string> broken = brokenBy(changes);
    for (const Signature& signature : found)
        if (std::find(broken.begin(), broken.end(), signature.part) == broken.end())
            narrowed.push_back(signature.part);
    return narrowed;
}

bool Signatures::isBrokenBy(const Change& change, const Signature& signature) const {
    const auto isSigned = [&](const Change::State& state) {
        return signature.extent.signsRelationship(change.place, change.name, state.type);
    };
    const bool isOfItself =
        lowered(change.place) == lowered(signature.part) || origins.count(lowered(change.place)) != 0;
    // Without these relationships nobody finds it or its certificates.
    const auto isFoundBy = [&](const Change::State& state) {
        return inspection::targetOfSignatureType(state.type) && (change.place == "/" || isOfItself);
    };
    switch (change.kind) {
    case Change::Kind::PartAdded:
        return false;
    case Change::Kind::PartRemoved:
    case Change::Kind::PartRenamed:
        return isOfItself || signature.extent.signsPart(change.place) ||
               signature.extent.signsRelationshipsOf(change.place);
    case Change::Kind::ContentReplaced:
    case Change::Kind::ContentTypeChanged:
    case Change::Kind::PropertyChanged:
    case Change::Kind::Mended:
        return isOfItself || signature.extent.signsPart(change.place);
    case Change::Kind::RelationshipAdded:
        return isSigned(change.after);
    case Change::Kind::RelationshipRemoved:
    case Change::Kind::RelationshipChanged:
        return isFoundBy(change.before) || isSigned(change.before) || isSigned(change.after);
    }
    return false;
}

} // namespace opc::editing
