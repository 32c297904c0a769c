#pragma once

#include <xercesc/framework/XMLDocumentHandler.hpp>

#include <deque>
#include <map>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

XERCES_CPP_NAMESPACE_BEGIN
class DOMLSParser;
class XMLScanner;
XERCES_CPP_NAMESPACE_END

namespace opc::model {

/// Stops a parse with `InvalidXMLDocument` when the document is built to exhaust its reader: nested too deep,
/// or with too many comments, attributes, different names or colliding IDs. Made anew for each read.
///
/// Xerces takes quadratic time for all of these, in parsing or in writing, and recurses to write. The limits
/// lie far beyond any document of a package. The object stands between the scanner and the parser for as long
/// as it lives: a `DOMLSParserFilter` would see an element only when the time for its attributes has been
/// spent.
class DocumentLimits final : public xercesc::XMLDocumentHandler {
public:
    explicit DocumentLimits(xercesc::DOMLSParser* parser);
    DocumentLimits(const DocumentLimits&) = delete;
    DocumentLimits& operator=(const DocumentLimits&) = delete;
    ~DocumentLimits() override;

    void startElement(const xercesc::XMLElementDecl& declaration, unsigned int uriId, const XMLCh* prefix,
                      const xercesc::RefVectorOf<xercesc::XMLAttr>& attributes, XMLSize_t attributeCount,
                      bool isEmpty, bool isRoot) override;
    void endElement(const xercesc::XMLElementDecl& declaration, unsigned int uriId, bool isRoot,
                    const XMLCh* prefix) override;
    void docComment(const XMLCh* comment) override;

    void docCharacters(const XMLCh* text, XMLSize_t length, bool isCData) override;
    void docPI(const XMLCh* target, const XMLCh* data) override;
    void startDocument() override;
    void endDocument() override;
    void resetDocument() override;
    void startEntityReference(const xercesc::XMLEntityDecl& declaration) override;
    void endEntityReference(const xercesc::XMLEntityDecl& declaration) override;
    void ignorableWhitespace(const XMLCh* text, XMLSize_t length, bool isCData) override;
    void XMLDecl(const XMLCh* version, const XMLCh* encoding, const XMLCh* standalone,
                 const XMLCh* actualEncoding) override;

private:
    void countName(const XMLCh* name);
    void countAttribute(const xercesc::XMLAttr& attribute);

    xercesc::XMLScanner& scanner;
    xercesc::XMLDocumentHandler& next;
    std::vector<XMLSize_t> openElements; ///< how many attributes each has
    XMLSize_t openAttributes = 0;        ///< of all open elements together
    XMLSize_t comments = 0;
    XMLSize_t names = 0;                                ///< of elements, attributes and instructions
    std::unordered_set<std::u16string_view> laterNames; ///< the different ones, once there are many
    std::deque<std::u16string> nameTexts;               ///< what they look into
    std::unordered_set<std::u16string> namespaces;      ///< that are declared
    std::map<XMLSize_t, XMLSize_t> ids;                 ///< how many have each hash value
};

} // namespace opc::model
