#include "xml/ElementVisits.hpp"

#include <xercesc/framework/XMLAttr.hpp>
#include <xercesc/framework/XMLElementDecl.hpp>
#include <xercesc/internal/XMLScanner.hpp>

namespace opc::model {

namespace {

/// An element as the scanner tells of it.
class FoundElement final : public VisitedElement {
public:
    FoundElement(const xercesc::XMLElementDecl& declaration, const XMLCh* prefix, const XMLCh* namespaceURI,
                 const xercesc::RefVectorOf<xercesc::XMLAttr>& attributes, XMLSize_t attributeCount,
                 bool root, XMLFileLoc lineNumber)
        : declaration(declaration), prefix(prefix), namespaceURI(namespaceURI), attributes(attributes),
          attributeCount(attributeCount), root(root), lineNumber(lineNumber) {}

    bool isRoot() const override { return root; }
    std::uint64_t line() const override { return lineNumber; }
    bool isNamed(std::u16string_view tagName) const override {
        return !(prefix && *prefix) && localName() == tagName;
    }
    bool is(std::u16string_view itsNamespace, std::u16string_view name) const override {
        return localName() == name && itsNamespace == namespaceURI;
    }
    std::u16string_view attribute(std::u16string_view name) const override {
        for (XMLSize_t i = 0; i < attributeCount; ++i) {
            const xercesc::XMLAttr& found = *attributes.elementAt(i);
            if (name == found.getName() && *found.getPrefix() == 0)
                return found.getValue();
        }
        return {};
    }

private:
    std::u16string_view localName() const { return declaration.getBaseName(); }

    const xercesc::XMLElementDecl& declaration;
    const XMLCh* prefix;
    const XMLCh* namespaceURI;
    const xercesc::RefVectorOf<xercesc::XMLAttr>& attributes;
    XMLSize_t attributeCount;
    bool root;
    XMLFileLoc lineNumber;
};

} // namespace

void ElementVisits::startElement(const xercesc::XMLElementDecl& declaration, unsigned int uriId,
                                 const XMLCh* prefix,
                                 const xercesc::RefVectorOf<xercesc::XMLAttr>& attributes,
                                 XMLSize_t attributeCount, bool /*isEmpty*/, bool isRoot) {
    visitor(FoundElement(declaration, prefix, scanner().getURIText(uriId), attributes, attributeCount, isRoot,
                         scanner().getLocator()->getLineNumber()));
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
