#pragma once

#include <forward_list>
#include <string>
#include <string_view>

namespace opc::model {

/// Texts that a document has with references in them. Each stays where it is when others are added.
using PlainTexts = std::forward_list<std::string>;

/// Appends a text of a document, with what its references stand for in their place: the five entities of XML, and
/// characters by their number, but no white space other than blanks.
/// @param text  in UTF-8
/// @return false if a reference isn't plain
bool resolveReferences(std::string_view written, std::string& text);

} // namespace opc::model
