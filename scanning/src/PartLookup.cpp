#include "PartLookup.hpp"

#include <opc/core/Exception.hpp>
#include <opc/core/Text.hpp>
#include <opc/model/PartName.hpp>
#include <opc/model/URI.hpp>

#include <algorithm>
#include <array>
#include <cstring>

namespace opc::scanning {

using model::PartName;
using model::URI;

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

bool isPlain(char c) {
    static constexpr std::array<bool, 256> PLAIN = makePlainCharacters();
    return PLAIN[static_cast<unsigned char>(c)];
}

/// Whether a path has only plain characters, and no segment that is empty or begins with a dot.
bool isPlainPath(std::string_view path) {
    char last = '/';
    for (const char c : path) {
        if (!isPlain(c) || (last == '/' && (c == '/' || c == '.')))
            return false;
        last = c;
    }
    return last != '/';
}

URI resolveReference(std::string_view source, std::string_view target) {
    const URI uri(toString(std::string(target), true));
    return uri.hasAbsolutePath() ? uri : resolve(URI(toString(std::string(source), true)), uri);
}

} // namespace

void PartLookup::setSource(std::string_view source) {
    sourceName = source;
    folder = source.substr(0, source.rfind('/'));
    isPlainFolder = std::all_of(folder.begin(), folder.end(), isPlain);
}

std::optional<bool> PartLookup::find(std::string_view target) {
    constexpr std::string_view UP = "../";
    std::string_view from = folder;
    if (target.substr(0, 1) == "/") {
        target.remove_prefix(1);
        from = {};
    }
    for (; target.substr(0, UP.size()) == UP; target.remove_prefix(UP.size())) {
        if (from.empty())
            return std::nullopt;
        from = from.substr(0, from.rfind('/'));
    }
    if (!isPlainFolder || !isPlainPath(target))
        return std::nullopt;
    name.assign(from);
    name += '/';
    name.append(target);
    return isPart(name);
}

bool PartLookup::leadsToPart(std::string_view target) {
    const std::optional<bool> found = find(target);
    return found ? *found : resolvesToPart(target);
}

bool PartLookup::resolvesToPart(std::string_view target) const {
    try {
        const URI uri = resolveReference(sourceName, target);
        return !uri.hasScheme() && !uri.hasAuthority() &&
               isPart(toUDEString(PartName(uri.getPath()).toString()));
    } catch (const Exception&) {
        return false; // no part can have such a name
    }
}

bool PartLookup::isPart(std::string_view partName) const {
    const auto found = std::lower_bound(
        parts.begin(), parts.end(), partName,
        [](const ScannedPart& part, std::string_view text) { return isBefore(part.name, text); });
    return found != parts.end() && !isBefore(partName, found->name);
}

std::string resolveTarget(std::string_view source, std::string_view target) {
    return toUDEString(resolveReference(source, target).toString());
}

} // namespace opc::scanning
