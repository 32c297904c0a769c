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
    PlainTexts texts; ///< attributes that contain references; all others are in the scanned bytes
};

/// Reads a content types stream in the plain form, which nearly all have. The result is what the validating parser
/// would find in the same bytes.
/// @param found  takes the entries of each kind in the order of the document
/// @return whether the stream has that form. If not, ignore `found` and use the parser
bool scanContentTypes(std::string_view document, ScannedContentTypes& found);

/// Whether a text is a media type in a usual form, without parameters. The parser accepts it too.
bool isPlainContentType(std::u16string_view text);

} // namespace opc::model
