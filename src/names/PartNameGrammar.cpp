#include "names/PartNameGrammar.hpp"

#include <opc/core/Text.hpp>
#include <opc/model/Errors.hpp>

#include <algorithm>
#include <string_view>

namespace opc::model {

namespace {

/// Whether a part name may have this character of a URI: a pchar, or the slash between segments.
bool isNameCharacter(char16_t unit) {
    constexpr std::u16string_view OTHERS = u"/-._~%!$&'()*+,;=:@";
    return (unit >= u'a' && unit <= u'z') || (unit >= u'A' && unit <= u'Z') ||
           (unit >= u'0' && unit <= u'9') || OTHERS.find(unit) != std::u16string_view::npos;
}

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

} // namespace opc::model
