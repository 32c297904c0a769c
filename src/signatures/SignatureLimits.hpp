#pragma once

#include "signatures/SignatureVocabulary.hpp"

XERCES_CPP_NAMESPACE_BEGIN
class DOMElement;
class DOMNode;
XERCES_CPP_NAMESPACE_END

namespace opc::model {

/// Refuses a signature document of which a small one could ask for any amount of time and memory. Lives as
/// long as the names.
///
/// Objects, and references, transforms and properties in the package object and in `SignedInfo`, are read once
/// for each of them that they lie in, so that their nesting multiplies the work. And Xerces, which writes the
/// objects as text, looks at all siblings of each comment.
class SignatureLimits {
public:
    explicit SignatureLimits(const SignatureNames& names);

    /// @throws InvalidPartContent  if more than 6 such elements lie in one another, where real documents have
    ///                             two or three, an object with a reference and its transform; or if there
    ///                             are more than 2,000 comments, CDATA sections and processing instructions
    void check(const xercesc::DOMElement* root) const;

private:
    /// Where the walk through the document stands.
    struct Place {
        int depth = 0;    ///< how many of the elements in question lie around it
        int contents = 0; ///< how many package objects and `SignedInfo` do
    };

    bool isReadRepeatedly(const xercesc::DOMNode* node, const Place& place) const;
    bool isContent(const xercesc::DOMNode* node) const;
    void enter(const xercesc::DOMNode* node, Place& place) const;
    const xercesc::DOMNode* leave(const xercesc::DOMNode* node, const xercesc::DOMElement* root,
                                  Place& place) const;

    const SignatureNames& names;
};

} // namespace opc::model
