#pragma once

#include <opc/model/XercesString.hpp>

#include <xercesc/util/XercesDefs.hpp>

#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

XERCES_CPP_NAMESPACE_BEGIN
class DOMElement;
XERCES_CPP_NAMESPACE_END

namespace opc::model {

class IndexedElement;

/// The elements of a document that is searched often, in document order, with the end of each. It is made in one walk
/// through the document. A search then passes over numbers instead of walking through the tree.
///
/// Must not outlive the document, which must not change.
class ElementIndex {
public:
    explicit ElementIndex(const xercesc::DOMElement* root);
    ElementIndex(const ElementIndex&) = delete;
    ElementIndex& operator=(const ElementIndex&) = delete;

    /// Elements have consecutive positions from 0, the position of the root.
    std::size_t size() const { return entries.size(); }
    IndexedElement at(std::size_t position) const;

    /// The number of comments, CDATA sections and processing instructions in the root.
    std::size_t countAsides() const { return asides; }

private:
    friend class IndexedElement;

    struct Entry {
        const xercesc::DOMElement* element;
        std::u16string_view tagName;
        std::size_t end; ///< after its last descendant
    };

    std::vector<Entry> entries;
    std::size_t asides = 0;
};

/// An element of an index. Its searches find the same as those of `XercesHelper`: all descendants count.
class IndexedElement {
public:
    IndexedElement(const ElementIndex& index, std::size_t position) : index(&index), position(position) {}

    const xercesc::DOMElement* element() const { return entry().element; }
    operator const xercesc::DOMElement*() const { return element(); }

    /// The position after its last descendant.
    std::size_t end() const { return entry().end; }

    bool isNamed(const XercesString& tagName) const { return entry().tagName == tagName.toXMLCh(); }

    std::vector<IndexedElement> getElements(const XercesString& tagName) const;
    std::optional<IndexedElement> getElement(const XercesString& tagName) const;
    std::vector<IndexedElement> getElementsNS(const XercesString& namespaceURI,
                                              const XercesString& localName) const;
    std::optional<IndexedElement> getElementNS(const XercesString& namespaceURI,
                                               const XercesString& localName) const;

private:
    const ElementIndex::Entry& entry() const { return index->entries[position]; }

    const ElementIndex* index;
    std::size_t position;
};

inline IndexedElement ElementIndex::at(std::size_t position) const {
    return {*this, position};
}

} // namespace opc::model
