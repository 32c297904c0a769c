#pragma once

#include <string_view>

namespace opc::model {

/// What a text is, if it has a usual form. Each kind can do everything that the kinds before it can: all of them pass
/// the test of external targets, which treats backslashes as slashes.
enum class PlainURI {
    No,          ///< no usual form; it may be valid or not
    IRI,         ///< a valid xs:anyURI, and an IRI with characters beyond ASCII
    OtherScheme, ///< also a URI, possibly an opaque one
    Reference,   ///< a relative reference, or a URI of http or https: not opaque
};

/// Recognises the usual forms. None of them is empty.
PlainURI recognisePlainURI(std::string_view text);

/// Whether a text is a valid URI of a usual form that isn't opaque.
inline bool isPlainURI(std::string_view text) {
    return recognisePlainURI(text) == PlainURI::Reference;
}

} // namespace opc::model
