#include "PartLookup.hpp"

#include <algorithm>
#include <array>
#include <cstring>

namespace opc::scanning {

namespace {

char toLower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool isBefore(std::string_view left, std::string_view right) {
    const std::size_t length = std::min(left.size(), right.size());
    std::size_t same = 0;
    while (same + 8 <= length && std::memcmp(left.data() + same, right.data() + same, 8) == 0)
        same += 8; // names of one folder begin alike
    while (same < length && (left[same] == right[same] || toLower(left[same]) == toLower(right[same])))
        ++same;
    return same == length ? left.size() < right.size()
                          : static_cast<unsigned char>(toLower(left[same])) <
                                static_cast<unsigned char>(toLower(right[same]));
}

constexpr std::array<bool, 256> makePlainCharacters() {
    std::array<bool, 256> plain{};
    for (const char c :
         std::string_view("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789/._-"))
        plain[static_cast<unsigned char>(c)] = true;
    return plain;
}

bool isPlain(std::string_view text) {
    static constexpr std::array<bool, 256> PLAIN = makePlainCharacters();
    return std::all_of(text.begin(), text.end(), [](char c) { return PLAIN[static_cast<unsigned char>(c)]; });
}

} // namespace

std::optional<bool> PartLookup::find(std::string_view source, std::string_view target) {
    if (!isPlain(source) || !isPlain(target) || target.empty())
        return std::nullopt;
    name.clear();
    if (target.front() == '/')
        target.remove_prefix(1);
    else
        name = source.substr(0, source.rfind('/'));
    for (bool isLast = false; !isLast;) {
        const std::size_t end = target.find('/');
        isLast = end == std::string_view::npos;
        const std::string_view segment = target.substr(0, end);
        target.remove_prefix(isLast ? target.size() : end + 1);
        if (segment.empty() || segment == "." || (segment == ".." && (isLast || name.empty())))
            return std::nullopt;
        if (segment == "..")
            name.resize(name.rfind('/'));
        else
            name.append("/").append(segment);
    }
    const auto found = std::lower_bound(
        parts.begin(), parts.end(), name,
        [](const ScannedPart& part, std::string_view text) { return isBefore(part.name, text); });
    return found != parts.end() && !isBefore(name, found->name);
}

} // namespace opc::scanning
