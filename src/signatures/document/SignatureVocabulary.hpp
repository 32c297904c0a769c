#pragma once

#include <opc/model/XercesString.hpp>

#include <string>

namespace opc::model {

/// Identifiers and fixed texts of signature parts.
namespace vocabulary {

inline constexpr char16_t XML_SIGNATURE_NAMESPACE[] = u"http://www.w3.org/2000/09/xmldsig#";
inline constexpr char16_t PACKAGE_SIGNATURE_NAMESPACE[] =
    u"http://schemas.openxmlformats.org/package/2006/digital-signature";

/// Both name the same transform; the first is written.
inline constexpr char16_t RELATIONSHIP_TRANSFORM[] =
    u"http://schemas.openxmlformats.org/package/2005/06/RelationshipTransform";
inline constexpr char16_t RELATIONSHIP_TRANSFORM_2006[] =
    u"http://schemas.openxmlformats.org/package/2006/RelationshipTransform";

inline bool isRelationshipTransform(const std::u16string& algorithm) {
    return algorithm == RELATIONSHIP_TRANSFORM || algorithm == RELATIONSHIP_TRANSFORM_2006;
}

/// Types of references.
inline constexpr char16_t OBJECT_TYPE[] = u"http://www.w3.org/2000/09/xmldsig#Object";
inline constexpr char16_t SIGNATURE_PROPERTIES_TYPE[] =
    u"http://www.w3.org/2000/09/xmldsig#SignatureProperties";
inline constexpr char16_t SIGNED_PROPERTIES_TYPE[] = u"http://uri.etsi.org/01903#SignedProperties";

inline constexpr char16_t PACKAGE_OBJECT_ID[] = u"idPackageObject";
inline constexpr char16_t SIGNATURE_TIME_ID[] = u"idSignatureTime";
/// Written whatever the form of the time beside it.
inline constexpr char16_t SIGNATURE_TIME_FORMAT[] = u"YYYY-MM-DDThh:mmTZD";
/// Stands in front of the signature's identifier in the `Id` of the root.
inline constexpr char16_t SIGNATURE_ID_PREFIX[] = u"Signature";
/// Stands between a part name and its content type in the URI of a reference.
inline constexpr char16_t CONTENT_TYPE_QUERY[] = u"?ContentType=";

} // namespace vocabulary

/// The names of elements and attributes as Xerces takes them, built once for many uses.
struct SignatureNames {
    const XercesString signature{u"Signature"};
    const XercesString signedInfo{u"SignedInfo"};
    const XercesString canonicalizationMethod{u"CanonicalizationMethod"};
    const XercesString signatureMethod{u"SignatureMethod"};
    const XercesString signatureValue{u"SignatureValue"};

    const XercesString keyInfo{u"KeyInfo"};
    const XercesString keyValue{u"KeyValue"};
    const XercesString rsaKeyValue{u"RSAKeyValue"};
    const XercesString modulus{u"Modulus"};
    const XercesString exponent{u"Exponent"};
    const XercesString x509Data{u"X509Data"};
    const XercesString x509Certificate{u"X509Certificate"};

    const XercesString object{u"Object"};
    const XercesString manifest{u"Manifest"};
    const XercesString signatureProperties{u"SignatureProperties"};
    const XercesString signatureProperty{u"SignatureProperty"};

    const XercesString reference{u"Reference"};
    const XercesString transforms{u"Transforms"};
    const XercesString transform{u"Transform"};
    const XercesString digestMethod{u"DigestMethod"};
    const XercesString digestValue{u"DigestValue"};

    const XercesString noNamespace{u""}; ///< for look-ups by the name as it is written
    const XercesString id{u"Id"};
    const XercesString xmlns{u"xmlns"};
    const XercesString algorithm{u"Algorithm"};
    const XercesString type{u"Type"};
    const XercesString uri{u"URI"};
    const XercesString target{u"Target"};
};

/// The names in the package signature namespace. They are read under any prefix and written with "pds".
struct PackageSignatureNames {
    /// @param prefix  empty, or with its colon
    explicit PackageSignatureNames(const std::u16string& prefix)
        : signatureTime(prefix + u"SignatureTime"), format(prefix + u"Format"), value(prefix + u"Value"),
          relationshipReference(prefix + u"RelationshipReference"),
          relationshipGroupReference(prefix + u"RelationshipGroupReference") {}

    const XercesString signatureTime;
    const XercesString format;
    const XercesString value;
    const XercesString relationshipReference;
    const XercesString relationshipGroupReference; ///< the published schema has `RelationshipsGroupReference`

    const XercesString sourceId{u"SourceId"};
    const XercesString sourceType{u"SourceType"};
};

} // namespace opc::model
