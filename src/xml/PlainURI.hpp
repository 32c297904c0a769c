#pragma once

#include <string_view>

namespace opc::model {

/// What a text is, if it has a usual form. Each kind is good for all that the ones before it are good for: the test
/// of external targets, which takes backslashes for slashes, lets all of them pass.
enum class PlainURI {
    No,          ///< of no usual form: it may be valid, or not
    IRI,         ///< a valid xs:anyURI, and an IRI with characters beyond ASCII
    OtherScheme, ///< a URI as well. It may be opaque
    Reference,   ///< a relative reference, or a URI of http or https: not opaque
};

/// Recognises the usual forms, none of them empty.
PlainURI recognisePlainURI(std::string_view text);

/// Whether a text is a valid URI of a usual form that isn't opaque.
inline bool isPlainURI(std::string_view text) {
    return recognisePlainURI(text) == PlainURI::Reference;
}

} // namespace opc::model
