#pragma once

#include "canonical/XmlTree.hpp"
#include "document/SignatureElements.hpp"

#include <string_view>

namespace opc::standard_signatures::vocabulary {

constexpr std::string_view SIGNATURE = "http://www.w3.org/2000/09/xmldsig#";
constexpr std::string_view SIGNATURE_11 = "http://www.w3.org/2009/xmldsig11#";
constexpr std::string_view EXCLUSIVE = "http://www.w3.org/2001/10/xml-exc-c14n#";
constexpr std::string_view PACKAGE_SIGNATURE =
    "http://schemas.openxmlformats.org/package/2006/digital-signature";
constexpr std::string_view RELATIONSHIP_TRANSFORM =
    "http://schemas.openxmlformats.org/package/2006/RelationshipTransform";

constexpr std::string_view SIGNATURE_MORE = "http://www.w3.org/2001/04/xmldsig-more#";
constexpr std::string_view SIGNATURE_MORE_07 = "http://www.w3.org/2007/05/xmldsig-more#";
constexpr std::string_view ENCRYPTION = "http://www.w3.org/2001/04/xmlenc#";  ///< for names of keys
constexpr std::string_view BEGIN_OF_XADES = "http://uri.etsi.org/01903/v";    ///< a version follows
constexpr std::string_view BEGIN_OF_XADES_EN = "http://uri.etsi.org/19132/v"; ///< as European standard

/// Whether it is an element of XAdES, in any version.
inline bool isOfXades(const XmlTreeNode& node, std::string_view name) {
    return node.is(node.namespaceURI, name) &&
           node.namespaceURI.substr(0, BEGIN_OF_XADES.size()) == BEGIN_OF_XADES;
}

/// Whether it is an element of the vocabularies of signatures.
inline bool isOfSignatures(const XmlTreeNode& element) {
    const std::string_view one = element.namespaceURI;
    const bool isKnown = one == SIGNATURE || one == SIGNATURE_11 || one == SIGNATURE_MORE ||
                         one == SIGNATURE_MORE_07 || one == ENCRYPTION || one == EXCLUSIVE ||
                         one == PACKAGE_SIGNATURE || one.substr(0, BEGIN_OF_XADES.size()) == BEGIN_OF_XADES ||
                         one.substr(0, BEGIN_OF_XADES_EN.size()) == BEGIN_OF_XADES_EN;
    return isKnown && isAmong(element.name, ELEMENTS_OF_SIGNATURES);
}

} // namespace opc::standard_signatures::vocabulary
