#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace opc::model {

/// A media type as it is written, before repeated names are joined.
struct ParsedContentType {
    std::u16string_view name;                                          ///< type "/" subtype, in that text
    std::vector<std::pair<std::u16string, std::u16string>> parameters; ///< values without their quotes
};

namespace contenttype {

/// The characters that a token can't have, so that a value with one must be in quotes (RFC 2616 section 2.2).
constexpr char SEPARATORS[] = "()<>@,;:\\\"/[]?={} \t";

/// Parses the whole of `text`: type "/" subtype *( *blank ";" *blank attribute "=" value ), where a value is a token,
/// or one or more printable characters in quotes, without escapes.
/// @return whether it matches; if not, ignore `parsed`
bool parse(std::u16string_view text, ParsedContentType& parsed);

/// Parses nearly every text, without the grammar: those without quotes.
/// @return whether the text has this form; if not, the grammar may still accept it
bool parsePlain(std::u16string_view text, ParsedContentType& parsed);

/// Parses any text, with the grammar.
bool parseByGrammar(std::u16string_view text, ParsedContentType& parsed);

} // namespace contenttype

} // namespace opc::model
