#pragma once

#include "xml/PlainReferences.hpp"

#include <string_view>
#include <vector>

namespace opc::model {

/// The attributes of one `Relationship` element, in UTF-8.
struct ScannedRelationship {
    std::string_view id;
    std::string_view type;
    std::string_view target;
    bool hasASCIITarget = false; ///< all other values are in ASCII
    std::string_view targetMode; ///< empty if there is none
};

/// Reads a relationships part in the plain form, which nearly all have. The result is what the validating parser
/// would find in the same bytes.
/// @param found  receives the relationships in the order of the document
/// @param texts  receives the attributes that contain references; all others are in `document`
/// @return whether the part has that form. If not, ignore `found` and use the parser
bool scanRelationships(std::string_view document, std::vector<ScannedRelationship>& found, PlainTexts& texts);

} // namespace opc::model
