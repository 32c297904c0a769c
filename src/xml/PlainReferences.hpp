#pragma once

#include <forward_list>
#include <string>
#include <string_view>

namespace opc::model {

/// Texts of a document that contain references. A text doesn't move when others are added.
using PlainTexts = std::forward_list<std::string>;

/// Appends a text of a document, and replaces its references: the five entities of XML, and characters by their
/// number, except white space other than blanks.
/// @param text  in UTF-8
/// @return false if a reference isn't plain
bool resolveReferences(std::string_view written, std::string& text);

} // namespace opc::model
