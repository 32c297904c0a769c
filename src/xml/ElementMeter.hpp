#pragma once

#include "xml/DocumentBudget.hpp"
#include "xml/DocumentHandlerLink.hpp"

#include <cstdint>

namespace opc::model {

/// Counts the elements of a document while the parser builds its tree.
class ElementMeter final : public DocumentHandlerLink {
public:
    /// @param share                   must outlive this object
    /// @param ofElement, ofAttribute  how much an element and an attribute count
    ElementMeter(xercesc::DOMLSParser* parser, DocumentShare& share, std::uint64_t ofElement = 1,
                 std::uint64_t ofAttribute = 0)
        : DocumentHandlerLink(parser), share(share), ofElement(ofElement), ofAttribute(ofAttribute) {}

    void startElement(const xercesc::XMLElementDecl& declaration, unsigned int uriId, const XMLCh* prefix,
                      const xercesc::RefVectorOf<xercesc::XMLAttr>& attributes, XMLSize_t attributeCount,
                      bool isEmpty, bool isRoot) override {
        share.addElements(ofElement + ofAttribute * attributeCount);
        DocumentHandlerLink::startElement(declaration, uriId, prefix, attributes, attributeCount, isEmpty,
                                          isRoot);
    }

private:
    DocumentShare& share;
    const std::uint64_t ofElement, ofAttribute;
};

} // namespace opc::model
