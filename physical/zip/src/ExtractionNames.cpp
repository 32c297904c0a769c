#include "ExtractionNames.hpp"

#include "ItemName.hpp"

#include <algorithm>
#include <iterator>

namespace opc::physical::zip {

namespace {

using std::string_view;

bool isASCIIDigit(char c) {
    return c >= '0' && c <= '9';
}

bool isLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

bool isControl(char c) {
    return static_cast<unsigned char>(c) < ' ' || c == '\x7F';
}

std::string toLowerCase(std::string text) {
    for (char& c : text)
        c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    return text;
}

/// On some systems "a;12" is version 12 of "a".
void dropVersion(std::string& segment) {
    const std::size_t semicolon = segment.rfind(';');
    if (semicolon != std::string::npos &&
        std::all_of(segment.begin() + static_cast<std::ptrdiff_t>(semicolon) + 1, segment.end(),
                    isASCIIDigit))
        segment.resize(semicolon);
}

/// On some systems "a::$DATA" is the file "a"; with the other endings it is the folder.
void dropStream(std::string& segment) {
    for (const string_view stream : {"::$data", "::$index_allocation", ":$i30:$index_allocation"}) {
        const std::size_t start = segment.size() - std::min(segment.size(), stream.size());
        if (toLowerCase(segment.substr(start)) == stream)
            return segment.resize(start);
    }
}

void dropDrive(std::string& segment) {
    if (segment.size() > 1 && isLetter(segment[0]) && segment[1] == ':')
        segment.erase(0, 2);
}

std::string simplifySegment(string_view segment) {
    std::string simple;
    std::remove_copy_if(segment.begin(), segment.end(), std::back_inserter(simple), isControl);
    dropVersion(simple);
    dropStream(simple);
    simple.resize(simple.find_last_not_of(". ") + 1); // 0 if nothing else is left
    return simple;
}

/// @param folder  ends in a slash, or is empty
void dropLastSegment(std::string& folder) {
    folder.resize(folder.find_last_not_of('/') + 1);
    folder.resize(folder.rfind('/') + 1);
}

/// Joins the segments of a name that count.
std::string simplify(string_view name) {
    std::string simple;
    while (!name.empty()) {
        const string_view segment = name.substr(0, name.find_first_of("/\\"));
        name.remove_prefix(std::min(segment.size() + 1, name.size()));
        std::string kept = simplifySegment(segment);
        if (simple.empty())
            dropDrive(kept);
        if (segment == "..") // only in a decoded name: others with it are refused
            dropLastSegment(simple);
        else if (!kept.empty())
            simple += kept + '/';
    }
    simple.resize(simple.find_last_not_of('/') + 1);
    return simple;
}

std::string decode(string_view name) {
    const auto value = [&](std::size_t i) {
        return string_view("0123456789abcdef").find(static_cast<char>(i < name.size() ? name[i] | 0x20 : 0));
    };
    std::string decoded;
    for (std::size_t i = 0; i < name.size(); ++i) {
        const bool isEncoded = name[i] == '%' && value(i + 1) < 16 && value(i + 2) < 16;
        decoded += isEncoded ? static_cast<char>(value(i + 1) * 16 + value(i + 2)) : name[i];
        i += isEncoded ? 2 : 0;
    }
    return decoded;
}

/// The name of a part, in lower case.
std::string keyOf(string_view itemName) {
    return toLowerCase(encodeItemName(itemName));
}

std::string simpleKey(string_view itemName) {
    return keyOf(simplify(itemName));
}

std::string decodedKey(string_view itemName) {
    return keyOf(simplify(decode(simplify(itemName))));
}

} // namespace

std::string extractedName(string_view itemName, bool isPart) {
    return isPart ? simpleKey(itemName) : decodedKey(itemName);
}

bool changesWhenExtracted(string_view itemName) {
    const std::string bare = decode(itemName);
    return simplify(itemName) != itemName || simplify(bare) != bare;
}

bool isPlainPartName(string_view name) {
    return std::none_of(name.begin(), name.end(), [](char c) { return c == '%' || c == ':' || c == ';'; });
}

std::optional<std::string> ExtractionNames::addIgnored(string_view itemName) {
    for (const std::string& key : {simpleKey(itemName), decodedKey(itemName)}) {
        if (auto other = findPart(key))
            return other;
        if (const auto found = decoded.find(key); found != decoded.end())
            return found->second;
        ignored.emplace(key, itemName);
    }
    return std::nullopt;
}

std::optional<std::string> ExtractionNames::addOwned(string_view partName, string_view itemName) {
    const bool isUsual = partName == itemName && isPlainPartName(partName);
    if (isUsual && ignored.empty() && owned.empty())
        return std::nullopt;
    const std::string own = keyOf(partName);
    if (own == keyOf(CONTENT_TYPES_ITEM) && partName != CONTENT_TYPES_ITEM)
        return CONTENT_TYPES_ITEM;
    const std::string simple = isUsual ? own : simpleKey(itemName);
    const std::string bare = isUsual ? own : decodedKey(itemName);
    for (const std::string& key : {own, simple, bare}) {
        if (const auto found = ignored.find(key); found != ignored.end())
            return found->second;
    }
    for (const std::string& key : {own, simple}) {
        auto other = findPart(key);
        if (other && keyOf(*other) != own)
            return other;
    }
    if (simple != own)
        owned[simple] = partName;
    if (bare != own)
        decoded[bare] = partName;
    return std::nullopt;
}

/// @param key  a simplified name
std::optional<std::string> ExtractionNames::findPart(const std::string& key) const {
    if (const ZipPart* part = parts.find(key))
        return std::string(part->name);
    if (key == keyOf(CONTENT_TYPES_ITEM))
        return CONTENT_TYPES_ITEM;
    const auto found = owned.find(key);
    if (found == owned.end() || (found->second != CONTENT_TYPES_ITEM && !parts.find(found->second)))
        return std::nullopt; // the part has been deleted meanwhile
    return found->second;
}

} // namespace opc::physical::zip
