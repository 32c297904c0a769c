#include "signing/Manifest.hpp"

#include "crypto/Digest.hpp"
#include "document/Vocabulary.hpp"
#include "names/PartNames.hpp"
#include "reason/Refusal.hpp"
#include "signing/SignatureText.hpp"
#include "transform/RelationshipTransform.hpp"

#include <opc/core/Text.hpp>
#include <opc/interfaces/IPhysicalPart.hpp>

namespace opc::standard_signatures {

namespace {

/// Percent-encodes every byte that is neither unreserved nor one of `others` (RFC 3986 section 2.1).
std::string encodePercent(std::string_view text, std::string_view others) {
    std::string encoded;
    for (const char c : text)
        if (isUnreserved(c) || others.find(c) != std::string_view::npos)
            encoded += c;
        else {
            const auto byte = static_cast<unsigned char>(c);
            encoded += {'%', "0123456789ABCDEF"[byte >> 4], "0123456789ABCDEF"[byte & 15]};
        }
    return encoded;
}

/// The part name as it stands in the store, where it may be encoded already, and the content type.
std::string uriOf(const StoredPart& part) {
    return encodePercent(toUDEString(part.physical->getName()), "%/!$&'()*+,;=:@") +
           "?ContentType=" + encodePercent(*part.contentType, "/+;=!$'()*,:@");
}

std::string composeReference(const StoredPart& part, const std::string& transforms,
                             const DigestMethod& method, const std::vector<unsigned char>& digest) {
    return "<Reference URI=\"" + escapedAttribute(uriOf(part)) + "\">" + transforms +
           composeDigest(method, digest) + "</Reference>";
}

void appendSelection(std::string& transforms, const char* element, const char* attribute,
                     std::string_view value) {
    transforms.append("<mdssi:").append(element).append(" xmlns:mdssi=\"");
    transforms.append(vocabulary::PACKAGE_SIGNATURE).append("\" ").append(attribute).append("=\"");
    transforms.append(escapedAttribute(value)).append("\"/>");
}

std::string composeTransforms(const SigningPlan::Relationships& relationships) {
    std::string transforms = "<Transforms><Transform Algorithm=\"";
    transforms += vocabulary::RELATIONSHIP_TRANSFORM;
    transforms += "\">";
    for (const RelationshipValues* const one : relationships.selected)
        appendSelection(transforms, "RelationshipReference", "SourceId", one->id);
    for (const std::string_view type : relationships.types)
        appendSelection(transforms, "RelationshipsGroupReference", "SourceType", type);
    transforms += "</Transform><Transform Algorithm=\"";
    transforms += CANONICAL_XML;
    return transforms + "\"/></Transforms>";
}

} // namespace

std::string composeManifest(const SigningPlan& plan, PackageContents& contents, const DigestMethod& method) {
    std::string manifest = "<Manifest>";
    for (const SigningPlan::Relationships& one : plan.relationships)
        manifest += composeReference(*one.document, composeTransforms(one), method,
                                     contents.digester().of(canonicalize(one.selected), method));
    try {
        for (const StoredPart* const part : plan.parts)
            manifest += composeReference(*part, {}, method, contents.digest(*part, method));
    } catch (const Refusal& refusal) {
        throw SigningRefused("The part " + refusal.reason().place +
                             " can't be read: " + refusal.reason().text);
    }
    return manifest + "</Manifest>";
}

} // namespace opc::standard_signatures
