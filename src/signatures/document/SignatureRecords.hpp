#pragma once

#include <bedrock/certificates/X509Certificate.hpp>
#include <bedrock/certificates/X509CertificateChain.hpp>
#include <opc/model/SignatureParams.hpp>
#include <opc/model/URI.hpp>

#include <boost/date_time/posix_time/ptime.hpp>

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

/// @file
/// The content of the elements of a signature part, as plain records. Texts are as in the document; known algorithms
/// have the identifiers of `AlgorithmURIMap`.

namespace opc::model {

class DocumentShare;

/// A `Reference`: one signed part, all signed relationships of one source, or an object of the signature.
struct Reference {
    std::u16string referenceID; ///< empty if there is none
    URI referenceURI;
    std::u16string referenceType;                       ///< empty if there is none
    std::vector<std::u16string> transforms;             ///< identifiers, without the relationship transform
    std::vector<std::u16string> relationshipReferences; ///< IDs of relationships
    std::vector<std::u16string> relationshipGroupReferences; ///< types of relationships
    std::u16string digestMethod;                             ///< an identifier
    std::u16string digestValue;                              ///< Base64

    /// Whether it is digested as relationships, and not as a part.
    bool selectsRelationships() const {
        return !relationshipReferences.empty() || !relationshipGroupReferences.empty();
    }
};

/// Whether a reference leads to something within its document: it has a fragment and nothing else.
inline bool isSameDocumentReference(const URI& uri) {
    return !uri.hasScheme() && !uri.hasAuthority() && !uri.hasAbsolutePath() && !uri.hasQuery();
}

/// A `SignatureProperty`, with the texts of its `SignatureTime`.
struct SignatureProperty {
    std::u16string target;
    std::u16string id; ///< empty if there is none
    std::u16string format;
    std::u16string value;
};

/// An `Object` and its XML as text.
struct SignatureObject {
    std::u16string objectID;
    std::u16string XMLBytes;
};

/// An `RSAKeyValue`: the public key that a signature carries, in Base64.
struct RSAKeyValue {
    std::uint64_t keySize = 0; ///< in bits; known only of a signature that was read
    std::u16string modulus;
    std::u16string exponent;
};

/// What a signature covers. The signature value protects all of it.
struct SignatureContent {
    std::vector<Reference> signedInfoReferences; ///< those in `SignedInfo`: to objects of the signature
    std::vector<Reference> manifestReferences;   ///< those in the package object: to parts and relationships
    std::vector<SignatureProperty> signatureProperties;
    std::u16string signedInfoXML; ///< the text of `SignedInfo`, over which the signature value is made
};

/// Everything that one signature part says. A new one is empty: reading fills it, and writing writes all but
/// `m_share`.
struct SignatureRecord {
    SignatureParams m_signatureParams;      ///< by the signature method and the key
    std::shared_ptr<DocumentShare> m_share; ///< of the limits of the package, if it is read from one
    boost::posix_time::ptime m_signedTime;  ///< UTC; not-a-date-time until known
    std::u16string m_signatureId;           ///< without the prefix that it has in the document
    std::vector<unsigned char> m_signatureValue;
    std::u16string m_namespace;
    std::u16string m_canonicalizationMethod; ///< an identifier; nothing acts on it
    std::u16string m_signatureMethod;        ///< an identifier
    std::u16string m_signatureValueInXML;    ///< Base64
    SignatureContent m_content;
    std::map<std::u16string, SignatureObject> m_objects; ///< by `Id`
    std::optional<RSAKeyValue> m_keyValue;
    std::optional<bedrock::certificates::X509Certificate> m_certificate; ///< the signer's
    std::optional<bedrock::certificates::X509CertificateChain> m_certificateChain;
};

} // namespace opc::model
