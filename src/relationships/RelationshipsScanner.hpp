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
    bool hasASCIITarget = false; ///< all else is in ASCII anyway
    std::string_view targetMode; ///< empty if there is none
};

/// Reads a relationships part that is written in a plain form, as nearly all are: what it gives is what the
/// validating parser would find in the same bytes.
/// @param found  takes the relationships in the order of the document
/// @param texts  takes the attributes that have references in them; all others lie in `document`
/// @return whether the part is of that form. If not, the parser must read it, and `found` means nothing
bool scanRelationships(std::string_view document, std::vector<ScannedRelationship>& found, PlainTexts& texts);

} // namespace opc::model
