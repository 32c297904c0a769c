#pragma once

#include "canonical/XmlTree.hpp"

#include <string_view>
#include <vector>

namespace opc::standard_signatures {

/// The child elements of an element that must come in a fixed order, in the namespace of XML Signature.
class ChildElements {
public:
    explicit ChildElements(const XmlTreeNode& parent) : parent(parent), at(firstChildElement(parent)) {}

    /// The next child, if it has this name; else null.
    const XmlTreeNode* take(std::string_view name);

    /// @throws Refusal  with `Malformed`: the next child has another name
    const XmlTreeNode& require(std::string_view name);

    /// @throws Refusal  with `Malformed`: there is another child
    void requireEnd() const;

private:
    const XmlTreeNode& parent;
    const XmlTreeNode* at;
};

/// The octets that an element has as Base64.
/// @throws Refusal  with `Malformed`
std::vector<unsigned char> bytesOf(const XmlTreeNode& element);

/// An attribute that must be there.
/// @throws Refusal  with `Malformed`
std::string_view requireAttribute(const XmlTreeNode& element, std::string_view name);

} // namespace opc::standard_signatures
