#pragma once

#include "subject/Subject.hpp"

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace opc::inspection {

/// A place in a signature part.
struct SignaturePlace {
    std::uint64_t line = 0, column = 0;
};

struct SignatureTransform {
    std::string algorithm;
    std::vector<std::string> sourceIds, sourceTypes; ///< of a relationship transform

    bool isCanonicalization() const;
    bool isOfRelationships() const;
};

struct SignatureReference {
    std::string uri, type, digestMethod;
    std::string digestValue; ///< Base64
    std::vector<SignatureTransform> transforms;
    SignaturePlace place;
};

/// An `Object` of the signature, or another element that has an `Id`.
struct SignatureObject {
    std::string id;
    SignaturePlace place;
    std::size_t manifests = 0, propertyLists = 0, others = 0; ///< its children
};

/// A `SignatureProperty` in the package object.
struct SignatureProperty {
    std::string id, target;
    std::size_t times = 0;
    std::string timeFormat, timeValue;
    SignaturePlace place;
};

/// What a signature part says, as far as it could be read. XML Signature allows much more than packages do; what isn't
/// looked at isn't kept. Texts are cut off where they are longer than any good one.
struct SignatureDocument {
    DocumentState state; ///< how far it could be read, and what can't stand in it
    bool isSignature = false;
    std::string id; ///< of the root
    std::string canonicalizationMethod, signatureMethod;
    SignaturePlace canonicalizationPlace, methodPlace;
    std::vector<SignatureReference> signedReferences; ///< of `SignedInfo`
    std::vector<SignatureObject> objects;             ///< children of the root
    std::vector<SignatureReference> manifest;         ///< of the manifests of the package objects
    std::vector<SignatureProperty> properties;        ///< of the package objects
    std::map<std::string, std::size_t> ids;           ///< how often each Id stands in the document
    std::vector<std::string> certificates;            ///< Base64
    std::string certificateDigest; ///< Base64: of the signer's certificate, in the signed properties (XAdES)
    std::string certificateDigestMethod;
    std::string modulus, exponent;               ///< Base64, of the key value
    bool packageObjectUsesCompatibility = false; ///< has names of markup compatibility
    SignaturePlace compatibilityPlace;

    std::vector<const SignatureObject*> packageObjects() const;
};

extern const std::string PACKAGE_OBJECT; ///< its Id

SignatureDocument readSignature(const Subject& subject, const PartView& part);

/// @param content  of the part, ready to read
SignatureDocument readSignature(InputStream& content);

} // namespace opc::inspection
