#include "subject/Targets.hpp"

#include <algorithm>
#include <cctype>
#include <vector>

namespace opc::inspection {

namespace {

bool isScheme(std::string_view text) {
    const auto isLetter = [](char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); };
    const auto isOther = [](char c) { return (c >= '0' && c <= '9') || c == '+' || c == '-' || c == '.'; };
    return !text.empty() && isLetter(text.front()) &&
           std::all_of(text.begin(), text.end(), [&](char c) { return isLetter(c) || isOther(c); });
}

/// The segments of a path without its first slash, with dots resolved.
/// @return how often a segment leads above the root
std::size_t appendSegments(std::string_view path, std::vector<std::string_view>& segments) {
    std::size_t climbs = 0;
    for (std::size_t begin = 0; begin <= path.size();) {
        const std::size_t end = std::min(path.find('/', begin), path.size());
        const std::string_view segment = path.substr(begin, end - begin);
        const bool isLast = end == path.size();
        if (segment == "..") {
            if (segments.empty())
                ++climbs;
            else
                segments.pop_back();
        } else if (segment != ".") {
            segments.push_back(segment);
        }
        if (isLast && (segment == "." || segment == ".."))
            segments.emplace_back(); // the path ends in a slash
        begin = end + 1;
    }
    return climbs;
}

/// @param target  a path without a query
std::size_t resolvePath(std::string_view source, std::string_view target,
                        std::vector<std::string_view>& segments) {
    if (target.empty() || target.front() != '/') {
        const std::size_t folder = source.rfind('/');
        if (folder != std::string_view::npos && folder > 0)
            appendSegments(source.substr(1, folder - 1), segments);
    } else {
        target.remove_prefix(1);
    }
    return appendSegments(target, segments);
}

std::string withSlashes(std::string_view target) {
    std::string result(trimmed(target));
    std::replace(result.begin(), result.end(), '\\', '/');
    return result;
}

} // namespace

Reference::Reference(std::string_view text) {
    if (const std::size_t end = text.find('#'); end != std::string_view::npos) {
        hasFragment = true;
        fragment = text.substr(end + 1);
        text = text.substr(0, end);
    }
    if (const std::size_t end = text.find('?'); end != std::string_view::npos) {
        hasQuery = true;
        query = text.substr(end + 1);
        text = text.substr(0, end);
    }
    if (const std::size_t end = text.find(':');
        end != std::string_view::npos && isScheme(text.substr(0, end))) {
        hasScheme = true;
        scheme = text.substr(0, end);
        text.remove_prefix(end + 1);
    }
    if (text.substr(0, 2) == "//") {
        hasAuthority = true;
        const std::size_t end = std::min(text.find('/', 2), text.size());
        authority = text.substr(2, end - 2);
        text.remove_prefix(end);
    }
    path = text;
}

std::string resolveTarget(std::string_view source, std::string_view target) {
    const std::string text = withSlashes(target);
    const Reference reference(text);
    if (reference.hasScheme || reference.hasAuthority)
        return {};
    if (reference.path.empty())
        return source == "/" ? std::string() : std::string(source);
    std::vector<std::string_view> segments;
    resolvePath(source, reference.path, segments);
    std::string name;
    for (const std::string_view segment : segments)
        name.append("/").append(segment);
    return name == "/" ? std::string() : name;
}

bool climbsAboveRoot(std::string_view source, std::string_view target) {
    if (target.find("..") == std::string_view::npos)
        return false;
    const std::string text = withSlashes(target);
    std::vector<std::string_view> segments;
    return resolvePath(source, Reference(text).path, segments) > 0;
}

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view SPACE = " \t\r\n";
    const std::size_t begin = text.find_first_not_of(SPACE);
    return begin == std::string_view::npos ? std::string_view()
                                           : text.substr(begin, text.find_last_not_of(SPACE) + 1 - begin);
}

} // namespace opc::inspection
