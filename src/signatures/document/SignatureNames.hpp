#pragma once

#include "signatures/document/SignatureVocabulary.hpp"

#include <opc/model/XercesString.hpp>

#include <string>

namespace opc::model::vocabulary::signatures {

/// The names of elements and attributes in the form that Xerces takes, made once for many uses.
struct SignatureNames {
    const XercesString signature{element::SIGNATURE.text()};
    const XercesString signedInfo{element::SIGNED_INFO.text()};
    const XercesString canonicalizationMethod{element::CANONICALIZATION_METHOD.text()};
    const XercesString signatureMethod{element::SIGNATURE_METHOD.text()};
    const XercesString signatureValue{element::SIGNATURE_VALUE.text()};

    const XercesString keyInfo{element::KEY_INFO.text()};
    const XercesString keyValue{element::KEY_VALUE.text()};
    const XercesString rsaKeyValue{element::RSA_KEY_VALUE.text()};
    const XercesString modulus{element::MODULUS.text()};
    const XercesString exponent{element::EXPONENT.text()};
    const XercesString x509Data{element::X509_DATA.text()};
    const XercesString x509Certificate{element::X509_CERTIFICATE.text()};

    const XercesString object{element::OBJECT.text()};
    const XercesString manifest{element::MANIFEST.text()};
    const XercesString signatureProperties{element::SIGNATURE_PROPERTIES.text()};
    const XercesString signatureProperty{element::SIGNATURE_PROPERTY.text()};

    const XercesString reference{element::REFERENCE.text()};
    const XercesString transforms{element::TRANSFORMS.text()};
    const XercesString transform{element::TRANSFORM.text()};
    const XercesString digestMethod{element::DIGEST_METHOD.text()};
    const XercesString digestValue{element::DIGEST_VALUE.text()};

    const XercesString noNamespace{u""}; ///< searches by the whole written name
    const XercesString xmlns{attribute::XMLNS.text()};
    const XercesString id{attribute::ID.text()};
    const XercesString algorithm{attribute::ALGORITHM.text()};
    const XercesString type{attribute::TYPE.text()};
    const XercesString uri{attribute::URI.text()};
    const XercesString target{attribute::TARGET.text()};
};

/// The names in the package signature namespace.
struct PackageSignatureNames {
    /// @param prefix  of the elements; empty, or including its colon
    explicit PackageSignatureNames(const std::u16string& prefix)
        : signatureTime(prefix + package_element::SIGNATURE_TIME.text()),
          format(prefix + package_element::FORMAT.text()), value(prefix + package_element::VALUE.text()),
          relationshipReference(prefix + package_element::RELATIONSHIP_REFERENCE.text()),
          relationshipGroupReference(prefix + package_element::RELATIONSHIP_GROUP_REFERENCE.text()) {}

    const XercesString signatureTime;
    const XercesString format;
    const XercesString value;
    const XercesString relationshipReference;
    const XercesString relationshipGroupReference;

    const XercesString sourceId{attribute::SOURCE_ID.text()};
    const XercesString sourceType{attribute::SOURCE_TYPE.text()};
};

} // namespace opc::model::vocabulary::signatures

namespace opc::model {

using vocabulary::signatures::PackageSignatureNames;
using vocabulary::signatures::SignatureNames;

} // namespace opc::model
