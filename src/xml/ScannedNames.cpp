#include "xml/ScannedNames.hpp"

#include "xml/PlainCharacters.hpp"

#include <algorithm>
#include <cstring>
#include <new>
#include <type_traits>

namespace opc::model {

namespace {

const std::u16string XML_NAMESPACE = u"http://www.w3.org/XML/1998/namespace";

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

ScannedNames::ScannedNames() {
    prefix(u"xml").namespaces.push_back(&XML_NAMESPACE);
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
    const std::size_t colon = text.find(':');
    const std::size_t begin = colon == std::string_view::npos ? 0 : colon + 1;
    const bool isPlain = canBegin(text) && canBegin(text.substr(begin)) &&
                         text.find(':', begin) == std::string_view::npos && count < MOST_NAMES;
    if (!isPlain)
        return nullptr;
    auto* const plain = static_cast<char*>(memory.allocate(text.size(), 1));
    std::copy(text.begin(), text.end(), plain);
    auto* const wide =
        static_cast<char16_t*>(memory.allocate(text.size() * sizeof(char16_t), alignof(char16_t)));
    std::copy(text.begin(), text.end(), wide);
    const std::u16string_view whole(wide, text.size());
    static_assert(std::is_trivially_destructible_v<ScannedName>);
    names[count++] = ::new (memory.allocate(sizeof(ScannedName), alignof(ScannedName))) ScannedName{
        {plain, text.size()}, whole.substr(begin), &prefix(whole.substr(0, begin == 0 ? 0 : colon))};
    return names[count - 1];
}

ScannedPrefix& ScannedNames::prefix(std::u16string_view name) {
    const auto found = std::find_if(prefixes.begin(), prefixes.end(),
                                    [name](const ScannedPrefix& known) { return known.name == name; });
    if (found != prefixes.end())
        return *found;
    ScannedPrefix& added = prefixes.emplace_front();
    added.name = name;
    return added;
}

} // namespace opc::model
