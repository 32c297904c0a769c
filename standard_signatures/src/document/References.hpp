#pragma once

#include "canonical/CanonicalXml.hpp"
#include "crypto/Methods.hpp"
#include "transform/RelationshipTransform.hpp"

#include <optional>
#include <string>
#include <vector>

namespace opc::standard_signatures {

/// What is digested, and the digest that it must have.
struct StatedDigest {
    const DigestMethod* method;
    std::vector<unsigned char> value;
};

/// A reference of SignedInfo to an element of its own document.
struct ElementReference {
    std::string uri; ///< "#" and the Id
    CanonicalForm form;
    StatedDigest digest;
};

/// A reference of the manifest to a part.
struct PartReference {
    std::string uri;                              ///< as it stands
    std::string partName;                         ///< without query, and without percent-encoding
    std::optional<std::string> contentType;       ///< as the query states it
    std::optional<RelationshipSelection> selects; ///< relationships
    std::optional<CanonicalForm> form;            ///< of a whole relationships part; else its octets count
    StatedDigest digest;
};

/// @throws Refusal  with `AlgorithmNotAccepted`, `BadReference` or `Malformed`
/// @{
ElementReference readElementReference(const XmlTreeNode& reference);
PartReference readPartReference(const XmlTreeNode& reference);

/// What a `CanonicalizationMethod` or a `Transform` names.
CanonicalForm readCanonicalForm(const XmlTreeNode& method);

StatedDigest readStatedDigest(const XmlTreeNode& method, const XmlTreeNode& value);
/// @}

} // namespace opc::standard_signatures
