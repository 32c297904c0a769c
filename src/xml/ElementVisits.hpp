#pragma once

#include "xml/DocumentHandlerLink.hpp"

#include <functional>
#include <string_view>

namespace opc::model {

/// An element while the scanner reports it. Don't keep it.
class VisitedElement {
public:
    VisitedElement(const xercesc::XMLElementDecl& declaration, const XMLCh* prefix, const XMLCh* namespaceURI,
                   const xercesc::RefVectorOf<xercesc::XMLAttr>& attributes, XMLSize_t attributeCount,
                   bool root, XMLFileLoc lineNumber)
        : declaration(declaration), prefix(prefix), namespaceURI(namespaceURI), attributes(attributes),
          attributeCount(attributeCount), root(root), lineNumber(lineNumber) {}

    bool isRoot() const { return root; }

    /// The line in which its start tag ends.
    XMLFileLoc line() const { return lineNumber; }

    /// Whether it has this tag name, which has no prefix.
    bool isNamed(std::u16string_view tagName) const { return !(prefix && *prefix) && localName() == tagName; }

    /// Whether it has this name in this namespace, with any prefix.
    bool is(std::u16string_view itsNamespace, std::u16string_view name) const {
        return localName() == name && itsNamespace == namespaceURI;
    }

    /// The value of an attribute without a prefix; empty if there is none. Good only during the visit.
    std::u16string_view attribute(std::u16string_view name) const;

private:
    std::u16string_view localName() const;

    const xercesc::XMLElementDecl& declaration;
    const XMLCh* prefix;
    const XMLCh* namespaceURI;
    const xercesc::RefVectorOf<xercesc::XMLAttr>& attributes;
    XMLSize_t attributeCount;
    bool root;
    XMLFileLoc lineNumber;
};

/// Visits the elements of a document in document order while the parser reads it, without building a tree. If the
/// reading fails, ignore the results of the visits.
class ElementVisits final : public DocumentHandlerLink {
public:
    using Visitor = std::function<void(const VisitedElement&)>;

    ElementVisits(xercesc::DOMLSParser* parser, Visitor visitor)
        : DocumentHandlerLink(parser), visitor(std::move(visitor)) {}

    void startElement(const xercesc::XMLElementDecl& declaration, unsigned int uriId, const XMLCh* prefix,
                      const xercesc::RefVectorOf<xercesc::XMLAttr>& attributes, XMLSize_t attributeCount,
                      bool isEmpty, bool isRoot) override;
    void endElement(const xercesc::XMLElementDecl& declaration, unsigned int uriId, bool isRoot,
                    const XMLCh* prefix) override;
    void docCharacters(const XMLCh* text, XMLSize_t length, bool isCData) override;
    void docComment(const XMLCh* comment) override;
    void docPI(const XMLCh* target, const XMLCh* data) override;
    void ignorableWhitespace(const XMLCh* text, XMLSize_t length, bool isCData) override;

private:
    Visitor visitor;
};

} // namespace opc::model
