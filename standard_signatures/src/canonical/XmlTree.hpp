#pragma once

#include <opc/core/InputStream.hpp>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace opc::standard_signatures {

/// All texts are UTF-8, so that the order of their bytes is the order of their characters.
struct XmlTreeAttribute {
    std::string_view namespaceURI, prefix, name, value;
};

struct XmlTreeDeclaration {
    std::string_view prefix, namespaceURI;
};

/// An array in the memory of a tree.
template <typename T>
struct XmlTreeList {
    const T* first = nullptr;
    std::size_t count = 0;

    const T* begin() const { return first; }
    const T* end() const { return first + count; }
};

/// A node of a document. Attributes and declarations of namespaces are no nodes here.
struct XmlTreeNode {
    enum class Kind : std::uint8_t { Element, Text, Comment, Instruction };

    Kind kind = Kind::Element;
    const XmlTreeNode* parent = nullptr; ///< null for the root element
    const XmlTreeNode* firstChild = nullptr;
    const XmlTreeNode* next = nullptr; ///< the next child of the parent

    std::string_view name{}; ///< local, of an element; the target of an instruction
    std::string_view namespaceURI, prefix;
    std::string_view text; ///< of a text or comment; the data of an instruction

    XmlTreeList<XmlTreeAttribute> attributes;
    XmlTreeList<XmlTreeDeclaration> declarations;

    bool is(std::string_view itsNamespace, std::string_view itsName) const {
        return kind == Kind::Element && name == itsName && namespaceURI == itsNamespace;
    }
};

/// The bounds of a document. One beyond them is refused while it is read.
struct XmlTreeLimits {
    std::uint64_t bytes = 32U << 20;
    std::uint64_t nodes = 1000000; ///< elements, texts, attributes, declarations …
    std::size_t depth = 100;
};

/// A document as a tree that never changes. It is read by the model's reader of XML, which also reads relationships, so
/// that there is one understanding of XML.
class XmlTree {
public:
    /// @param stream  open, at its first byte
    /// @throws model::InvalidXMLDocument  the document isn't well-formed, has a document type or another version of XML
    ///                                    than 1.0, or is beyond a limit
    /// @throws the exceptions of the stream
    static XmlTree read(InputStream& stream, const XmlTreeLimits& limits = {});

    XmlTree(XmlTree&&) noexcept;
    XmlTree& operator=(XmlTree&&) noexcept;
    ~XmlTree();

    const XmlTreeNode& root() const { return *rootElement; }

private:
    class Memory;
    class Builder;

    XmlTree();

    std::unique_ptr<Memory> memory;
    const XmlTreeNode* rootElement = nullptr;
};

/// The value of an attribute without a prefix; a view of null if the element doesn't have it.
std::string_view attributeOf(const XmlTreeNode& element, std::string_view name);

/// The first child element from `node` on, `node` included; null if there is none.
const XmlTreeNode* firstElementFrom(const XmlTreeNode* node);
inline const XmlTreeNode* firstChildElement(const XmlTreeNode& element) {
    return firstElementFrom(element.firstChild);
}
inline const XmlTreeNode* nextElement(const XmlTreeNode& element) {
    return firstElementFrom(element.next);
}

/// The text of an element that has no elements in it.
std::string textOf(const XmlTreeNode& element);

/// The next node in document order within a subtree; null behind its last one.
const XmlTreeNode* nextInSubtree(const XmlTreeNode& node, const XmlTreeNode& apex);

/// The same behind all that is in the node.
const XmlTreeNode* nextBehind(const XmlTreeNode& node, const XmlTreeNode& apex);

} // namespace opc::standard_signatures
