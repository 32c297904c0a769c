#include "checks/signatures/Signatures.hpp"

#include "subject/Targets.hpp"

#include <set>

namespace opc::inspection {

namespace {

constexpr std::string_view STANDARD_BASE =
    "http://schemas.openxmlformats.org/package/2006/relationships/digital-signature/";
constexpr std::string_view OWN_BASE =
    "http://schemas.openxmlformats.org/package/2006/relationships/digitalsignature/";
constexpr std::string_view ORIGIN_TYPE = "application/vnd.openxmlformats-package.digital-signature-origin";
constexpr std::string_view SIGNATURE_TYPE =
    "application/vnd.openxmlformats-package.digital-signature-xmlsignature+xml";
constexpr std::string_view OWN_SIGNATURE_TYPE =
    "application/vnd.openxmlformats-package.digital-signaturexmlsignature+xml";
constexpr std::string_view CERTIFICATE_TYPE =
    "application/vnd.openxmlformats-package.digital-signature-certificate";

bool leadsTo(SignaturePartKind kind, const RelationshipView& relationship) {
    return targetOfSignatureType(relationship.type) == kind;
}

int valueOf(char digit) {
    return digit >= '0' && digit <= '9'   ? digit - '0'
           : digit >= 'A' && digit <= 'F' ? digit - 'A' + 10
           : digit >= 'a' && digit <= 'f' ? digit - 'a' + 10
                                          : -1;
}

std::string decoded(const std::string& text) {
    std::string plain;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const int high = text[i] == '%' && i + 2 < text.size() ? valueOf(text[i + 1]) : -1;
        const int low = high < 0 ? -1 : valueOf(text[i + 2]);
        plain += low < 0 ? text[i] : static_cast<char>(high * 16 + low);
        i += low < 0 ? 0U : 2U;
    }
    return plain;
}

} // namespace

std::optional<SignaturePartKind> targetOfSignatureType(std::string_view type) {
    type = trimmed(type);
    const std::size_t size = type.rfind('/') + 1;
    const std::string_view base = type.substr(0, size);
    const std::string_view name = type.substr(size);
    if (base != STANDARD_BASE && base != OWN_BASE)
        return std::nullopt;
    if (name == "origin")
        return SignaturePartKind::Origin;
    if (name == "signature")
        return SignaturePartKind::Signature;
    return name == "certificate" ? std::optional(SignaturePartKind::Certificate) : std::nullopt;
}

bool leadsToOrigin(const RelationshipView& relationship) {
    return leadsTo(SignaturePartKind::Origin, relationship);
}

bool leadsToSignature(const RelationshipView& relationship) {
    return leadsTo(SignaturePartKind::Signature, relationship);
}

bool leadsToCertificate(const RelationshipView& relationship) {
    return leadsTo(SignaturePartKind::Certificate, relationship);
}

bool isOriginType(const std::string& mediaType) {
    return mediaType == ORIGIN_TYPE;
}

bool isSignatureType(const std::string& mediaType) {
    return mediaType == SIGNATURE_TYPE || mediaType == OWN_SIGNATURE_TYPE;
}

bool isCertificateType(const std::string& mediaType) {
    return mediaType == CERTIFICATE_TYPE;
}

std::vector<FoundSignature> findSignatures(const Subject& subject) {
    std::vector<FoundSignature> found;
    const RelationshipsView* const package = subject.relationshipsOf("/");
    if (package == nullptr)
        return found;
    std::set<const PartView*> origins;
    std::set<const PartView*> parts;
    for (const RelationshipView& toOrigin : package->entries) {
        if (!leadsToOrigin(toOrigin) || toOrigin.part == nullptr || !origins.insert(toOrigin.part).second)
            continue;
        const RelationshipsView* const origin = subject.relationshipsOf(toOrigin.part->name);
        if (origin == nullptr)
            continue;
        for (const RelationshipView& entry : origin->entries) {
            if (!leadsToSignature(entry) || entry.part == nullptr || !parts.insert(entry.part).second)
                continue;
            const bool isOwn = trimmed(entry.type).substr(0, OWN_BASE.size()) == OWN_BASE;
            found.push_back({isOwn ? SignatureForm::Own : SignatureForm::Standard, entry.part,
                             readSignature(subject, *entry.part)});
        }
    }
    return found;
}

std::string partNameOf(const SignatureReference& reference) {
    return reference.uri.substr(0, reference.uri.find_first_of("?#"));
}

std::optional<std::string> statedContentType(const SignatureReference& reference) {
    static const std::string KEY = "?ContentType=";
    const std::size_t query = reference.uri.find('?');
    if (query == std::string::npos || reference.uri.compare(query, KEY.size(), KEY) != 0)
        return std::nullopt;
    const std::size_t begin = query + KEY.size();
    return decoded(reference.uri.substr(begin, reference.uri.find('#', begin) - begin));
}

} // namespace opc::inspection
