#pragma once

#include <opc/model/XmlText.hpp>

#include <string_view>

/// The names and fixed texts in signature parts (ECMA-376 Part 2, digital signatures), and the names of the parts.
namespace opc::model::vocabulary::signatures {

inline constexpr XmlText NAMESPACE = "http://www.w3.org/2000/09/xmldsig#";
inline constexpr XmlText PACKAGE_NAMESPACE =
    "http://schemas.openxmlformats.org/package/2006/digital-signature";

namespace element {

inline constexpr XmlText SIGNATURE = "Signature";
inline constexpr XmlText SIGNED_INFO = "SignedInfo";
inline constexpr XmlText CANONICALIZATION_METHOD = "CanonicalizationMethod";
inline constexpr XmlText SIGNATURE_METHOD = "SignatureMethod";
inline constexpr XmlText SIGNATURE_VALUE = "SignatureValue";

inline constexpr XmlText KEY_INFO = "KeyInfo";
inline constexpr XmlText KEY_VALUE = "KeyValue";
inline constexpr XmlText RSA_KEY_VALUE = "RSAKeyValue";
inline constexpr XmlText MODULUS = "Modulus";
inline constexpr XmlText EXPONENT = "Exponent";
inline constexpr XmlText X509_DATA = "X509Data";
inline constexpr XmlText X509_CERTIFICATE = "X509Certificate";
inline constexpr XmlText RETRIEVAL_METHOD = "RetrievalMethod"; ///< not read

inline constexpr XmlText OBJECT = "Object";
inline constexpr XmlText MANIFEST = "Manifest";
inline constexpr XmlText SIGNATURE_PROPERTIES = "SignatureProperties";
inline constexpr XmlText SIGNATURE_PROPERTY = "SignatureProperty";

inline constexpr XmlText REFERENCE = "Reference";
inline constexpr XmlText TRANSFORMS = "Transforms";
inline constexpr XmlText TRANSFORM = "Transform";
inline constexpr XmlText DIGEST_METHOD = "DigestMethod";
inline constexpr XmlText DIGEST_VALUE = "DigestValue";

} // namespace element

/// The elements in the package signature namespace. They are read under any prefix.
namespace package_element {

inline constexpr XmlText PREFIX = "pds"; ///< written by this library
inline constexpr XmlText SIGNATURE_TIME = "SignatureTime";
inline constexpr XmlText FORMAT = "Format";
inline constexpr XmlText VALUE = "Value";
inline constexpr XmlText RELATIONSHIP_REFERENCE = "RelationshipReference";

/// The published schema has `RelationshipsGroupReference`.
inline constexpr XmlText RELATIONSHIP_GROUP_REFERENCE = "RelationshipGroupReference";

} // namespace package_element

namespace attribute {

inline constexpr XmlText XMLNS = "xmlns";
inline constexpr XmlText ID = "Id";
inline constexpr XmlText ALGORITHM = "Algorithm";
inline constexpr XmlText TYPE = "Type";
inline constexpr XmlText URI = "URI";
inline constexpr XmlText TARGET = "Target";
inline constexpr XmlText SOURCE_ID = "SourceId";
inline constexpr XmlText SOURCE_TYPE = "SourceType";

} // namespace attribute

/// Both name the same transform; the first is written.
inline constexpr XmlText RELATIONSHIP_TRANSFORM =
    "http://schemas.openxmlformats.org/package/2005/06/RelationshipTransform";
inline constexpr XmlText RELATIONSHIP_TRANSFORM_2006 =
    "http://schemas.openxmlformats.org/package/2006/RelationshipTransform";

inline bool isRelationshipTransform(std::u16string_view algorithm) {
    return algorithm == RELATIONSHIP_TRANSFORM || algorithm == RELATIONSHIP_TRANSFORM_2006;
}

/// Types of references.
inline constexpr XmlText OBJECT_TYPE = NAMESPACE + "Object";
inline constexpr XmlText SIGNATURE_PROPERTIES_TYPE = NAMESPACE + "SignatureProperties";
inline constexpr XmlText SIGNED_PROPERTIES_TYPE = "http://uri.etsi.org/01903#SignedProperties";

inline constexpr XmlText PACKAGE_OBJECT_ID = "idPackageObject";
inline constexpr XmlText SIGNATURE_TIME_ID = "idSignatureTime";

/// Written for every time, although the times have another form.
inline constexpr XmlText SIGNATURE_TIME_FORMAT = "YYYY-MM-DDThh:mmTZD";

/// Precedes the signature's identifier in the `Id` of the root.
inline constexpr XmlText SIGNATURE_ID_PREFIX = "Signature";

/// Separates a part name from its content type in the URI of a reference.
inline constexpr XmlText CONTENT_TYPE_QUERY = "?ContentType=";

/// The name of a signature is the prefix and the identifier. The name of its part is the folder, the signature's name
/// and the extension.
inline constexpr XmlText PARTS_FOLDER = "/_xmlsignatures/";
inline constexpr XmlText NAME_PREFIX = "sig";
inline constexpr XmlText PART_EXTENSION = ".xml";

} // namespace opc::model::vocabulary::signatures
