#pragma once

#include "signatures/SignatureVocabulary.hpp"

#include <array>

XERCES_CPP_NAMESPACE_BEGIN
class DOMElement;
class DOMNode;
XERCES_CPP_NAMESPACE_END

namespace opc::model {

/// Refuses a signature document that nests the elements that are read once for each of them that they lie in:
/// a small document could ask for any amount of time and memory that way. Lives as long as the names.
class NestingLimit {
public:
    explicit NestingLimit(const SignatureNames& names);

    /// @throws InvalidPartContent  if more than 6 such elements lie in one another; real documents have two
    ///                             or three, an object with a reference and its transform
    void check(const xercesc::DOMElement* root) const;

private:
    bool isLimited(const xercesc::DOMNode* node) const;
    const xercesc::DOMNode* leave(const xercesc::DOMNode* node, const xercesc::DOMElement* root,
                                  int& depth) const;

    std::array<const char16_t*, 4> limitedNames;
};

} // namespace opc::model
