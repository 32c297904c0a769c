#include "subject/Names.hpp"

#include <opc/core/Text.hpp>

#include <algorithm>
#include <array>

namespace opc::inspection {

namespace {

constexpr std::string_view FOLDER = "/_rels/";
constexpr std::string_view EXTENSION = ".rels";

constexpr char lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

/// What may stand in the path of a URI, by RFC 3986 section 3.3.
constexpr std::array<bool, 256> pathCharacters() {
    std::array<bool, 256> found{};
    for (const char c : std::string_view("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789"
                                         "-._~!$&'()*+,;=:@/%"))
        found[static_cast<unsigned char>(c)] = true;
    return found;
}

constexpr std::array<bool, 256> STAYS = pathCharacters();

bool endsCaseless(std::string_view text, std::string_view end) {
    return text.size() >= end.size() && equalsCaseless(text.substr(text.size() - end.size()), end);
}

} // namespace

std::string narrow(std::u16string_view text) {
    if (std::any_of(text.begin(), text.end(), [](char16_t unit) { return unit > 127; }))
        return toUDEString(std::u16string(text));
    std::string result(text.size(), '\0');
    std::transform(text.begin(), text.end(), result.begin(),
                   [](char16_t unit) { return static_cast<char>(unit); });
    return result;
}

std::string toLowerASCII(std::string_view text) {
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(), lower);
    return result;
}

bool equalsCaseless(std::string_view left, std::string_view right) {
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](char a, char b) { return lower(a) == lower(b); });
}

bool hasOddCharacter(std::string_view name) {
    return std::any_of(name.begin(), name.end(), [](char c) {
        const auto byte = static_cast<unsigned char>(c);
        return byte < 0x80 && !STAYS[byte];
    });
}

std::string encodedName(std::string_view name) {
    static constexpr char HEX_DIGITS[] = "0123456789ABCDEF";
    std::string encoded;
    encoded.reserve(name.size());
    for (const char c : name) {
        const auto byte = static_cast<unsigned char>(c);
        if (STAYS[byte])
            encoded += c;
        else
            encoded.append({'%', HEX_DIGITS[byte >> 4], HEX_DIGITS[byte & 15]});
    }
    return encoded;
}

std::string keyOfName(std::string_view name) {
    const auto stays = [](char c) { return STAYS[static_cast<unsigned char>(c)]; };
    return toLowerASCII(std::all_of(name.begin(), name.end(), stays) ? name : encodedName(name));
}

bool isRelationshipsName(std::string_view name) {
    if (!endsCaseless(name, EXTENSION))
        return false;
    return endsCaseless(name.substr(0, name.rfind('/') + 1), FOLDER);
}

std::string sourceOfRelationships(std::string_view name) {
    const std::size_t file = name.rfind('/') + 1;
    const std::string_view folder = name.substr(0, file - FOLDER.size() + 1);
    return std::string(folder).append(name.substr(file, name.size() - file - EXTENSION.size()));
}

} // namespace opc::inspection
