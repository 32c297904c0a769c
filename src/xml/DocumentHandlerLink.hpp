#pragma once

#include <xercesc/framework/XMLDocumentHandler.hpp>

XERCES_CPP_NAMESPACE_BEGIN
class DOMLSParser;
class XMLScanner;
XERCES_CPP_NAMESPACE_END

namespace opc::model {

xercesc::XMLScanner& scannerOf(xercesc::DOMLSParser& parser);

/// Stands between the scanner of a parser and its handler while this object lives, and passes everything on. Links
/// nest: the newest one is called first, and is destroyed first.
class DocumentHandlerLink : public xercesc::XMLDocumentHandler {
public:
    explicit DocumentHandlerLink(xercesc::DOMLSParser* parser);
    DocumentHandlerLink(const DocumentHandlerLink&) = delete;
    DocumentHandlerLink& operator=(const DocumentHandlerLink&) = delete;
    ~DocumentHandlerLink() override;

    void startElement(const xercesc::XMLElementDecl& declaration, unsigned int uriId, const XMLCh* prefix,
                      const xercesc::RefVectorOf<xercesc::XMLAttr>& attributes, XMLSize_t attributeCount,
                      bool isEmpty, bool isRoot) override;
    void endElement(const xercesc::XMLElementDecl& declaration, unsigned int uriId, bool isRoot,
                    const XMLCh* prefix) override;
    void docCharacters(const XMLCh* text, XMLSize_t length, bool isCData) override;
    void docComment(const XMLCh* comment) override;
    void docPI(const XMLCh* target, const XMLCh* data) override;
    void startDocument() override;
    void endDocument() override;
    void resetDocument() override;
    void startEntityReference(const xercesc::XMLEntityDecl& declaration) override;
    void endEntityReference(const xercesc::XMLEntityDecl& declaration) override;
    void ignorableWhitespace(const XMLCh* text, XMLSize_t length, bool isCData) override;
    void XMLDecl(const XMLCh* version, const XMLCh* encoding, const XMLCh* standalone,
                 const XMLCh* actualEncoding) override;

protected:
    xercesc::XMLScanner& scanner() const { return ofParser; }

private:
    xercesc::XMLScanner& ofParser;
    xercesc::XMLDocumentHandler& next;
};

} // namespace opc::model
