#include "xml/DocumentLimits.hpp"

#include "xml/AttributeCount.hpp"
#include "xml/DocumentUnits.hpp"

#include <opc/model/Errors.hpp>

#include <xercesc/framework/ValidationContext.hpp>
#include <xercesc/framework/XMLAttr.hpp>
#include <xercesc/framework/XMLRefInfo.hpp>
#include <xercesc/internal/XMLScanner.hpp>
#include <xercesc/util/RefHashTableOf.hpp>
#include <xercesc/util/XMLString.hpp>

namespace opc::model {

namespace {

constexpr std::size_t MAXIMUM_DEPTH = 1000;
constexpr XMLSize_t MAXIMUM_COMMENTS = 10000;
/// Each of them may declare a prefix, and Xerces searches all declared prefixes for each prefix.
constexpr XMLSize_t MAXIMUM_OPEN_ATTRIBUTES = 4000;

/// Xerces looks for the namespace of a prefix in all elements and declarations around it. Documents of a package have fewer than a
/// hundred of them around most names.
constexpr std::uint64_t PREFIX_WORK_OF_EACH = 100;
constexpr std::uint64_t PREFIX_WORK_BESIDE = 20'000'000;

/// Xerces keeps names in a table of fixed size. The first ones aren't compared, so that small documents cost nothing.
constexpr XMLSize_t MAXIMUM_NAMES = 2000;

/// Reaches members of a scanner that only derived classes can reach.
class StateOf : public xercesc::XMLScanner {
public:
    static xercesc::ReaderMgr& readers(XMLScanner& scanner) { return scanner.*&StateOf::fReaderMgr; }
    static xercesc::XMLReader::XMLVersion& version(XMLScanner& scanner) {
        return scanner.*&StateOf::fXMLVersion;
    }
};

void refuseIf(bool exceeded, const char* message, const xercesc::XMLScanner& scanner) {
    if (!exceeded)
        return;
    InvalidXMLDocument failure(message);
    failure.addDetails("line " + std::to_string(scanner.getLocator()->getLineNumber()));
    throw failure;
}

} // namespace

/// A document begins by the rules of XML 1.0 and with an empty table of IDs. Xerces would keep the version of the
/// last document, and a table as large as that document needed. Such a table takes time to empty, and has other
/// collisions than `CollidingIDs` computes.
void DocumentLimits::startDocument() {
    StateOf::version(scanner()) = xercesc::XMLReader::XMLV1_0;
    StateOf::readers(scanner()).setXMLVersion(xercesc::XMLReader::XMLV1_0);
    using IDs = xercesc::RefHashTableOf<xercesc::XMLRefInfo>;
    if (scanner().getIDRefList()->getHashModulus() != CollidingIDs::FIRST_SIZE) {
        auto* const memory = scanner().getMemoryManager();
        scanner().getValidationContext()->setIdRefList(new (memory) IDs(CollidingIDs::FIRST_SIZE, memory));
    }
    DocumentHandlerLink::startDocument();
}

void DocumentLimits::XMLDecl(const XMLCh* version, const XMLCh* encoding, const XMLCh* standalone,
                             const XMLCh* actualEncoding) {
    DocumentHandlerLink::XMLDecl(version, encoding, standalone, actualEncoding);
    for (const XMLCh* const one : {encoding, actualEncoding})
        refuseIf(one != nullptr && !AttributeCount::knows(one), OTHER_ENCODING, scanner());
}

void DocumentLimits::startElement(const xercesc::XMLElementDecl& declaration, unsigned int uriId,
                                  const XMLCh* prefix,
                                  const xercesc::RefVectorOf<xercesc::XMLAttr>& attributes,
                                  XMLSize_t attributeCount, bool isEmpty, bool isRoot) {
    bytesSinceLastToken = 0;
    refuseIf(openElements.size() >= MAXIMUM_DEPTH, "XML content can not be nested deeper than 1000 elements",
             scanner());
    refuseIf(openAttributes + attributeCount > MAXIMUM_OPEN_ATTRIBUTES,
             "XML content can not have more than 4000 attributes on nested elements", scanner());
    countName(declaration.getBaseName());
    XMLSize_t declarations = 0;
    std::uint64_t searches = 1;
    for (XMLSize_t i = 0; i < attributeCount; ++i) {
        declarations += countAttribute(*attributes.elementAt(i)) ? 1 : 0;
        const bool hasPrefix = !xercesc::XMLString::equals(attributes.elementAt(i)->getPrefix(), u"");
        searches += hasPrefix ? 1 : 0; // others are in no namespace
    }
    prefixSearches += searches;
    prefixWork += searches * (openElements.size() + openDeclarations + declarations);
    refuseIf(prefixWork > PREFIX_WORK_BESIDE + PREFIX_WORK_OF_EACH * prefixSearches,
             "XML content has too many names below too many elements and namespaces", scanner());
    if (!isEmpty) { // the end of an empty element isn't reported
        openElements.push_back({attributeCount, declarations});
        openAttributes += attributeCount;
        openDeclarations += declarations;
    }
    DocumentHandlerLink::startElement(declaration, uriId, prefix, attributes, attributeCount, isEmpty,
                                      isRoot);
}

void DocumentLimits::endElement(const xercesc::XMLElementDecl& declaration, unsigned int uriId, bool isRoot,
                                const XMLCh* prefix) {
    bytesSinceLastToken = 0;
    openAttributes -= openElements.back().attributes;
    openDeclarations -= openElements.back().declarations;
    openElements.pop_back();
    DocumentHandlerLink::endElement(declaration, uriId, isRoot, prefix);
}

void DocumentLimits::countName(const XMLCh* name) {
    if (++names <= MAXIMUM_NAMES)
        return;
    if (laterNames.count(name) != 0)
        return;
    laterNames.insert(nameTexts.emplace_back(name));
    refuseIf(laterNames.size() > MAXIMUM_NAMES, "XML content can not have more than 2000 different names",
             scanner());
}

bool DocumentLimits::countAttribute(const xercesc::XMLAttr& attribute) {
    const XMLCh* const name = attribute.getName();
    countName(name);
    const bool isDeclaration = xercesc::XMLString::equals(attribute.getPrefix(), u"xmlns") ||
                               xercesc::XMLString::equals(name, u"xmlns");
    if (isDeclaration) {
        namespaces.insert(attribute.getValue());
        refuseIf(namespaces.size() > MAXIMUM_NAMES, "XML content can not have more than 2000 namespaces",
                 scanner());
    }
    if (attribute.getType() == xercesc::XMLAttDef::ID)
        refuseIf(ids.add(std::u16string_view(attribute.getValue())), CollidingIDs::TOO_MANY, scanner());
    return isDeclaration;
}

void DocumentLimits::docComment(const XMLCh* comment) {
    bytesSinceLastToken = 0;
    refuseIf(++comments > MAXIMUM_COMMENTS, "XML content can not contain more than 10000 comments",
             scanner());
    DocumentHandlerLink::docComment(comment);
}

void DocumentLimits::docPI(const XMLCh* target, const XMLCh* data) {
    bytesSinceLastToken = 0;
    countName(target);
    DocumentHandlerLink::docPI(target, data);
}

void DocumentLimits::docCharacters(const XMLCh* text, XMLSize_t length, bool isCData) {
    bytesSinceLastToken = 0;
    DocumentHandlerLink::docCharacters(text, length, isCData);
}

void DocumentLimits::ignorableWhitespace(const XMLCh* text, XMLSize_t length, bool isCData) {
    bytesSinceLastToken = 0;
    DocumentHandlerLink::ignorableWhitespace(text, length, isCData);
}

} // namespace opc::model
