#include "xml/DocumentLimits.hpp"

#include <opc/model/Errors.hpp>

#include <xercesc/dom/DOMLSParser.hpp>
#include <xercesc/framework/XMLAttr.hpp>
#include <xercesc/internal/XMLScanner.hpp>
#include <xercesc/parsers/AbstractDOMParser.hpp>
#include <xercesc/util/XMLString.hpp>

namespace opc::model {

namespace {

constexpr std::size_t MAXIMUM_DEPTH = 1000;
constexpr XMLSize_t MAXIMUM_COMMENTS = 10000;
constexpr XMLSize_t MAXIMUM_ATTRIBUTES = 1000;
/// Each of them may declare a prefix, and Xerces looks for a prefix among all that are declared.
constexpr XMLSize_t MAXIMUM_OPEN_ATTRIBUTES = 4000;

/// Xerces keeps names in a table of fixed size. The first ones aren't told apart: small documents pay nothing.
constexpr XMLSize_t MAXIMUM_NAMES = 2000;

/// IDs stand in a hash table, where those of one hash value are searched one after the other.
constexpr XMLSize_t MAXIMUM_COLLIDING_IDS = 1000;
constexpr XMLSize_t HASH_MODULUS = 2147483647;

/// Reaches the scanner of a parser, which Xerces keeps for derived classes.
class ScannerOf : public xercesc::AbstractDOMParser {
public:
    static xercesc::XMLScanner& get(xercesc::DOMLSParser& parser) {
        return *(dynamic_cast<AbstractDOMParser&>(parser).*&ScannerOf::getScanner)();
    }
};

void refuseIf(bool exceeded, const char* message) {
    if (exceeded)
        throw InvalidXMLDocument(message);
}

} // namespace

DocumentLimits::DocumentLimits(xercesc::DOMLSParser* parser)
    : scanner(ScannerOf::get(*parser)), next(*scanner.getDocHandler()) {
    scanner.setDocHandler(this);
}

DocumentLimits::~DocumentLimits() {
    scanner.setDocHandler(&next);
}

void DocumentLimits::startElement(const xercesc::XMLElementDecl& declaration, unsigned int uriId,
                                  const XMLCh* prefix,
                                  const xercesc::RefVectorOf<xercesc::XMLAttr>& attributes,
                                  XMLSize_t attributeCount, bool isEmpty, bool isRoot) {
    refuseIf(openElements.size() >= MAXIMUM_DEPTH, "XML content can not be nested deeper than 1000 elements");
    refuseIf(attributeCount > MAXIMUM_ATTRIBUTES,
             "XML content can not have more than 1000 attributes on an element");
    refuseIf(openAttributes + attributeCount > MAXIMUM_OPEN_ATTRIBUTES,
             "XML content can not have more than 4000 attributes on nested elements");
    countName(declaration.getBaseName());
    for (XMLSize_t i = 0; i < attributeCount; ++i)
        countAttribute(*attributes.elementAt(i));
    if (!isEmpty) { // the end of an empty element isn't told
        openElements.push_back(attributeCount);
        openAttributes += attributeCount;
    }
    next.startElement(declaration, uriId, prefix, attributes, attributeCount, isEmpty, isRoot);
}

void DocumentLimits::endElement(const xercesc::XMLElementDecl& declaration, unsigned int uriId, bool isRoot,
                                const XMLCh* prefix) {
    openAttributes -= openElements.back();
    openElements.pop_back();
    next.endElement(declaration, uriId, isRoot, prefix);
}

void DocumentLimits::countName(const XMLCh* name) {
    if (++names <= MAXIMUM_NAMES)
        return;
    if (laterNames.count(name) != 0)
        return;
    laterNames.insert(nameTexts.emplace_back(name));
    refuseIf(laterNames.size() > MAXIMUM_NAMES, "XML content can not have more than 2000 different names");
}

void DocumentLimits::countAttribute(const xercesc::XMLAttr& attribute) {
    const XMLCh* const name = attribute.getName();
    countName(name);
    if (xercesc::XMLString::equals(attribute.getPrefix(), u"xmlns") ||
        xercesc::XMLString::equals(name, u"xmlns")) {
        namespaces.insert(attribute.getValue());
        refuseIf(namespaces.size() > MAXIMUM_NAMES, "XML content can not have more than 2000 namespaces");
    }
    if (attribute.getType() == xercesc::XMLAttDef::ID)
        refuseIf(++ids[xercesc::XMLString::hash(attribute.getValue(), HASH_MODULUS)] > MAXIMUM_COLLIDING_IDS,
                 "XML content can not have more than 1000 colliding IDs");
}

void DocumentLimits::docComment(const XMLCh* comment) {
    refuseIf(++comments > MAXIMUM_COMMENTS, "XML content can not contain more than 10000 comments");
    next.docComment(comment);
}

void DocumentLimits::docCharacters(const XMLCh* text, XMLSize_t length, bool isCData) {
    next.docCharacters(text, length, isCData);
}

void DocumentLimits::docPI(const XMLCh* target, const XMLCh* data) {
    countName(target);
    next.docPI(target, data);
}

void DocumentLimits::startDocument() {
    next.startDocument();
}

void DocumentLimits::endDocument() {
    next.endDocument();
}

void DocumentLimits::resetDocument() {
    next.resetDocument();
}

void DocumentLimits::startEntityReference(const xercesc::XMLEntityDecl& declaration) {
    next.startEntityReference(declaration);
}

void DocumentLimits::endEntityReference(const xercesc::XMLEntityDecl& declaration) {
    next.endEntityReference(declaration);
}

void DocumentLimits::ignorableWhitespace(const XMLCh* text, XMLSize_t length, bool isCData) {
    next.ignorableWhitespace(text, length, isCData);
}

void DocumentLimits::XMLDecl(const XMLCh* version, const XMLCh* encoding, const XMLCh* standalone,
                             const XMLCh* actualEncoding) {
    next.XMLDecl(version, encoding, standalone, actualEncoding);
}

} // namespace opc::model
