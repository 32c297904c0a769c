#pragma once

#include "xml/CollidingIDs.hpp"
#include "xml/DocumentHandlerLink.hpp"

#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

namespace opc::model {

/// Stops a parse with `InvalidXMLDocument` when the document is built to exhaust its reader: nested too deep,
/// or with too many comments, attributes, different names or colliding IDs. Made anew for each read, which then
/// depends on no document that the parser has read before.
///
/// Xerces takes quadratic time for all of these, in parsing or in writing, and recurses to write. The limits
/// lie far beyond any document of a package. A `DOMLSParserFilter` would see an element only when the time for
/// its attributes has been spent.
class DocumentLimits final : public DocumentHandlerLink {
public:
    /// @param bytesSinceLastToken  set back to 0 when the parser tells something; must outlive this object
    DocumentLimits(xercesc::DOMLSParser* parser, std::uint64_t& bytesSinceLastToken)
        : DocumentHandlerLink(parser), bytesSinceLastToken(bytesSinceLastToken) {}

    void startDocument() override;
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
    void countAttribute(const xercesc::XMLAttr& attribute);

    std::uint64_t& bytesSinceLastToken;
    std::vector<XMLSize_t> openElements; ///< how many attributes each has
    XMLSize_t openAttributes = 0;        ///< of all open elements together
    XMLSize_t comments = 0;
    XMLSize_t names = 0;                                ///< of elements, attributes and instructions
    std::unordered_set<std::u16string_view> laterNames; ///< the different ones, once there are many
    std::deque<std::u16string> nameTexts;               ///< what they look into
    std::unordered_set<std::u16string> namespaces;      ///< that are declared
    CollidingIDs ids;
};

} // namespace opc::model
