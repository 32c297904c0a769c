#include "PartLookup.hpp"

#include <algorithm>
#include <string>

namespace opc::scanning {

namespace {

char toLower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool isBefore(std::string_view left, std::string_view right) {
    const std::size_t length = std::min(left.size(), right.size());
    std::size_t same = 0;
    while (same < length && (left[same] == right[same] || toLower(left[same]) == toLower(right[same])))
        ++same;
    return same == length ? left.size() < right.size()
                          : static_cast<unsigned char>(toLower(left[same])) <
                                static_cast<unsigned char>(toLower(right[same]));
}

bool isPlain(std::string_view text) {
    return std::all_of(text.begin(), text.end(), [](char c) {
        const char lower = toLower(c);
        return (lower >= 'a' && lower <= 'z') || (c >= '0' && c <= '9') || c == '/' || c == '.' || c == '_' ||
               c == '-';
    });
}

} // namespace

std::optional<bool> PartLookup::find(std::string_view source, std::string_view target) const {
    if (!isPlain(source) || !isPlain(target) || target.empty())
        return std::nullopt;
    std::string name;
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
    return has(name);
}

bool PartLookup::has(std::string_view name) const {
    const auto found = std::lower_bound(
        parts.begin(), parts.end(), name,
        [](const ScannedPart& part, std::string_view text) { return isBefore(part.name, text); });
    return found != parts.end() && !isBefore(name, found->name);
}

} // namespace opc::scanning
