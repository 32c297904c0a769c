#include "xml/DocumentHandlerLink.hpp"

#include <xercesc/dom/DOMLSParser.hpp>
#include <xercesc/internal/XMLScanner.hpp>
#include <xercesc/parsers/AbstractDOMParser.hpp>

namespace opc::model {

namespace {

/// Reaches the scanner of a parser, which only derived classes of the parser can reach.
class ScannerOf : public xercesc::AbstractDOMParser {
public:
    static xercesc::XMLScanner& get(xercesc::DOMLSParser& parser) {
        return *(dynamic_cast<AbstractDOMParser&>(parser).*&ScannerOf::getScanner)();
    }
};

} // namespace

xercesc::XMLScanner& scannerOf(xercesc::DOMLSParser& parser) {
    return ScannerOf::get(parser);
}

DocumentHandlerLink::DocumentHandlerLink(xercesc::DOMLSParser* parser)
    : ofParser(scannerOf(*parser)), next(*ofParser.getDocHandler()) {
    ofParser.setDocHandler(this);
}

DocumentHandlerLink::~DocumentHandlerLink() {
    ofParser.setDocHandler(&next);
}

void DocumentHandlerLink::startElement(const xercesc::XMLElementDecl& declaration, unsigned int uriId,
                                       const XMLCh* prefix,
                                       const xercesc::RefVectorOf<xercesc::XMLAttr>& attributes,
                                       XMLSize_t attributeCount, bool isEmpty, bool isRoot) {
    next.startElement(declaration, uriId, prefix, attributes, attributeCount, isEmpty, isRoot);
}

void DocumentHandlerLink::endElement(const xercesc::XMLElementDecl& declaration, unsigned int uriId,
                                     bool isRoot, const XMLCh* prefix) {
    next.endElement(declaration, uriId, isRoot, prefix);
}

void DocumentHandlerLink::docCharacters(const XMLCh* text, XMLSize_t length, bool isCData) {
    next.docCharacters(text, length, isCData);
}

void DocumentHandlerLink::docComment(const XMLCh* comment) {
    next.docComment(comment);
}

void DocumentHandlerLink::docPI(const XMLCh* target, const XMLCh* data) {
    next.docPI(target, data);
}

void DocumentHandlerLink::startDocument() {
    next.startDocument();
}

void DocumentHandlerLink::endDocument() {
    next.endDocument();
}

void DocumentHandlerLink::resetDocument() {
    next.resetDocument();
}

void DocumentHandlerLink::startEntityReference(const xercesc::XMLEntityDecl& declaration) {
    next.startEntityReference(declaration);
}

void DocumentHandlerLink::endEntityReference(const xercesc::XMLEntityDecl& declaration) {
    next.endEntityReference(declaration);
}

void DocumentHandlerLink::ignorableWhitespace(const XMLCh* text, XMLSize_t length, bool isCData) {
    next.ignorableWhitespace(text, length, isCData);
}

void DocumentHandlerLink::XMLDecl(const XMLCh* version, const XMLCh* encoding, const XMLCh* standalone,
                                  const XMLCh* actualEncoding) {
    next.XMLDecl(version, encoding, standalone, actualEncoding);
}

} // namespace opc::model
