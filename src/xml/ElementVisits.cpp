#include "xml/ElementVisits.hpp"

#include <xercesc/framework/XMLAttr.hpp>
#include <xercesc/framework/XMLElementDecl.hpp>
#include <xercesc/internal/XMLScanner.hpp>

namespace opc::model {

std::u16string_view VisitedElement::localName() const {
    return declaration.getBaseName();
}

std::u16string_view VisitedElement::attribute(std::u16string_view name) const {
    for (XMLSize_t i = 0; i < attributeCount; ++i) {
        const xercesc::XMLAttr& found = *attributes.elementAt(i);
        if (name == found.getName() && *found.getPrefix() == 0)
            return found.getValue();
    }
    return {};
}

void ElementVisits::startElement(const xercesc::XMLElementDecl& declaration, unsigned int uriId,
                                 const XMLCh* prefix,
                                 const xercesc::RefVectorOf<xercesc::XMLAttr>& attributes,
                                 XMLSize_t attributeCount, bool /*isEmpty*/, bool isRoot) {
    visitor({declaration, prefix, scanner().getURIText(uriId), attributes, attributeCount, isRoot,
             scanner().getLocator()->getLineNumber()});
}

void ElementVisits::endElement(const xercesc::XMLElementDecl& /*declaration*/, unsigned int /*uriId*/,
                               bool /*isRoot*/, const XMLCh* /*prefix*/) {
}

void ElementVisits::docCharacters(const XMLCh* /*text*/, XMLSize_t /*length*/, bool /*isCData*/) {
}

void ElementVisits::docComment(const XMLCh* /*comment*/) {
}

void ElementVisits::docPI(const XMLCh* /*target*/, const XMLCh* /*data*/) {
}

void ElementVisits::ignorableWhitespace(const XMLCh* /*text*/, XMLSize_t /*length*/, bool /*isCData*/) {
}

} // namespace opc::model
