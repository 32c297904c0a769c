#include "ContentTypeGrammar.hpp"

#include <opc/core/Text.hpp>

#include <boost/fusion/include/adapt_struct.hpp>
#include <boost/fusion/include/std_pair.hpp>
#include <boost/spirit/include/qi.hpp>

#include <algorithm>
#include <array>

namespace opc::model::contenttype {

namespace {

/// What the grammar makes of a text.
struct Matched {
    std::wstring type;
    std::wstring subType;
    std::vector<std::pair<std::wstring, std::wstring>> parameters;
};

} // namespace

} // namespace opc::model::contenttype

BOOST_FUSION_ADAPT_STRUCT(opc::model::contenttype::Matched, type, subType, parameters)

namespace opc::model::contenttype {

namespace {

namespace qi = boost::spirit::qi;
using boost::spirit::standard_wide::char_;
using std::u16string_view;

using Iterator = std::wstring::const_iterator;
using Parameter = std::pair<std::wstring, std::wstring>;

/// RFC 2616 section 3.7, without skipper: blanks stand only where the rules name them.
struct Grammar : qi::grammar<Iterator, Matched()> {
    Grammar() : Grammar::base_type(mediaType) {
        whitespace = char_(L' ');
        token = +(char_(L" -~") - char_(SEPARATORS));
        quotedString = L'"' >> +(char_(L" -~") - char_(L'"')) >> L'"';
        value = token | quotedString;
        type = token;
        subtype = token;
        attribute = token;
        parameter = *whitespace >> L';' >> *whitespace >> attribute >> L'=' >> value;
        mediaType = type >> L'/' >> subtype >> *parameter;
    }

    qi::rule<Iterator, Matched()> mediaType;
    qi::rule<Iterator, Parameter()> parameter;
    qi::rule<Iterator, std::wstring()> type, subtype, attribute, value, token, quotedString;
    qi::rule<Iterator> whitespace;
};

bool isTokenCharacter(char16_t unit) {
    static constexpr auto TABLE = [] {
        std::array<bool, 127> table{};
        for (std::size_t character = ' '; character < table.size(); ++character)
            table[character] =
                std::string_view(SEPARATORS).find(static_cast<char>(character)) == std::string_view::npos;
        return table;
    }();
    return unit < TABLE.size() && TABLE[unit];
}

/// What stands in front of a text, and is taken from it.
u16string_view takeToken(u16string_view& text) {
    std::size_t size = 0;
    while (size < text.size() && isTokenCharacter(text[size]))
        ++size;
    const u16string_view token = text.substr(0, size);
    text.remove_prefix(size);
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

bool parse(const std::u16string& text, ParsedContentType& parsed) {
    return parsePlain(text, parsed) || parseByGrammar(text, parsed);
}

bool parsePlain(u16string_view text, ParsedContentType& parsed) {
    parsed.type = takeToken(text);
    const bool hasSlash = take(u'/', text);
    parsed.subType = takeToken(text);
    parsed.parameters.clear();
    if (parsed.type.empty() || !hasSlash || parsed.subType.empty())
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

bool parseByGrammar(const std::u16string& text, ParsedContentType& parsed) {
    static const Grammar& grammar =
        *new Grammar; // never destroyed: it works at any time of the program's end
    const std::wstring wide = toWideString(text);
    Matched matched;
    Iterator position = wide.begin();
    if (!qi::parse(position, wide.end(), grammar, matched) || position != wide.end())
        return false;
    parsed = {opc::toString(matched.type), opc::toString(matched.subType), {}};
    for (const auto& [attribute, value] : matched.parameters)
        parsed.parameters.emplace_back(opc::toString(attribute), opc::toString(value));
    return true;
}

} // namespace opc::model::contenttype
