#include "ContentTypeGrammar.hpp"

#include <boost/fusion/include/adapt_struct.hpp>
#include <boost/fusion/include/std_pair.hpp>
#include <boost/range/iterator_range.hpp>
#include <boost/spirit/include/qi.hpp>

#include <algorithm>
#include <array>

namespace opc::model::contenttype {

namespace {

// Units of UTF-16: a wide character of two bytes couldn't hold every character, and what is cut from it may be a letter.
using Iterator = std::u16string_view::const_iterator;
using Parameter = std::pair<std::u16string, std::u16string>;

/// What the grammar finds in a text.
struct Matched {
    boost::iterator_range<Iterator> name;
    std::vector<Parameter> parameters;
};

} // namespace

} // namespace opc::model::contenttype

BOOST_FUSION_ADAPT_STRUCT(opc::model::contenttype::Matched, name, parameters)

namespace opc::model::contenttype {

namespace {

namespace qi = boost::spirit::qi;
using boost::spirit::standard_wide::char_;
using std::u16string_view;

/// RFC 2616 section 3.7. Without a skipper: blanks are allowed only where the rules name them.
struct Grammar : qi::grammar<Iterator, Matched()> {
    Grammar() : Grammar::base_type(mediaType) {
        whitespace = char_(L' ');
        token = +(char_(L" -~") - char_(SEPARATORS));
        quotedString = L'"' >> +(char_(L" -~") - char_(L'"')) >> L'"';
        value = token | quotedString;
        parameter = *whitespace >> L';' >> *whitespace >> token >> L'=' >> value;
        mediaType = qi::raw[token >> L'/' >> token] >> *parameter;
    }

    qi::rule<Iterator, Matched()> mediaType;
    qi::rule<Iterator, Parameter()> parameter;
    qi::rule<Iterator, std::u16string()> token, quotedString, value;
    qi::rule<Iterator> whitespace;
};

constexpr auto IS_IN_TOKEN = [] {
    std::array<bool, 128> table{};
    for (std::size_t character = '!'; character <= '~'; ++character)
        table[character] =
            std::string_view(SEPARATORS).find(static_cast<char>(character)) == std::string_view::npos;
    return table;
}();

/// Removes a token from the beginning of a text, and returns it.
u16string_view takeToken(u16string_view& text) {
    const auto* const end = std::find_if_not(text.begin(), text.end(), [](char16_t unit) {
        return unit < IS_IN_TOKEN.size() && IS_IN_TOKEN[unit];
    });
    const u16string_view token = text.substr(0, static_cast<std::size_t>(end - text.begin()));
    text.remove_prefix(token.size());
    return token;
}

bool take(char16_t unit, u16string_view& text) {
    if (text.empty() || text.front() != unit)
        return false;
    text.remove_prefix(1);
    return true;
}

void skipBlanks(u16string_view& text) {
    text.remove_prefix(std::min(text.find_first_not_of(u' '), text.size()));
}

} // namespace

bool parse(u16string_view text, ParsedContentType& parsed) {
    return parsePlain(text, parsed) || parseByGrammar(text, parsed);
}

bool parsePlain(u16string_view text, ParsedContentType& parsed) {
    const u16string_view whole = text;
    const bool hasType = !takeToken(text).empty();
    const bool hasSlash = take(u'/', text);
    const bool hasSubType = !takeToken(text).empty();
    parsed.name = whole.substr(0, whole.size() - text.size());
    parsed.parameters.clear();
    if (!hasType || !hasSlash || !hasSubType)
        return false;
    while (!text.empty()) {
        skipBlanks(text);
        if (!take(u';', text))
            return false;
        skipBlanks(text);
        const u16string_view attribute = takeToken(text);
        const bool hasValue = take(u'=', text);
        const u16string_view value = takeToken(text);
        if (attribute.empty() || !hasValue || value.empty())
            return false;
        parsed.parameters.emplace_back(attribute, value);
    }
    return true;
}

bool parseByGrammar(u16string_view text, ParsedContentType& parsed) {
    static const Grammar& grammar = *new Grammar; // never destroyed, so that it works until the program ends
    Matched matched;
    Iterator position = text.begin();
    if (!qi::parse(position, text.end(), grammar, matched) || position != text.end())
        return false;
    parsed = {text.substr(0, matched.name.size()), std::move(matched.parameters)};
    return true;
}

} // namespace opc::model::contenttype
