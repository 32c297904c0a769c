#pragma once

#include "signatures/document/SignatureNames.hpp"

namespace opc::model {

class ElementIndex;
class IndexedElement;

/// Refuses signature documents that take far more time and memory than their size suggests. The names must outlive
/// this object.
///
/// An object, and a reference, transform or property in the package object or in `SignedInfo`, is read again for each
/// such element around it, so nesting multiplies the work. Xerces, which writes the objects as text, looks at all
/// siblings of each comment.
class SignatureLimits {
public:
    explicit SignatureLimits(const SignatureNames& names);

    /// @throws InvalidPartContent  more than 6 such elements are nested, where real documents have two or three: an
    ///                             object with a reference and its transform; or there are more than 2,000 comments,
    ///                             CDATA sections and processing instructions
    void check(const ElementIndex& document) const;

private:
    bool isReadRepeatedly(const IndexedElement& element, int contents) const;
    bool isContent(const IndexedElement& element) const;

    const SignatureNames& names;
};

} // namespace opc::model
