#pragma once

#include "xml/DocumentBudget.hpp"
#include "xml/DocumentHandlerLink.hpp"

namespace opc::model {

/// Counts the elements of a document while the parser builds its tree.
class ElementMeter final : public DocumentHandlerLink {
public:
    /// @param share  must outlive this object
    ElementMeter(xercesc::DOMLSParser* parser, DocumentShare& share)
        : DocumentHandlerLink(parser), counted(share) {}

    void startElement(const xercesc::XMLElementDecl& declaration, unsigned int uriId, const XMLCh* prefix,
                      const xercesc::RefVectorOf<xercesc::XMLAttr>& attributes, XMLSize_t attributeCount,
                      bool isEmpty, bool isRoot) override {
        counted.addElements(1);
        DocumentHandlerLink::startElement(declaration, uriId, prefix, attributes, attributeCount, isEmpty,
                                          isRoot);
    }

private:
    DocumentShare& counted;
};

} // namespace opc::model
