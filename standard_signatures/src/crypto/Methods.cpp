#include "crypto/Methods.hpp"

#include "reason/Refusal.hpp"

#include <algorithm>
#include <stdexcept>
#include <string>

namespace opc::standard_signatures {

namespace {

using bedrock::crypto::DigestAlgorithm;
using bedrock::crypto::SignatureScheme;
using Version = CanonicalForm::Version;

constexpr DigestMethod DIGESTS[] = {
    {"http://www.w3.org/2000/09/xmldsig#sha1", "SHA-1", DigestAlgorithm::SHA1, 20, true},
    {"http://www.w3.org/2001/04/xmlenc#sha256", "SHA-256", DigestAlgorithm::SHA256, 32, false},
    {"http://www.w3.org/2001/04/xmldsig-more#sha384", "SHA-384", DigestAlgorithm::SHA384, 48, false},
    {"http://www.w3.org/2001/04/xmlenc#sha512", "SHA-512", DigestAlgorithm::SHA512, 64, false},
};

constexpr SignatureMethod SIGNATURES[] = {
    {"http://www.w3.org/2000/09/xmldsig#rsa-sha1", "RSA with SHA-1", SignatureScheme::RSAPKCS1,
     DigestAlgorithm::SHA1, true},
    {"http://www.w3.org/2001/04/xmldsig-more#rsa-sha256", "RSA with SHA-256", SignatureScheme::RSAPKCS1,
     DigestAlgorithm::SHA256, false},
    {"http://www.w3.org/2001/04/xmldsig-more#rsa-sha384", "RSA with SHA-384", SignatureScheme::RSAPKCS1,
     DigestAlgorithm::SHA384, false},
    {"http://www.w3.org/2001/04/xmldsig-more#rsa-sha512", "RSA with SHA-512", SignatureScheme::RSAPKCS1,
     DigestAlgorithm::SHA512, false},
    {"http://www.w3.org/2001/04/xmldsig-more#ecdsa-sha1", "ECDSA with SHA-1", SignatureScheme::ECDSA,
     DigestAlgorithm::SHA1, true},
    {"http://www.w3.org/2001/04/xmldsig-more#ecdsa-sha256", "ECDSA with SHA-256", SignatureScheme::ECDSA,
     DigestAlgorithm::SHA256, false},
    {"http://www.w3.org/2001/04/xmldsig-more#ecdsa-sha384", "ECDSA with SHA-384", SignatureScheme::ECDSA,
     DigestAlgorithm::SHA384, false},
    {"http://www.w3.org/2001/04/xmldsig-more#ecdsa-sha512", "ECDSA with SHA-512", SignatureScheme::ECDSA,
     DigestAlgorithm::SHA512, false},
    {"http://www.w3.org/2007/05/xmldsig-more#sha1-rsa-MGF1", "RSA-PSS with SHA-1", SignatureScheme::RSAPSS,
     DigestAlgorithm::SHA1, true},
    {"http://www.w3.org/2007/05/xmldsig-more#sha256-rsa-MGF1", "RSA-PSS with SHA-256",
     SignatureScheme::RSAPSS, DigestAlgorithm::SHA256, false},
    {"http://www.w3.org/2007/05/xmldsig-more#sha384-rsa-MGF1", "RSA-PSS with SHA-384",
     SignatureScheme::RSAPSS, DigestAlgorithm::SHA384, false},
    {"http://www.w3.org/2007/05/xmldsig-more#sha512-rsa-MGF1", "RSA-PSS with SHA-512",
     SignatureScheme::RSAPSS, DigestAlgorithm::SHA512, false},
};

struct NamedForm {
    std::string_view uri;
    Version version;
    bool withComments;
};
constexpr NamedForm FORMS[] = {
    {"http://www.w3.org/TR/2001/REC-xml-c14n-20010315", Version::Inclusive10, false},
    {"http://www.w3.org/TR/2001/REC-xml-c14n-20010315#WithComments", Version::Inclusive10, true},
    {"http://www.w3.org/2006/12/xml-c14n11", Version::Inclusive11, false},
    {"http://www.w3.org/2006/12/xml-c14n11#WithComments", Version::Inclusive11, true},
    {"http://www.w3.org/2001/10/xml-exc-c14n#", Version::Exclusive, false},
    {"http://www.w3.org/2001/10/xml-exc-c14n#WithComments", Version::Exclusive, true},
};

template <typename T, std::size_t Size>
const T* find(const T (&table)[Size], std::string_view uri) {
    const T* const found = std::find_if(table, table + Size, [uri](const T& one) { return one.uri == uri; });
    return found == table + Size ? nullptr : found;
}

template <typename T, std::size_t Size>
const T& require(const T (&table)[Size], std::string_view uri) {
    if (const T* const found = find(table, uri))
        return *found;
    throw Refusal(Reason::Code::AlgorithmNotAccepted, "",
                  "The algorithm \"" + std::string(uri.substr(0, 200)) + "\" isn't accepted");
}

} // namespace

const DigestMethod& findDigestMethod(std::string_view uri) {
    return require(DIGESTS, uri);
}

const SignatureMethod& findSignatureMethod(std::string_view uri) {
    return require(SIGNATURES, uri);
}

const DigestMethod& digestMethodOf(DigestAlgorithm algorithm) {
    for (const DigestMethod& one : DIGESTS)
        if (one.algorithm == algorithm)
            return one;
    throw std::logic_error("no such digest");
}

const SignatureMethod& signatureMethodOf(SignatureScheme scheme, DigestAlgorithm algorithm) {
    for (const SignatureMethod& one : SIGNATURES)
        if (one.scheme == scheme && one.algorithm == algorithm)
            return one;
    throw std::logic_error("no such signature method");
}

bool findCanonicalForm(std::string_view uri, CanonicalForm& form) {
    const NamedForm* const found = find(FORMS, uri);
    if (found != nullptr)
        form = {found->version, found->withComments, {}};
    return found != nullptr;
}

} // namespace opc::standard_signatures
