#pragma once

#include <xercesc/dom/DOMLSParserFilter.hpp>
#include <xercesc/dom/DOMNodeFilter.hpp>

#include <cstddef>

namespace opc::model {

/// Stops a parse when the document is built to exhaust its reader.
///
/// Xerces takes quadratic time for deep nesting, and to write many comments or many attributes, and recurses
/// to write. The limits lie far beyond any document of a package. Made anew for each read.
class DocumentLimits final : public xercesc::DOMLSParserFilter {
public:
    FilterAction startElement(xercesc::DOMElement* element) override;

    /// Is shown comments, and elements at their end.
    FilterAction acceptNode(xercesc::DOMNode* node) override;
    xercesc::DOMNodeFilter::ShowType getWhatToShow() const override;

    /// @throws InvalidXMLDocument  if a limit stopped the parse
    void throwIfExceeded() const;

private:
    FilterAction acceptUnless(bool exceeded, const char* message);

    std::size_t depth = 0;
    std::size_t comments = 0;
    const char* failure = nullptr;
};

} // namespace opc::model
