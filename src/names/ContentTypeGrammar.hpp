#pragma once

#include <string>
#include <utility>
#include <vector>

namespace opc::model {

/// A media type as it stands in a text, before names that repeat are joined.
struct ParsedContentType {
    std::wstring type;
    std::wstring subType;
    std::vector<std::pair<std::wstring, std::wstring>> parameters; ///< values without their quotes
};

namespace contenttype {

/// The characters that can't stand in a token, and make a value stand in quotes (RFC 2616 section 2.2).
constexpr char SEPARATORS[] = "()<>@,;:\\\"/[]?={} \t";

/// Parses `text` as a whole: type "/" subtype *( *blank ";" *blank attribute "=" value ), where a value is a
/// token or one or more printable characters in quotes, which know no escapes.
/// @return whether it matches; if not, `parsed` holds nothing of use
bool parse(const std::wstring& text, ParsedContentType& parsed);

} // namespace contenttype

} // namespace opc::model
