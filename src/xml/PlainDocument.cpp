#include "xml/PlainDocument.hpp"

#include "xml/PlainCharacters.hpp"

#include <boost/date_time/gregorian/gregorian_types.hpp>

#include <algorithm>
#include <charconv>

namespace opc::model {

namespace {

using plain::is;

bool takeChildren(PlainReader& reader, std::string_view root, const PlainChildVisitor& visitChild) {
    PlainAttributes attributes;
    for (;;) {
        reader.skipSpace();
        if (reader.isAt("</"))
            return reader.takeEndTag(root);
        if (!reader.take("<"))
            return false;
        const std::string_view name = reader.takeName();
        bool isEmpty = false;
        if (name.empty() || !reader.takeAttributes(attributes, isEmpty) ||
            (!isEmpty && !reader.takeEndTag(name)) || !visitChild(name, attributes))
            return false;
    }
}

} // namespace

bool visitPlainDocument(std::string_view document, std::string_view root, std::string_view namespaceURI,
                        PlainTexts& texts, const PlainChildVisitor& visitChild) {
    PlainReader reader(document, texts);
    if (!reader.skipProlog())
        return false;
    PlainAttributes attributes;
    bool isEmpty = false;
    if (!reader.take("<") || reader.takeName() != root || !reader.takeAttributes(attributes, isEmpty))
        return false;
    if (attributes.size() != 1 || attributes.begin()->name != "xmlns" ||
        attributes.begin()->value != namespaceURI)
        return false;
    if (!isEmpty && !takeChildren(reader, root, visitChild))
        return false;
    reader.skipSpace();
    return reader.atEnd();
}

std::u16string widen(std::string_view value) {
    return std::u16string(value.begin(), value.end());
}

bool isPlainID(std::string_view text) {
    const auto isNameChar = [](char c) {
        return is(c, plain::Letter | plain::Digit) || c == '_' || c == '-' || c == '.';
    };
    return !text.empty() && (is(text.front(), plain::Letter) || text.front() == '_') &&
           std::all_of(text.begin(), text.end(), isNameChar);
}

bool isPlainTime(std::string_view text) {
    constexpr std::string_view FORM = "0000-00-00T00:00:00Z";
    if (!std::equal(text.begin(), text.end(), FORM.begin(), FORM.end(),
                    [](char c, char form) { return form == '0' ? is(c, plain::Digit) : c == form; }))
        return false;
    const auto number = [text](std::size_t place, std::size_t digits) {
        unsigned short value = 0;
        std::from_chars(text.data() + place, text.data() + place + digits, value);
        return value;
    };
    const unsigned short year = number(0, 4);
    const unsigned short month = number(5, 2);
    const unsigned short day = number(8, 2);
    return year >= 1400 && month >= 1 && month <= 12 && day >= 1 &&
           day <= boost::gregorian::gregorian_calendar::end_of_month_day(year, month) && number(11, 2) < 24 &&
           number(14, 2) < 60 && number(17, 2) < 60;
}

} // namespace opc::model
