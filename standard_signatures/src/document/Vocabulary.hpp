#pragma once

#include "canonical/XmlTree.hpp"

#include <string_view>

namespace opc::standard_signatures::vocabulary {

constexpr std::string_view SIGNATURE = "http://www.w3.org/2000/09/xmldsig#";
constexpr std::string_view SIGNATURE_11 = "http://www.w3.org/2009/xmldsig11#";
constexpr std::string_view EXCLUSIVE = "http://www.w3.org/2001/10/xml-exc-c14n#";
constexpr std::string_view PACKAGE_SIGNATURE =
    "http://schemas.openxmlformats.org/package/2006/digital-signature";
constexpr std::string_view RELATIONSHIP_TRANSFORM =
    "http://schemas.openxmlformats.org/package/2006/RelationshipTransform";

/// Whether it is an element of XAdES, in any version.
inline bool isOfXades(const XmlTreeNode& node, std::string_view name) {
    constexpr std::string_view BEGIN = "http://uri.etsi.org/01903/v";
    return node.is(node.namespaceURI, name) && node.namespaceURI.substr(0, BEGIN.size()) == BEGIN;
}

} // namespace opc::standard_signatures::vocabulary
