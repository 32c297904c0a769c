#pragma once

#include "signatures/document/SignatureNames.hpp"

namespace opc::model {

class ElementIndex;
class IndexedElement;

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
    void check(const ElementIndex& document) const;

private:
    bool isReadRepeatedly(const IndexedElement& element, int contents) const;
    bool isContent(const IndexedElement& element) const;

    const SignatureNames& names;
};

} // namespace opc::model
