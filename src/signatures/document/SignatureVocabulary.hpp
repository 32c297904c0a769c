#pragma once

#include "xml/AsciiLiteral.hpp"

#include <string_view>

/// The names and fixed texts in signature parts (ECMA-376 Part 2, digital signatures), and the names of the parts.
namespace opc::model::vocabulary::signatures {

inline constexpr AsciiLiteral NAMESPACE = "http://www.w3.org/2000/09/xmldsig#";
inline constexpr AsciiLiteral PACKAGE_NAMESPACE =
    "http://schemas.openxmlformats.org/package/2006/digital-signature";

namespace element {

inline constexpr AsciiLiteral SIGNATURE = "Signature";
inline constexpr AsciiLiteral SIGNED_INFO = "SignedInfo";
inline constexpr AsciiLiteral CANONICALIZATION_METHOD = "CanonicalizationMethod";
inline constexpr AsciiLiteral SIGNATURE_METHOD = "SignatureMethod";
inline constexpr AsciiLiteral SIGNATURE_VALUE = "SignatureValue";

inline constexpr AsciiLiteral KEY_INFO = "KeyInfo";
inline constexpr AsciiLiteral KEY_VALUE = "KeyValue";
inline constexpr AsciiLiteral RSA_KEY_VALUE = "RSAKeyValue";
inline constexpr AsciiLiteral MODULUS = "Modulus";
inline constexpr AsciiLiteral EXPONENT = "Exponent";
inline constexpr AsciiLiteral X509_DATA = "X509Data";
inline constexpr AsciiLiteral X509_CERTIFICATE = "X509Certificate";
inline constexpr AsciiLiteral RETRIEVAL_METHOD = "RetrievalMethod"; ///< isn't read

inline constexpr AsciiLiteral OBJECT = "Object";
inline constexpr AsciiLiteral MANIFEST = "Manifest";
inline constexpr AsciiLiteral SIGNATURE_PROPERTIES = "SignatureProperties";
inline constexpr AsciiLiteral SIGNATURE_PROPERTY = "SignatureProperty";

inline constexpr AsciiLiteral REFERENCE = "Reference";
inline constexpr AsciiLiteral TRANSFORMS = "Transforms";
inline constexpr AsciiLiteral TRANSFORM = "Transform";
inline constexpr AsciiLiteral DIGEST_METHOD = "DigestMethod";
inline constexpr AsciiLiteral DIGEST_VALUE = "DigestValue";

} // namespace element

/// The elements in the package signature namespace. They are read under any prefix.
namespace package_element {

inline constexpr AsciiLiteral PREFIX = "pds"; ///< that is written
inline constexpr AsciiLiteral SIGNATURE_TIME = "SignatureTime";
inline constexpr AsciiLiteral FORMAT = "Format";
inline constexpr AsciiLiteral VALUE = "Value";
inline constexpr AsciiLiteral RELATIONSHIP_REFERENCE = "RelationshipReference";

/// The published schema has `RelationshipsGroupReference`.
inline constexpr AsciiLiteral RELATIONSHIP_GROUP_REFERENCE = "RelationshipGroupReference";

} // namespace package_element

namespace attribute {

inline constexpr AsciiLiteral XMLNS = "xmlns";
inline constexpr AsciiLiteral ID = "Id";
inline constexpr AsciiLiteral ALGORITHM = "Algorithm";
inline constexpr AsciiLiteral TYPE = "Type";
inline constexpr AsciiLiteral URI = "URI";
inline constexpr AsciiLiteral TARGET = "Target";
inline constexpr AsciiLiteral SOURCE_ID = "SourceId";
inline constexpr AsciiLiteral SOURCE_TYPE = "SourceType";

} // namespace attribute

/// Both name the same transform; the first is written.
inline constexpr AsciiLiteral RELATIONSHIP_TRANSFORM =
    "http://schemas.openxmlformats.org/package/2005/06/RelationshipTransform";
inline constexpr AsciiLiteral RELATIONSHIP_TRANSFORM_2006 =
    "http://schemas.openxmlformats.org/package/2006/RelationshipTransform";

inline bool isRelationshipTransform(std::u16string_view algorithm) {
    return algorithm == RELATIONSHIP_TRANSFORM || algorithm == RELATIONSHIP_TRANSFORM_2006;
}

/// Types of references.
inline constexpr AsciiLiteral OBJECT_TYPE = NAMESPACE + "Object";
inline constexpr AsciiLiteral SIGNATURE_PROPERTIES_TYPE = NAMESPACE + "SignatureProperties";
inline constexpr AsciiLiteral SIGNED_PROPERTIES_TYPE = "http://uri.etsi.org/01903#SignedProperties";

inline constexpr AsciiLiteral PACKAGE_OBJECT_ID = "idPackageObject";
inline constexpr AsciiLiteral SIGNATURE_TIME_ID = "idSignatureTime";

/// Is written for every time, although the times have another form.
inline constexpr AsciiLiteral SIGNATURE_TIME_FORMAT = "YYYY-MM-DDThh:mmTZD";

/// Precedes the signature's identifier in the `Id` of the root.
inline constexpr AsciiLiteral SIGNATURE_ID_PREFIX = "Signature";

/// Stands between a part name and its content type in the URI of a reference.
inline constexpr AsciiLiteral CONTENT_TYPE_QUERY = "?ContentType=";

/// The name of a signature is the prefix and the identifier; the name of its part is the folder, the signature's name and
/// the extension.
inline constexpr AsciiLiteral PARTS_FOLDER = "/_xmlsignatures/";
inline constexpr AsciiLiteral NAME_PREFIX = "sig";
inline constexpr AsciiLiteral PART_EXTENSION = ".xml";

} // namespace opc::model::vocabulary::signatures
