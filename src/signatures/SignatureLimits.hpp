#pragma once

#include "signatures/SignatureVocabulary.hpp"

#include <array>
#include <cstddef>

XERCES_CPP_NAMESPACE_BEGIN
class DOMElement;
class DOMNode;
XERCES_CPP_NAMESPACE_END

namespace opc::model {

/// Refuses a signature document of which a small one could ask for any amount of time and memory. Lives as
/// long as the names.
///
/// There are elements that are read once for each of them that they lie in, so that their nesting multiplies
/// the work. And Xerces, which writes the objects as text, looks at all siblings of each comment.
class SignatureLimits {
public:
    explicit SignatureLimits(const SignatureNames& names);

    /// @throws InvalidPartContent  if more than 6 such elements lie in one another, where real documents have
    ///                             two or three, an object with a reference and its transform; or if there
    ///                             are more than 2,000 comments, CDATA sections and processing instructions
    void check(const xercesc::DOMElement* root) const;

private:
    bool isLimited(const xercesc::DOMNode* node) const;
    const xercesc::DOMNode* leave(const xercesc::DOMNode* node, const xercesc::DOMElement* root,
                                  int& depth) const;

    std::array<const char16_t*, 4> limitedNames;
};

} // namespace opc::model
