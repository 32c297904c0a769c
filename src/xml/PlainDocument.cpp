#include "xml/PlainDocument.hpp"

#include "xml/PlainCharacters.hpp"
#include "xml/PlainURI.hpp"

#include <boost/date_time/gregorian/gregorian_types.hpp>

#include <algorithm>
#include <charconv>

namespace opc::model {

namespace {

using plain::areAll;
using plain::is;

bool takeChildren(PlainReader& reader, std::string_view root, const PlainChildVisitor& visitChild) {
    PlainAttributes attributes;
    for (;;) {
        reader.skipMisc();
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

/// Whether the attributes of a root declare this namespace for names without a prefix, and otherwise only prefixes.
bool declareNamespace(const PlainAttributes& attributes, std::string_view namespaceURI) {
    bool isDeclared = false;
    for (const PlainAttribute& attribute : attributes) {
        if (attribute.name == "xmlns" && attribute.value == namespaceURI)
            isDeclared = true;
        else if (!declaresPrefix(attribute))
            return false;
    }
    return isDeclared;
}

constexpr std::string_view SECOND_FORM = "0000-00-00T00:00:00";
constexpr std::size_t SECONDS = SECOND_FORM.size(); // the length up to the seconds

/// Whether a text is a time of whole seconds, in a year from 1400 on.
bool isPlainSecond(std::string_view text) {
    if (!std::equal(text.begin(), text.end(), SECOND_FORM.begin(), SECOND_FORM.end(),
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
    if (!declareNamespace(attributes, namespaceURI))
        return false;
    if (!isEmpty && !takeChildren(reader, root, visitChild))
        return false;
    reader.skipMisc();
    return reader.atEnd();
}

std::u16string widen(std::string_view value) {
    return std::u16string(value.begin(), value.end());
}

bool declaresPrefix(const PlainAttribute& attribute) {
    constexpr std::string_view DECLARING = "xmlns:";
    if (attribute.name.substr(0, DECLARING.size()) != DECLARING)
        return false;
    const std::string_view prefix = attribute.name.substr(DECLARING.size());
    return !prefix.empty() && areAll(prefix, plain::Letter) && prefix.substr(0, 3) != "xml" &&
           isPlainURI(attribute.value) && attribute.value != "http://www.w3.org/XML/1998/namespace" &&
           attribute.value != "http://www.w3.org/2000/xmlns/";
}

bool isPlainID(std::string_view text) {
    const auto isNameChar = [](char c) {
        return is(c, plain::Letter | plain::Digit) || c == '_' || c == '-' || c == '.';
    };
    return !text.empty() && (is(text.front(), plain::Letter) || text.front() == '_') &&
           std::all_of(text.begin(), text.end(), isNameChar);
}

bool isPlainTime(std::string_view text) {
    return text.substr(std::min(SECONDS, text.size())) == "Z" && isPlainSecond(text.substr(0, SECONDS));
}

bool isPlainDateTime(std::string_view text) {
    constexpr std::size_t MOST_DIGITS = 9;
    if (!isPlainSecond(text.substr(0, SECONDS)))
        return false;
    text.remove_prefix(SECONDS);
    if (text.substr(0, 1) == ".") {
        const std::size_t end = std::min(text.find('Z'), text.size());
        const std::string_view digits = text.substr(1, end - 1);
        if (digits.empty() || digits.size() > MOST_DIGITS || !areAll(digits, plain::Digit))
            return false;
        text.remove_prefix(end);
    }
    return text.empty() || text == "Z";
}

} // namespace opc::model
