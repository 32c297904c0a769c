#include "ContentTypeGrammar.hpp"

#include <boost/fusion/include/adapt_struct.hpp>
#include <boost/fusion/include/std_pair.hpp>
#include <boost/spirit/include/qi.hpp>

BOOST_FUSION_ADAPT_STRUCT(opc::model::ParsedContentType, type, subType, parameters)

namespace opc::model::contenttype {

namespace {

namespace qi = boost::spirit::qi;
using boost::spirit::standard_wide::char_;

using Iterator = std::wstring::const_iterator;
using Parameter = std::pair<std::wstring, std::wstring>;

/// RFC 2616 section 3.7, without skipper: blanks stand only where the rules name them.
struct Grammar : qi::grammar<Iterator, ParsedContentType()> {
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

    qi::rule<Iterator, ParsedContentType()> mediaType;
    qi::rule<Iterator, Parameter()> parameter;
    qi::rule<Iterator, std::wstring()> type, subtype, attribute, value, token, quotedString;
    qi::rule<Iterator> whitespace;
};

} // namespace

bool parse(const std::wstring& text, ParsedContentType& parsed) {
    Iterator position = text.begin();
    return qi::parse(position, text.end(), Grammar(), parsed) && position == text.end();
}

} // namespace opc::model::contenttype
