#include "names/PartNameGrammar.hpp"

#include <opc/core/Text.hpp>
#include <opc/model/Errors.hpp>

#include <algorithm>
#include <array>
#include <string_view>

namespace opc::model {

namespace {

/// Whether a part name may have this character of a URI: a pchar, or the slash between segments.
bool isNameCharacter(char16_t unit) {
    constexpr std::u16string_view OTHERS = u"/-._~%!$&'()*+,;=:@";
    return (unit >= u'a' && unit <= u'z') || (unit >= u'A' && unit <= u'Z') ||
           (unit >= u'0' && unit <= u'9') || OTHERS.find(unit) != std::u16string_view::npos;
}

constexpr std::array<bool, 256> IS_USUAL = [] {
    std::array<bool, 256> table{};
    for (const char c :
         std::string_view("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789/.-_"))
        table[static_cast<unsigned char>(c)] = true;
    return table;
}();

} // namespace

void throwIfNoNameForNewPart(const PartName& name) {
    const std::u16string text = name.toString();
    const std::u16string lower = toLowerASCIIString(text);
    if (name.getURI().getPath() == u"/")
        throw InvalidPartName("The package root is no part: " + toASCIIString(text));
    if (!std::all_of(text.begin(), text.end(), isNameCharacter))
        throw InvalidPartName("A segment shall not hold any characters other than pchar characters. [M1.6]");
    if (PartName(lower).isRelationshipName())
        throw PartHasRelationshipName("Cannot use a part name that is a relationship name: " +
                                      toASCIIString(text));
}

bool isUsualPartName(std::string_view text) {
    char before = 0;
    for (const char c : text) {
        const bool isOutOfPlace = c == '/' ? before == '/' || before == '.' : before == 0;
        if (isOutOfPlace || !IS_USUAL[static_cast<unsigned char>(c)])
            return false;
        before = c;
    }
    return before != 0 && before != '/' && before != '.';
}

bool isRelationshipsPartName(std::string_view name) {
    constexpr std::string_view EXTENSION = ".rels";
    return name.size() > EXTENSION.size() && name.substr(name.size() - EXTENSION.size()) == EXTENSION &&
           name.find("/_rels/") != std::string_view::npos;
}

} // namespace opc::model
