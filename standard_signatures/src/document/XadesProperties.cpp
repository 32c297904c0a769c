#include "document/XadesProperties.hpp"

#include "document/ChildElements.hpp"
#include "document/Vocabulary.hpp"
#include "reason/Refusal.hpp"

#include <initializer_list>

namespace opc::standard_signatures {

namespace {

using Code = Reason::Code;

constexpr std::size_t MOST_SIGNER_CERTIFICATES = 20;

/// Calls `visit` for each child of XAdES with this name.
template <typename Visitor>
void forEachChild(const XmlTreeNode& parent, std::string_view name, const Visitor& visit) {
    for (const XmlTreeNode* child = firstChildElement(parent); child != nullptr; child = nextElement(*child))
        if (vocabulary::isOfXades(*child, name))
            visit(*child);
}

/// The signed properties that a signed element is or contains as an object.
const XmlTreeNode* findSignedProperties(const SignatureDocument& document) {
    const XmlTreeNode* found = nullptr;
    const auto take = [&found](const XmlTreeNode& properties) {
        if (found != nullptr && found != &properties)
            throw Refusal(Code::Malformed, "", "The signature signs two sets of properties");
        found = &properties;
    };
    for (const SignedElement& one : document.elements) {
        if (vocabulary::isOfXades(*one.element, "SignedProperties"))
            take(*one.element);
        else
            forEachChild(*one.element, "QualifyingProperties", [&take](const XmlTreeNode& properties) {
                forEachChild(properties, "SignedProperties", take);
            });
    }
    return found;
}

/// In the first versions of XAdES these elements are its own.
bool isOfDigest(const XmlTreeNode& node, std::string_view name) {
    return node.is(vocabulary::SIGNATURE, name) || vocabulary::isOfXades(node, name);
}

void readSignerCertificate(const XmlTreeNode& signingCertificate, SignatureDocument& document) {
    forEachChild(signingCertificate, "Cert", [&document](const XmlTreeNode& certificate) {
        forEachChild(certificate, "CertDigest", [&document](const XmlTreeNode& digest) {
            const XmlTreeNode* const method = firstChildElement(digest);
            const XmlTreeNode* const value = method == nullptr ? nullptr : nextElement(*method);
            if (value == nullptr || !isOfDigest(*method, "DigestMethod") ||
                !isOfDigest(*value, "DigestValue"))
                throw Refusal(Code::Malformed, "", "The signature names a certificate without its digest");
            document.signerCertificates.push_back(readStatedDigest(*method, *value));
            if (document.signerCertificates.size() > MOST_SIGNER_CERTIFICATES)
                throw Refusal(Code::BeyondLimit, "", "The signature names too many certificates");
        });
    });
    if (document.signerCertificates.empty())
        throw Refusal(Code::Malformed, "", "The signature says that it names a certificate, and names none");
}

void readSignedProperties(const XmlTreeNode& properties, SignatureDocument& document) {
    forEachChild(properties, "SignedSignatureProperties", [&document](const XmlTreeNode& ofSignature) {
        forEachChild(ofSignature, "SigningTime",
                     [&document](const XmlTreeNode& time) { document.claimedTime = textOf(time); });
        for (const std::string_view name : {"SigningCertificate", "SigningCertificateV2"})
            forEachChild(ofSignature, name,
                         [&document](const XmlTreeNode& one) { readSignerCertificate(one, document); });
    });
}

void readTimeStamp(const XmlTreeNode& stamp, SignatureDocument& document) {
    StatedTimeStamp read{{}, CanonicalForm()};
    for (const XmlTreeNode* child = firstChildElement(stamp); child != nullptr; child = nextElement(*child))
        if (child->is(vocabulary::SIGNATURE, "CanonicalizationMethod"))
            read.form = readCanonicalForm(*child);
    forEachChild(stamp, "EncapsulatedTimeStamp", [&](const XmlTreeNode& token) {
        read.token = bytesOf(token);
        if (document.timeStamps.size() < SignatureDocument::MOST_TIME_STAMPS)
            document.timeStamps.push_back(read);
    });
}

void readCertificateValues(const XmlTreeNode& values, SignatureDocument& document) {
    forEachChild(values, "EncapsulatedX509Certificate", [&document](const XmlTreeNode& one) {
        if (document.chainCertificates.size() < SignatureDocument::MOST_CHAIN_CERTIFICATES)
            document.chainCertificates.push_back(bytesOf(one));
    });
}

/// Everybody can add, change and remove these: one that can't be read is left out.
void readUnsignedProperties(const XmlTreeNode& qualifyingProperties, SignatureDocument& document) {
    const struct {
        const char* name;
        void (*read)(const XmlTreeNode&, SignatureDocument&);
    } kinds[] = {{"SignatureTimeStamp", readTimeStamp}, {"CertificateValues", readCertificateValues}};
    forEachChild(qualifyingProperties, "UnsignedProperties", [&](const XmlTreeNode& properties) {
        forEachChild(properties, "UnsignedSignatureProperties", [&](const XmlTreeNode& ofSignature) {
            for (const auto& kind : kinds)
                forEachChild(ofSignature, kind.name, [&](const XmlTreeNode& property) {
                    try {
                        kind.read(property, document);
                    } catch (const Refusal&) { // as if it weren't there
                    }
                });
        });
    });
}

} // namespace

void readXadesProperties(SignatureDocument& document) {
    const XmlTreeNode* const properties = findSignedProperties(document);
    if (properties == nullptr)
        return;
    readSignedProperties(*properties, document);
    readUnsignedProperties(*properties->parent, document);
}

} // namespace opc::standard_signatures
