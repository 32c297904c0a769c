#pragma once

#include "xml/PlainReferences.hpp"

#include <string_view>
#include <vector>

namespace opc::model {

/// The attributes of one element of a content types stream.
struct ScannedContentType {
    std::string_view element; ///< its name, in the bytes that were scanned
    std::string_view key;     ///< an extension or a part name
    std::string_view contentType;
};

struct ScannedContentTypes {
    std::vector<ScannedContentType> defaults;
    std::vector<ScannedContentType> overrides;
    PlainTexts texts; ///< attributes with references in them: all others lie in the bytes that were scanned
};

/// Reads a content types stream that is written in a plain form, as nearly all are: what it gives is what the
/// validating parser would find in the same bytes.
/// @param found  takes the entries of each kind in the order of the document
/// @return whether the stream is of that form. If not, the parser must read it, and `found` means nothing
bool scanContentTypes(std::string_view document, ScannedContentTypes& found);

/// Whether a text is a media type of a usual form, without parameters: the parser takes it.
bool isPlainContentType(std::u16string_view text);

} // namespace opc::model
