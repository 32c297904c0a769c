#pragma once

#include "xml/DocumentBudget.hpp"
#include "xml/DocumentHandlerLink.hpp"

#include <cstdint>

namespace opc::model {

/// Counts the elements of a document while the parser builds its tree.
class ElementMeter final : public DocumentHandlerLink {
public:
    /// @param share               must outlive this object
    /// @param element, attribute  what each of them counts
    ElementMeter(xercesc::DOMLSParser* parser, DocumentShare& share, std::uint64_t element = 1,
                 std::uint64_t attribute = 0)
        : DocumentHandlerLink(parser), counted(share), ofElement(element), ofAttribute(attribute) {}

    void startElement(const xercesc::XMLElementDecl& declaration, unsigned int uriId, const XMLCh* prefix,
                      const xercesc::RefVectorOf<xercesc::XMLAttr>& attributes, XMLSize_t attributeCount,
                      bool isEmpty, bool isRoot) override {
        counted.addElements(ofElement + ofAttribute * attributeCount);
        DocumentHandlerLink::startElement(declaration, uriId, prefix, attributes, attributeCount, isEmpty,
                                          isRoot);
    }

private:
    DocumentShare& counted;
    const std::uint64_t ofElement, ofAttribute;
};

} // namespace opc::model
