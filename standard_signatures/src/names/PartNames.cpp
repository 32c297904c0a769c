#include "names/PartNames.hpp"

#include "names/HexDigit.hpp"

#include <algorithm>

namespace opc::standard_signatures {

namespace {

enum class HexDigits { Any, UpperCase };

int digit(char c, HexDigits digits) {
    return digits == HexDigits::UpperCase && c >= 'a' ? -1 : hexDigitOf(static_cast<unsigned char>(c));
}

char lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

void lower(std::string& text) {
    std::transform(text.begin(), text.end(), text.begin(), [](char c) { return lower(c); });
}

/// Resolves the percent-encoded characters that are wanted.
template <typename Predicate>
std::string decode(std::string_view text, const Predicate& isWanted, HexDigits digits = HexDigits::Any) {
    const std::size_t begin = text.find('%');
    if (begin == std::string_view::npos)
        return std::string(text);
    std::string decoded(text.substr(0, begin));
    for (std::size_t i = begin; i < text.size(); ++i) {
        const int high = text[i] == '%' && i + 2 < text.size() ? digit(text[i + 1], digits) : -1;
        const int low = high >= 0 ? digit(text[i + 2], digits) : -1;
        const bool isEncoded = low >= 0;
        const char c = isEncoded ? static_cast<char>(high * 16 + low) : text[i];
        const bool isTaken = isEncoded && isWanted(c);
        decoded += isTaken ? c : text[i];
        i += isTaken ? 2 : 0;
    }
    return decoded;
}

} // namespace

bool isPathCharacter(char c) {
    return isUnreserved(c) || std::string_view("!$&'()*+,;=:@").find(c) != std::string_view::npos;
}

bool isUnreserved(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' ||
           c == '.' || c == '_' || c == '~';
}

std::string decodePercent(std::string_view text) {
    return decode(text, [](char) { return true; });
}

std::string decodePartName(std::string name) {
    if (name.find('%') == std::string::npos)
        return name;
    const auto mustBeEncoded = [](char c) {
        return static_cast<unsigned char>(c) >= 0x80 ||
               std::string_view(" \"<>[]^`{|}").find(c) != std::string_view::npos;
    };
    return decode(name, mustBeEncoded, HexDigits::UpperCase);
}

std::string partKeyOf(std::string_view name) {
    std::string key = decode(name, [](char c) { return !isUnreserved(c) && c != '/' && c != '\\'; });
    lower(key);
    return key;
}

bool isPartKey(std::string_view name) {
    unsigned char changed = 0;
    for (const char c : name) // without a branch, for vector instructions
        changed = static_cast<unsigned char>(changed | (c == '%') | ((c >= 'A') & (c <= 'Z')));
    return changed == 0;
}

bool isPlainPartName(std::string_view name) {
    const auto isAllowed = [](char c) { return c == '/' || isUnreserved(c); };
    return isAbsolutePartName(name) && name.back() != '.' && name.find("./") == std::string_view::npos &&
           std::all_of(name.begin(), name.end(), isAllowed);
}

std::string keyOf(std::string_view name) {
    std::string key(name);
    lower(key);
    return key;
}

bool keyBeginsWith(std::string_view name, std::string_view key) {
    return name.size() >= key.size() &&
           std::equal(key.begin(), key.end(), name.begin(), [](char k, char c) { return k == lower(c); });
}

bool keyEndsWith(std::string_view name, std::string_view key) {
    return name.size() >= key.size() && keyBeginsWith(name.substr(name.size() - key.size()), key);
}

bool marksOtherFormat(std::string_view key) {
    return key == "/mimetype" || key.substr(0, 10) == "/meta-inf/";
}

bool isAbsolutePartName(std::string_view name) {
    if (name.empty() || name.front() != '/')
        return false;
    for (std::size_t begin = 1; begin <= name.size();) {
        const std::size_t end = std::min(name.find('/', begin), name.size());
        if (name.substr(begin, end - begin).find_first_not_of('.') == std::string_view::npos)
            return false;
        begin = end + 1;
    }
    return true;
}

std::string resolveTarget(std::string_view source, std::string_view target) {
    target = target.substr(0, std::min(target.find('?'), target.find('#')));
    std::string decoded;
    if (target.find('%') != std::string_view::npos)
        target = decoded = decodePercent(target);
    if (target.empty())
        return std::string(source);
    const bool isRelative = target.front() != '/' && target.front() != '\\';
    const std::string_view folder = isRelative ? source.substr(0, source.rfind('/') + 1) : std::string_view();
    std::string path;
    path.reserve(folder.size() + target.size());
    path.append(folder).append(target);
    std::replace(path.begin() + static_cast<std::ptrdiff_t>(folder.size()), path.end(), '\\', '/');
    const std::string_view whole = path;
    if (whole.find("//") == std::string_view::npos && whole.find("/.") == std::string_view::npos &&
        whole.back() != '/') // nothing to resolve
        return path;
    std::string resolved;
    resolved.reserve(whole.size());
    for (std::size_t begin = 1; begin <= whole.size();) {
        const std::size_t end = std::min(whole.find('/', begin), whole.size());
        const std::string_view segment = whole.substr(begin, end - begin);
        if (segment == ".." && !resolved.empty())
            resolved.erase(resolved.rfind('/'));
        else if (segment != ".." && segment != "." && !segment.empty())
            resolved.append(whole.substr(begin - 1, end - begin + 1)); // with the slash in front
        begin = end + 1;
    }
    return resolved;
}

std::string relationshipsNameOf(std::string_view source) {
    const std::size_t slash = source.rfind('/');
    return std::string(source.substr(0, slash))
        .append("/_rels/")
        .append(source.substr(slash + 1))
        .append(".rels");
}

bool isRelationshipsName(std::string_view name, std::string& source) {
    constexpr std::string_view FOLDER = "/_rels/";
    constexpr std::string_view EXTENSION = ".rels";
    const std::size_t slash = name.rfind('/');
    if (slash == std::string_view::npos || slash + 1 < FOLDER.size() ||
        name.size() - slash - 1 < EXTENSION.size() || !keyEndsWith(name, EXTENSION) ||
        !keyEndsWith(name.substr(0, slash + 1), FOLDER))
        return false;
    source = std::string(name.substr(0, slash + 2 - FOLDER.size()))
                 .append(name.substr(slash + 1, name.size() - slash - 1 - EXTENSION.size()));
    return true;
}

} // namespace opc::standard_signatures
