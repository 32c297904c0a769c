#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace opc::model {

/// A media type as it stands in a text, before names that repeat are joined.
struct ParsedContentType {
    std::u16string_view name;                                          ///< type "/" subtype, in that text
    std::vector<std::pair<std::u16string, std::u16string>> parameters; ///< values without their quotes
};

namespace contenttype {

/// The characters that can't stand in a token, and make a value stand in quotes (RFC 2616 section 2.2).
constexpr char SEPARATORS[] = "()<>@,;:\\\"/[]?={} \t";

/// Parses `text` as a whole: type "/" subtype *( *blank ";" *blank attribute "=" value ), where a value is a
/// token or one or more printable characters in quotes, which know no escapes.
/// @return whether it matches; if not, `parsed` holds nothing of use
bool parse(std::u16string_view text, ParsedContentType& parsed);

/// Does so, without the grammar, for a text in which nothing stands in quotes: so for nearly every one.
/// @return whether it is in this form; if not, it may match all the same
bool parsePlain(std::u16string_view text, ParsedContentType& parsed);

/// Does so by the grammar alone.
bool parseByGrammar(std::u16string_view text, ParsedContentType& parsed);

} // namespace contenttype

} // namespace opc::model
