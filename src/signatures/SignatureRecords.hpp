#pragma once

#include <opc/model/URI.hpp>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

/// @file
/// What the elements of a signature part hold, as plain records. Texts are as they stand in the document;
/// identifiers are those of `AlgorithmURIMap` where they are known.

namespace opc::model {

/// A `Reference`: one signed part, all signed relationships of one source, or an object of the signature.
struct Reference {
    std::u16string referenceID; ///< empty if there is none
    URI referenceURI;
    std::u16string referenceType;                       ///< empty if there is none
    std::vector<std::u16string> transforms;             ///< identifiers, but for the relationship transform
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

/// What a signature covers, all of it protected by the signature value.
struct SignatureContent {
    std::vector<Reference> signedInfoReferences; ///< those in `SignedInfo`: to objects of the signature
    std::vector<Reference> manifestReferences;   ///< those in the package object: to parts and relationships
    std::vector<SignatureProperty> signatureProperties;
    std::u16string signedInfoXML; ///< the text of `SignedInfo`, which the signature value is made over
};

} // namespace opc::model
