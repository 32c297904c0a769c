#include "signatures/signature/DigitalSignatureData.hpp"

#include <opc/core/Text.hpp>
#include <opc/core/Time.hpp>

#include <iterator>
#include <ostream>

namespace opc::model {

namespace {

void print(std::ostream& stream, const char* label, const std::u16string& text) {
    stream << label << ": " << toUDEString(text) << '\n';
}

void print(std::ostream& stream, const char* label, const std::vector<std::u16string>& texts) {
    for (const std::u16string& text : texts)
        print(stream, label, text);
}

void print(std::ostream& stream, const char* title, const std::vector<Reference>& references) {
    for (const Reference& reference : references) {
        stream << title << '\n';
        print(stream, "  ID", reference.referenceID);
        print(stream, "  URI", reference.referenceURI.toString());
        print(stream, "  Type", reference.referenceType);
        print(stream, "  Transform", reference.transforms);
        print(stream, "  Relationship ID", reference.relationshipReferences);
        print(stream, "  Relationship type", reference.relationshipGroupReferences);
        print(stream, "  Digest method", reference.digestMethod);
        print(stream, "  Digest value", reference.digestValue);
    }
}

void print(std::ostream& stream, const SignatureContent& content) {
    print(stream, "SignedInfo reference", content.signedInfoReferences);
    print(stream, "Manifest reference", content.manifestReferences);
    for (const SignatureProperty& property : content.signatureProperties) {
        stream << "Signature property\n";
        print(stream, "  Target", property.target);
        print(stream, "  ID", property.id);
        print(stream, "  Format", property.format);
        print(stream, "  Value", property.value);
    }
    print(stream, "SignedInfo", content.signedInfoXML);
}

void print(std::ostream& stream, const Relationship& relationship, std::uint64_t times) {
    stream << "Signed relationship, " << times << " times\n";
    print(stream, "  ID", relationship.getID());
    print(stream, "  Type", relationship.getType());
    print(stream, "  Source", relationship.getSourceURI().toString());
    print(stream, "  Target", relationship.getTarget());
}

void print(std::ostream& stream, const SignatureParams& params) {
    constexpr const char* digests[] = {"MD5", "SHA-1", "SHA-224", "SHA-256", "SHA-384", "SHA-512"};
    constexpr const char* keys[] = {"RSA 1024", "RSA 2048", "RSA 4096", "none"};
    const auto digest = static_cast<std::size_t>(params.getDigestMethod());
    const auto key = static_cast<std::size_t>(params.getSignatureMethod());
    stream << "Digest: " << (digest < std::size(digests) ? digests[digest] : "unknown") << '\n';
    stream << "Key: " << (key < std::size(keys) ? keys[key] : "unknown") << '\n';
}

void print(std::ostream& stream, const RSAKeyValue& keyValue) {
    stream << "Key value\n  Size: " << keyValue.keySize << '\n';
    print(stream, "  Modulus", keyValue.modulus);
    print(stream, "  Exponent", keyValue.exponent);
}

void print(std::ostream& stream, const char* label,
           const bedrock::certificates::X509Certificate& certificate) {
    print(stream, label, toString(certificate.getAsString(), false));
}

} // namespace

void DigitalSignatureData::prettyPrint(std::ostream& stream) const {
    stream << "----------- Pretty Print of Digital Signature data --------------------\n";
    print(stream, "ID", m_signatureId);
    print(stream, "Part", m_signaturePartName ? m_signaturePartName->toString() : std::u16string());
    print(stream, "Signed time", convertTimeToString(m_signedTime));
    print(stream, "Namespace", m_namespace);
    print(stream, m_signatureParams);
    print(stream, "Canonicalization method", m_canonicalizationMethod);
    print(stream, "Signature method", m_signatureMethod);
    print(stream, "Signature value", m_signatureValueInXML);
    for (const PartName& name : m_signedPartNames)
        print(stream, "Signed part", name.toString());
    for (const auto& [group, times] : m_signedRelationships->groups())
        for (const Relationship& relationship : group->relationships)
            print(stream, relationship, times);
    print(stream, m_content);
    for (const auto& [id, object] : m_objects) {
        print(stream, "Object", id);
        print(stream, "  XML", object.XMLBytes);
    }
    if (m_keyValue)
        print(stream, *m_keyValue);
    if (m_certificate)
        print(stream, "Certificate", *m_certificate);
    const bedrock::certificates::X509CertificateChain chain = getCertificateChain();
    for (const auto& certificate : chain.getCertificates())
        print(stream, "Certificate of the chain", certificate);
}

} // namespace opc::model
