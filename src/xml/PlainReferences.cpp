#include "xml/PlainReferences.hpp"

#include "xml/PlainCharacters.hpp"

#include <opc/core/Text.hpp>

#include <algorithm>
#include <charconv>
#include <cstdint>

namespace opc::model {

namespace {

struct WrittenEntity {
    std::string_view name;
    char character;
};

constexpr WrittenEntity WRITTEN_ENTITIES[] = {
    {"amp", '&'}, {"lt", '<'}, {"gt", '>'}, {"quot", '"'}, {"apos", '\''}};

/// @param number  what follows the number sign: hexadecimal digits if it begins with an x
bool appendCharacter(std::string_view number, std::string& text) {
    const bool isHexadecimal = number.substr(0, 1) == "x";
    if (isHexadecimal)
        number.remove_prefix(1);
    std::uint16_t unit = 0;
    const auto [end, failure] =
        std::from_chars(number.data(), number.data() + number.size(), unit, isHexadecimal ? 16 : 10);
    if (failure != std::errc() || end != number.data() + number.size() || unit < u' ' || !plain::isText(unit))
        return false;
    text += detail::toUTF8String(std::u16string(1, unit), false);
    return true;
}

/// @param reference  what is between the ampersand and the semicolon
bool appendReference(std::string_view reference, std::string& text) {
    if (reference.substr(0, 1) == "#")
        return appendCharacter(reference.substr(1), text);
    const auto* const found =
        std::find_if(std::begin(WRITTEN_ENTITIES), std::end(WRITTEN_ENTITIES),
                     [&](const WrittenEntity& entity) { return entity.name == reference; });
    if (found == std::end(WRITTEN_ENTITIES))
        return false;
    text += found->character;
    return true;
}

} // namespace

bool resolveReferences(std::string_view written, std::string& text) {
    for (;;) {
        const std::size_t begin = std::min(written.find('&'), written.size());
        text += written.substr(0, begin);
        written.remove_prefix(begin);
        if (written.empty())
            return true;
        const std::size_t end = written.find(';');
        if (end == std::string_view::npos || !appendReference(written.substr(1, end - 1), text))
            return false;
        written.remove_prefix(end + 1);
    }
}

} // namespace opc::model
