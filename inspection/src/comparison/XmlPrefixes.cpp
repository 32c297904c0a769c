#include "comparison/XmlPrefixes.hpp"

#include <opc/core/Text.hpp>

namespace opc::inspection {

namespace {

/// A prefix stands in front of each name: a long one would make the text much longer than the document.
constexpr std::size_t LONGEST_PREFIX = 16;

} // namespace

void XmlPrefixes::suggest(std::u16string_view uri, std::u16string_view prefix) {
    if (prefix.size() <= LONGEST_PREFIX)
        suggestions.emplace(uri, prefix);
}

std::size_t XmlPrefixes::find(std::u16string_view uri) {
    const auto [place, isNew] = places.emplace(uri, namespaces.size());
    if (isNew)
        namespaces.push_back({place->first, makePrefix(place->first)});
    return place->second;
}

std::u16string XmlPrefixes::makePrefix(const std::u16string& uri) {
    const auto suggestion = suggestions.find(uri);
    std::u16string prefix = suggestion != suggestions.end() ? suggestion->second : uri.empty() ? u"" : u"ns";
    while (!taken.insert(prefix).second)
        prefix = u"ns" + opc::toString(std::to_string(++made), true);
    return prefix;
}

} // namespace opc::inspection
