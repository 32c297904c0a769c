#include "xml/ScannedNames.hpp"

#include "xml/PlainCharacters.hpp"

#include <algorithm>
#include <cstring>
#include <new>
#include <type_traits>

namespace opc::model {

namespace {

constexpr std::u16string_view XML_NAMESPACE = u"http://www.w3.org/XML/1998/namespace";

std::uint64_t loadEight(const char* text) {
    std::uint64_t loaded = 0;
    std::memcpy(&loaded, text, sizeof loaded);
    return loaded;
}

/// Of short names all characters count, of long ones the first and the last eight.
std::size_t hashOf(std::string_view text) {
    std::uint64_t hash = text.size();
    if (text.size() >= sizeof hash)
        hash ^= loadEight(text.data()) ^ (loadEight(text.data() + text.size() - sizeof hash) << 1U);
    else
        for (const char c : text)
            hash = hash << 8U ^ static_cast<unsigned char>(c);
    return static_cast<std::size_t>((hash * 0x9E3779B97F4A7C15) >> 48U);
}

bool canBegin(std::string_view part) {
    return !part.empty() && (plain::is(part.front(), plain::Letter) || part.front() == '_');
}

} // namespace

ScannedNames::ScannedNames() : xml{u"xml", XML_NAMESPACE, nullptr} {
}

ScannedName* ScannedNames::find(std::string_view text) {
    if (text.empty())
        return nullptr;
    for (std::size_t place = hashOf(text);; ++place) {
        std::uint16_t& entry = table[place % TABLE_SIZE];
        if (entry != 0 && names[entry - 1U]->text == text)
            return names[entry - 1U];
        if (entry != 0)
            continue;
        ScannedName* const added = add(text);
        if (added != nullptr)
            entry = static_cast<std::uint16_t>(count);
        return added;
    }
}

ScannedName* ScannedNames::add(std::string_view text) {
    const std::size_t colon = std::min(text.find(':'), text.size());
    const bool hasPrefix = colon != text.size();
    const std::size_t begin = hasPrefix ? colon + 1 : 0;
    const bool isPlain = canBegin(text) && canBegin(text.substr(begin)) &&
                         (!hasPrefix || text.find(':', begin) == std::string_view::npos) &&
                         count < MOST_NAMES;
    if (!isPlain)
        return nullptr;
    auto* const plain = static_cast<char*>(memory.allocate(text.size(), 1));
    std::copy(text.begin(), text.end(), plain);
    const std::u16string_view whole = keep(text);
    static_assert(std::is_trivially_destructible_v<ScannedName>);
    names[count++] = ::new (memory.allocate(sizeof(ScannedName), alignof(ScannedName))) ScannedName{
        {plain, text.size()}, whole.substr(begin), &prefix(whole.substr(0, hasPrefix ? colon : 0))};
    return names[count - 1];
}

ScannedPrefix& ScannedNames::prefix(std::u16string_view name) {
    for (ScannedPrefix* known = prefixes; known != nullptr; known = known->next)
        if (known->name == name)
            return *known;
    static_assert(std::is_trivially_destructible_v<ScannedPrefix>);
    prefixes = ::new (memory.allocate(sizeof(ScannedPrefix), alignof(ScannedPrefix)))
        ScannedPrefix{name, {}, prefixes};
    return *prefixes;
}

template <typename Text>
std::u16string_view ScannedNames::keep(Text text) {
    auto* const kept =
        static_cast<char16_t*>(memory.allocate(text.size() * sizeof(char16_t), alignof(char16_t)));
    std::transform(text.begin(), text.end(), kept, [](auto c) { return static_cast<char16_t>(c); });
    return {kept, text.size()};
}

template <typename Text>
std::u16string_view ScannedNames::keepNamespace(Text uri) {
    const auto isSame = [uri](std::u16string_view known) {
        unsigned difference = 0;
        for (std::size_t i = 0; i < uri.size(); ++i) // without a branch, for vector instructions
            difference |= static_cast<unsigned>(known[i]) ^ static_cast<unsigned>(uri[i]);
        return difference == 0;
    };
    for (const Namespace* known = namespaces; known != nullptr; known = known->next)
        if (known->uri.size() == uri.size() && isSame(known->uri))
            return known->uri;
    static_assert(std::is_trivially_destructible_v<Namespace>);
    namespaces =
        ::new (memory.allocate(sizeof(Namespace), alignof(Namespace))) Namespace{keep(uri), namespaces};
    ++keptNamespaces;
    return namespaces->uri;
}

template std::u16string_view ScannedNames::keepNamespace(std::string_view);
template std::u16string_view ScannedNames::keepNamespace(std::u16string_view);

} // namespace opc::model
