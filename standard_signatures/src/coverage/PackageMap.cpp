#include "coverage/PackageMap.hpp"

#include "names/PartNames.hpp"
#include "names/SignatureParts.hpp"
#include "reason/Refusal.hpp"

#include <algorithm>
#include <string_view>

namespace opc::standard_signatures {

namespace {

constexpr std::string_view LEFT_OUT_BY_CUSTOM[] = {
    "http://schemas.openxmlformats.org/package/2006/relationships/metadata/core-properties",
    // a common mistake:
    "http://schemas.openxmlformats.org/officedocument/2006/relationships/metadata/core-properties",
    "http://schemas.openxmlformats.org/package/2006/relationships/metadata/thumbnail",
    "http://schemas.openxmlformats.org/officeDocument/2006/relationships/extended-properties",
    "http://schemas.openxmlformats.org/officeDocument/2006/relationships/custom-properties",
    "http://purl.oclc.org/ooxml/officeDocument/relationships/extendedProperties",
    "http://purl.oclc.org/ooxml/officeDocument/relationships/customProperties",
};

/// Whether a type could be taken for that of the main document, by a program that isn't strict about it.
bool isMainType(std::string_view type) {
    constexpr std::string_view END = "/officedocument";
    const std::string key = keyOf(type.substr(0, type.find_last_not_of(" \t\r\n/") + 1));
    return key.size() >= END.size() && key.compare(key.size() - END.size(), END.size(), END) == 0;
}

} // namespace

PackageMap::PackageMap(PackageContents& contents) {
    collect(contents);
    giveRoles();
    std::unordered_set<const StoredPart*> seen;
    for (const MappedRelationship& one : all) {
        if (one.target == nullptr)
            continue;
        (one.role == RelationshipRole::Content ? contentTargets : exempt).insert(one.target);
        if (one.role == RelationshipRole::OfSignatures)
            ofSignatures.insert(one.target);
        if (one.values->type == SIGNATURE_RELATIONSHIP && seen.insert(one.target).second)
            signatureParts.push_back(one.target);
    }
}

void PackageMap::collect(PackageContents& contents) {
    for (const StoredPart& part : contents.parts()) {
        if (!part.source)
            continue;
        try {
            for (const RelationshipValues& values : contents.relationships(part).relationships) {
                const StoredPart* const target =
                    values.isExternal ? nullptr : contents.find(resolveTarget(*part.source, values.target));
                all.push_back({&part, &values, target, RelationshipRole::Content,
                               *part.source == "/" && isMainType(values.type)});
                sources.push_back(contents.find(*part.source));
            }
        } catch (const Refusal& refusal) {
            failures.push_back(refusal.reason());
        }
    }
}

/// An origin makes relationships to signatures what they are, and those the ones to certificates.
void PackageMap::giveRoles() {
    const auto give = [this](std::string_view type, const auto& isSource, auto& targets) {
        for (std::size_t i = 0; i < all.size(); ++i)
            if (!all[i].values->isExternal && all[i].values->type == type && isSource(all[i], sources[i])) {
                all[i].role = RelationshipRole::OfSignatures;
                targets.insert(all[i].target);
            }
    };
    std::unordered_set<const StoredPart*> certificates;
    give(
        ORIGIN_RELATIONSHIP,
        [](const MappedRelationship& one, const StoredPart*) { return *one.document->source == "/"; },
        origins);
    give(
        SIGNATURE_RELATIONSHIP,
        [this](const MappedRelationship&, const StoredPart* source) {
            return source != nullptr && origins.count(source) != 0;
        },
        signaturesOfOrigins);
    give(
        CERTIFICATE_RELATIONSHIP,
        [this](const MappedRelationship&, const StoredPart* source) {
            return source != nullptr && signaturesOfOrigins.count(source) != 0;
        },
        certificates);
    for (MappedRelationship& one : all)
        if (*one.document->source == "/" && !one.values->isExternal &&
            std::find(std::begin(LEFT_OUT_BY_CUSTOM), std::end(LEFT_OUT_BY_CUSTOM), one.values->type) !=
                std::end(LEFT_OUT_BY_CUSTOM))
            one.role = RelationshipRole::LeftOutByCustom;
}

const StoredPart* PackageMap::origin() const {
    for (const MappedRelationship& one : all)
        if (one.role == RelationshipRole::OfSignatures && one.values->type == ORIGIN_RELATIONSHIP &&
            one.target != nullptr)
            return one.target;
    return nullptr;
}

std::vector<const StoredPart*> PackageMap::certificatesOf(const StoredPart& signature) const {
    std::vector<const StoredPart*> found;
    for (std::size_t i = 0; i < all.size(); ++i)
        if (sources[i] == &signature && all[i].target != nullptr &&
            all[i].values->type == CERTIFICATE_RELATIONSHIP)
            found.push_back(all[i].target);
    return found;
}

} // namespace opc::standard_signatures
