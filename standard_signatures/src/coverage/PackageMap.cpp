#include "coverage/PackageMap.hpp"

#include "names/PartNames.hpp"
#include "names/SignatureParts.hpp"
#include "reason/Refusal.hpp"

#include <algorithm>
#include <string_view>

namespace opc::standard_signatures {

namespace {

/// The type of a relationship, and that of the part to which it leads: whole, or with a slash at its end.
struct PartKind {
    std::string_view relationship;
    std::string_view contentType;
};

constexpr std::string_view CORE_PROPERTIES = "application/vnd.openxmlformats-package.core-properties+xml";
constexpr std::string_view EXTENDED_PROPERTIES =
    "application/vnd.openxmlformats-officedocument.extended-properties+xml";
constexpr std::string_view CUSTOM_PROPERTIES =
    "application/vnd.openxmlformats-officedocument.custom-properties+xml";

constexpr PartKind LEFT_OUT_BY_CUSTOM[] = {
    {"http://schemas.openxmlformats.org/package/2006/relationships/metadata/core-properties",
     CORE_PROPERTIES},
    // a common mistake:
    {"http://schemas.openxmlformats.org/officedocument/2006/relationships/metadata/core-properties",
     CORE_PROPERTIES},
    {"http://schemas.openxmlformats.org/package/2006/relationships/metadata/thumbnail", "image/"},
    {"http://schemas.openxmlformats.org/officeDocument/2006/relationships/extended-properties",
     EXTENDED_PROPERTIES},
    {"http://schemas.openxmlformats.org/officeDocument/2006/relationships/custom-properties",
     CUSTOM_PROPERTIES},
    {"http://purl.oclc.org/ooxml/officeDocument/relationships/extendedProperties", EXTENDED_PROPERTIES},
    {"http://purl.oclc.org/ooxml/officeDocument/relationships/customProperties", CUSTOM_PROPERTIES},
};

constexpr PartKind OF_SIGNATURES[] = {
    {ORIGIN_RELATIONSHIP, ORIGIN_CONTENT_TYPE},
    {SIGNATURE_RELATIONSHIP, SIGNATURE_CONTENT_TYPE},
    {CERTIFICATE_RELATIONSHIP, CERTIFICATE_CONTENT_TYPE},
};

template <std::size_t Size>
const PartKind* findKind(const PartKind (&kinds)[Size], std::string_view relationship) {
    const auto* const found = std::find_if(kinds, kinds + Size, [relationship](const PartKind& one) {
        return one.relationship == relationship;
    });
    return found == kinds + Size ? nullptr : found;
}

/// Whether a part is what a relationship says that leads to it. Otherwise such a relationship could excuse any part of the
/// content from being signed.
bool isOfKind(const StoredPart& part, const PartKind& kind) {
    if (!part.contentType)
        return false;
    const std::string type = keyOf(*part.contentType);
    return kind.contentType.back() == '/' ? type.compare(0, kind.contentType.size(), kind.contentType) == 0
                                          : type == kind.contentType;
}

/// Whether the part needn't be signed because of this relationship.
bool excuses(const MappedRelationship& relationship) {
    const std::string_view type = relationship.values->type;
    const PartKind* const kind = relationship.role == RelationshipRole::Content ? nullptr
                                 : relationship.role == RelationshipRole::OfSignatures
                                     ? findKind(OF_SIGNATURES, type)
                                     : findKind(LEFT_OUT_BY_CUSTOM, type);
    return kind != nullptr && isOfKind(*relationship.target, *kind);
}

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
        (excuses(one) ? exempt : contentTargets).insert(one.target);
        if (one.role == RelationshipRole::OfSignatures)
            ofSignatures.insert(one.target);
        if (one.values->type == SIGNATURE_RELATIONSHIP && seen.insert(one.target).second)
            signatureParts.push_back(one.target);
    }
    const bool isOfOffice = hasMainDocument();
    for (const interfaces::MisnamedItem& item : contents.misnamedItems())
        if (isOfOffice || !item.isPiece)
            misnamed.push_back(item);
}

void PackageMap::collect(PackageContents& contents) {
    for (const StoredPart& part : contents.parts()) {
        if (!part.source)
            continue;
        const StoredPart* const source = contents.find(*part.source);
        const bool isOfPackage = *part.source == "/";
        try {
            for (const RelationshipValues& values : contents.relationships(part).relationships) {
                const StoredPart* const target =
                    values.isExternal ? nullptr : contents.find(resolveTarget(*part.source, values.target));
                all.push_back({&part, &values, target, RelationshipRole::Content,
                               isOfPackage && isMainType(values.type)});
                sources.push_back(source);
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
            findKind(LEFT_OUT_BY_CUSTOM, one.values->type) != nullptr)
            one.role = RelationshipRole::LeftOutByCustom;
}

bool PackageMap::hasMainDocument() const {
    return std::any_of(all.begin(), all.end(), [](const MappedRelationship& one) { return one.isMain; });
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
