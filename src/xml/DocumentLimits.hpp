#pragma once

#include "hash/TextHash.hpp"
#include "xml/CollidingIDs.hpp"
#include "xml/DocumentHandlerLink.hpp"

#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

namespace opc::model {

/// Stops a parse with `InvalidXMLDocument` if the document is built to exhaust its reader: nested too deeply, or with
/// too many comments, attributes of open elements, different names or colliding IDs. `AttributeCount` stops it before a tag
/// with too many attributes. Each read makes a new object, so it doesn't
/// depend on earlier documents.
///
/// Xerces takes quadratic time for all of these, in parsing or in writing, and its writer recurses. The limits are
/// far beyond any document of a package. A `DOMLSParserFilter` would be too late: it sees an element after its
/// attributes have taken their time.
class DocumentLimits final : public DocumentHandlerLink {
public:
    /// @param bytesSinceLastToken  reset to 0 when the parser reports something; must outlive this object
    DocumentLimits(xercesc::DOMLSParser* parser, std::uint64_t& bytesSinceLastToken)
        : DocumentHandlerLink(parser), bytesSinceLastToken(bytesSinceLastToken) {}

    void startDocument() override;
    void XMLDecl(const XMLCh* version, const XMLCh* encoding, const XMLCh* standalone,
                 const XMLCh* actualEncoding) override;
    void startElement(const xercesc::XMLElementDecl& declaration, unsigned int uriId, const XMLCh* prefix,
                      const xercesc::RefVectorOf<xercesc::XMLAttr>& attributes, XMLSize_t attributeCount,
                      bool isEmpty, bool isRoot) override;
    void endElement(const xercesc::XMLElementDecl& declaration, unsigned int uriId, bool isRoot,
                    const XMLCh* prefix) override;
    void docComment(const XMLCh* comment) override;
    void docPI(const XMLCh* target, const XMLCh* data) override;
    void docCharacters(const XMLCh* text, XMLSize_t length, bool isCData) override;
    void ignorableWhitespace(const XMLCh* text, XMLSize_t length, bool isCData) override;

private:
    void countName(const XMLCh* name);

    /// @return whether it declares a namespace
    bool countAttribute(const xercesc::XMLAttr& attribute);

    struct OpenElement {
        XMLSize_t attributes, declarations;
    };

    std::uint64_t& bytesSinceLastToken;
    std::vector<OpenElement> openElements;
    XMLSize_t openAttributes = 0;   ///< of all open elements together
    XMLSize_t openDeclarations = 0; ///< of namespaces, likewise
    std::uint64_t prefixSearches = 0;
    std::uint64_t prefixWork = 0; ///< elements and declarations that these look at
    XMLSize_t comments = 0;
    XMLSize_t names = 0; ///< of elements, attributes and instructions
    std::unordered_set<std::u16string_view, TextHash> laterNames; ///< the different ones, once there are many
    std::deque<std::u16string> nameTexts;                         ///< the texts that they point into
    std::unordered_set<std::u16string, TextHash> namespaces;      ///< the declared ones
    CollidingIDs ids;
};

} // namespace opc::model
