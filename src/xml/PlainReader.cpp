#include "xml/PlainReader.hpp"

#include <algorithm>
#include <iterator>

namespace opc::model {

bool PlainAttributes::add(const PlainAttribute& attribute) {
    const auto isSame = [&](const PlainAttribute& other) { return other.name == attribute.name; };
    if (count == attributes.size() || std::any_of(begin(), end(), isSame))
        return false;
    attributes[count++] = attribute;
    return true;
}

bool PlainReader::skipProlog() {
    take("\xEF\xBB\xBF");
    if (!skipDeclaration())
        return false;
    skipMisc();
    return true;
}

void PlainReader::skipComments() {
    while (takeComment())
        skipSpace();
}

bool PlainReader::takeComment() {
    constexpr std::string_view BEGIN = "<!--";
    constexpr std::string_view END = "-->";
    constexpr std::size_t MAXIMUM = 100; // the parser refuses documents with far more
    if (!isAt(BEGIN) || ++comments > MAXIMUM)
        return false;
    const std::size_t end = std::min(rest.find("--", BEGIN.size()), rest.size());
    if (rest.compare(end, END.size(), END) != 0 ||
        !plain::areAll(rest.substr(BEGIN.size(), end - BEGIN.size()),
                       plain::DoubleQuoted | plain::SingleQuoted | plain::Space))
        return false;
    rest.remove_prefix(end + END.size());
    return true;
}

bool PlainReader::skipDeclaration() {
    constexpr std::string_view USUAL = R"(<?xml version="1.0" encoding="UTF-8" standalone="yes"?>)";
    if (take(USUAL) || !take("<?xml"))
        return true;
    constexpr std::string_view NAMES[] = {"version", "encoding", "standalone"};
    std::size_t next = 0; // they must be in this order, and the first one is required
    while (skipSpace()) {
        const std::string_view name = takeName();
        if (name.empty())
            break;
        const auto* const found = std::find(std::begin(NAMES) + next, std::end(NAMES), name);
        if (found == std::end(NAMES) || (next == 0 && name != "version"))
            return false;
        next = static_cast<std::size_t>(found - std::begin(NAMES)) + 1;
        std::string_view value;
        if (!takeValue(value))
            return false;
        const bool isUsual = name == "version"    ? value == "1.0"
                             : name == "encoding" ? value == "UTF-8" || value == "utf-8"
                                                  : value == "yes" || value == "no";
        if (!isUsual)
            return false;
    }
    return next != 0 && take("?>");
}

bool PlainReader::takeAttributes(PlainAttributes& attributes, bool& isEmpty) {
    attributes.clear();
    for (;;) {
        const bool spaced = skipSpace();
        isEmpty = take("/>");
        if (isEmpty || take(">"))
            return true;
        PlainAttribute attribute;
        attribute.name = takeName();
        if (!spaced || attribute.name.empty() || !takeValue(attribute.value))
            return false;
        if (!attributes.add(attribute))
            return false;
    }
}

bool PlainReader::takeReferences(std::string_view quote, unsigned kinds, std::string_view& value) {
    const std::size_t length = value.size() + takeAll(kinds | plain::Ampersand).size();
    const std::string_view written(value.data(), length);
    if (!take(quote) || !resolveReferences(written, texts.emplace_front()))
        return false;
    value = texts.front();
    return true;
}

bool PlainReader::takeEndTag(std::string_view name) {
    if (!take("</") || takeName() != name)
        return false;
    skipSpace();
    return take(">");
}

} // namespace opc::model
