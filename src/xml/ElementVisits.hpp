#pragma once

#include "xml/DocumentHandlerLink.hpp"
#include "xml/ElementReader.hpp"

namespace opc::model {

/// Visits the elements of a document in document order while the parser reads it, without building a tree. If the
/// reading fails, ignore the results of the visits.
class ElementVisits final : public DocumentHandlerLink {
public:
    /// @param visitor  must outlive this object
    ElementVisits(xercesc::DOMLSParser* parser, const ElementReader::Visitor& visitor)
        : DocumentHandlerLink(parser), visitor(visitor) {}

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
    const ElementReader::Visitor& visitor;
};

} // namespace opc::model
