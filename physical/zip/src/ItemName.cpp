#include "ItemName.hpp"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>

namespace opc::physical::zip {

const char* const CONTENT_TYPES_ITEM = "[Content_Types].xml";
const char* const PACKAGE_RELATIONSHIPS_ITEM = "_rels/.rels";

namespace {

using std::string_view;

constexpr string_view SYSTEM_FOLDER = "__macosx/";
constexpr std::size_t LONGEST_NAME = 0xFFFF; // its length is a field of 16 bits

constexpr char lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

/// @param right  in lower case
bool equalsCaseless(string_view left, string_view right) {
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](char a, char b) { return lower(a) == b; });
}

bool startsCaseless(string_view text, string_view start) {
    return equalsCaseless(text.substr(0, start.size()), start);
}

bool removeEndCaseless(string_view& text, string_view end) {
    if (text.size() < end.size() || !equalsCaseless(text.substr(text.size() - end.size()), end))
        return false;
    text.remove_suffix(end.size());
    return true;
}

constexpr bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

constexpr bool isUnreserved(char c) {
    return isDigit(c) || (lower(c) >= 'a' && lower(c) <= 'z') ||
           string_view("-._~").find(c) != string_view::npos;
}

/// RFC 3986 pchar without the percent sign, which begins an encoded character.
bool isPlain(char c) {
    static constexpr auto TABLE = [] {
        std::array<bool, 256> table{};
        for (unsigned byte = 0; byte < table.size(); ++byte) {
            const char plain = static_cast<char>(byte);
            table[byte] =
                isUnreserved(plain) || string_view("!$&'()*+,;=:@").find(plain) != string_view::npos;
        }
        return table;
    }();
    return TABLE[static_cast<unsigned char>(c)];
}

int hexValue(char c) {
    if (isDigit(c))
        return c - '0';
    return lower(c) >= 'a' && lower(c) <= 'f' ? lower(c) - 'a' + 10 : -1;
}

const char* encodingDefect(string_view behindPercent) {
    const int high = behindPercent.empty() ? -1 : hexValue(behindPercent[0]);
    const int low = behindPercent.size() < 2 ? -1 : hexValue(behindPercent[1]);
    if (high < 0 || low < 0)
        return "a percent sign without two hexadecimal digits";
    const auto c = static_cast<char>(high * 16 + low);
    if (c == '/' || c == '\\')
        return "a percent-encoded slash or backslash";
    return isUnreserved(c) ? "a percent-encoded character that needs no encoding" : nullptr;
}

const char* segmentDefect(string_view segment) {
    if (segment.empty())
        return "an empty segment";
    for (std::size_t i = 0; i < segment.size(); ++i) {
        if (segment[i] == '%') {
            if (const char* defect = encodingDefect(segment.substr(i + 1)))
                return defect;
        } else if (!isPlain(segment[i])) {
            return "a character that must be percent-encoded";
        }
    }
    return segment.back() == '.' ? "a segment that ends in a dot" : nullptr;
}

/// "C:/a" and the like. A part could have this name, but unpacking such an archive would be dangerous.
bool isDrivePath(string_view path) {
    const char letter = path.empty() ? '\0' : lower(path[0]);
    return letter >= 'a' && letter <= 'z' && path.substr(1, 2) == ":/";
}

/// The rules [M1.1] to [M1.10] that concern a single name, and what an archive can't hold safely.
/// @param name  without its first slash
const char* defectOf(string_view name) {
    if (isDrivePath(name))
        return "a drive in front";
    for (;;) {
        const string_view segment = name.substr(0, name.find('/'));
        if (const char* defect = segmentDefect(segment))
            return defect;
        if (segment.size() == name.size())
            return nullptr;
        name.remove_prefix(segment.size() + 1);
    }
}

/// Removes "/[3].piece" or "/[3].last.piece" from the end of `name`.
std::optional<ItemName::Piece> removePiece(string_view& name) {
    string_view left = name;
    if (!removeEndCaseless(left, "].piece") && !removeEndCaseless(left, "].last.piece"))
        return std::nullopt;
    const std::size_t start = left.rfind("/[");
    if (start == string_view::npos)
        return std::nullopt;
    const string_view digits = left.substr(start + 2);
    const bool canonical = digits.size() == 1 || (digits.size() > 1 && digits[0] != '0');
    if (!canonical || digits.size() > 9 || !std::all_of(digits.begin(), digits.end(), isDigit))
        return std::nullopt;
    const bool last = name.size() - left.size() > string_view("].piece").size();
    name = name.substr(0, start);
    return ItemName::Piece{static_cast<std::uint32_t>(std::stoul(std::string(digits))), last};
}

constexpr string_view RELATIONSHIPS_FOLDER = "_rels/";
constexpr string_view RELATIONSHIPS_EXTENSION = ".rels";

/// The position of the folder in the name of a relationships part, in any letter case; nothing if it is no such name.
std::optional<std::size_t> findRelationshipsFolder(string_view name) {
    if (!removeEndCaseless(name, RELATIONSHIPS_EXTENSION))
        return std::nullopt;
    const std::size_t file = name.rfind('/') + 1; // 0 if there is no slash
    const std::size_t folder = file - std::min(file, RELATIONSHIPS_FOLDER.size());
    if (!equalsCaseless(name.substr(folder, file - folder), RELATIONSHIPS_FOLDER) ||
        (folder > 0 && name[folder - 1] != '/'))
        return std::nullopt;
    return folder;
}

/// Changes `_rels` and `.rels` in the name of a relationships part to the letter case of the standard.
void standardizeRelationships(std::string& name) {
    if (const auto folder = findRelationshipsFolder(name))
        name.replace(*folder, RELATIONSHIPS_FOLDER.size(), RELATIONSHIPS_FOLDER)
            .replace(name.size() - RELATIONSHIPS_EXTENSION.size(), RELATIONSHIPS_EXTENSION.size(),
                     RELATIONSHIPS_EXTENSION);
}

bool hasStandardCase(string_view name) {
    const auto folder = findRelationshipsFolder(name);
    return !folder || (name.compare(*folder, RELATIONSHIPS_FOLDER.size(), RELATIONSHIPS_FOLDER) == 0 &&
                       name.substr(name.size() - RELATIONSHIPS_EXTENSION.size()) == RELATIONSHIPS_EXTENSION);
}

} // namespace

std::string encodeItemName(string_view item) {
    static const char* const HEX = "0123456789ABCDEF";
    const auto stays = [](char c) { return c == '/' || c == '%' || isPlain(c); };
    const auto* next = std::find_if_not(item.begin(), item.end(), stays); // nearly always the end
    std::string name(item.begin(), next);
    for (; next != item.end(); ++next) {
        const auto byte = static_cast<unsigned char>(*next);
        if (stays(*next))
            name += *next;
        else
            name.append({'%', HEX[byte >> 4], HEX[byte & 15]});
    }
    return name;
}

namespace {

const char* reasonToRefuse(string_view item) {
    if (item.substr(0, 1) == "/")
        return "its name is an absolute path";
    if (isDrivePath(item))
        return "its name begins with a drive";
    for (std::size_t start = 0; start < item.size();) {
        const std::size_t end = std::min(item.find('/', start), item.size());
        if (item.substr(start, end - start) == "..")
            return "its name leads to a folder above";
        start = end + 1;
    }
    return nullptr;
}

const char* reasonToIgnore(string_view item) {
    if (item.empty())
        return "an empty name";
    if (startsCaseless(item, "[trash]/"))
        return "a trash item";
    if (startsCaseless(item, SYSTEM_FOLDER))
        return "metadata of the system that wrote the archive";
    return item.back() == '/' ? "a folder" : nullptr;
}

} // namespace

ItemName readItemName(string_view item) {
    ItemName result;
    std::string straight;
    if (item.find('\\') != string_view::npos) {
        straight = item;
        std::replace(straight.begin(), straight.end(), '\\', '/');
        item = straight;
    }
    if (const char* reason = reasonToRefuse(item)) {
        result.kind = ItemName::Kind::Refused;
        result.reason = reason;
        return result;
    }
    if (const char* reason = reasonToIgnore(item)) {
        result.reason = reason;
        return result;
    }
    result.piece = removePiece(item);
    if (equalsCaseless(item, "[content_types].xml")) {
        result.kind = ItemName::Kind::ContentTypes;
        return result;
    }
    result.partName = encodeItemName(item);
    standardizeRelationships(result.partName);
    if (const char* defect = defectOf(result.partName)) {
        result.reason = std::string("no part name: ") + defect;
        return result;
    }
    result.kind = ItemName::Kind::Part;
    return result;
}

const char* nameDefectForOthers(string_view item) {
    const auto isAllowed = [](char c) {
        return c == '/' || c == '%' || isPlain(c) || static_cast<unsigned char>(c) >= 0x80;
    };
    if (item.find('\\') != string_view::npos)
        return "its name has a backslash";
    removePiece(item);
    if (equalsCaseless(item, "[content_types].xml"))
        return item == CONTENT_TYPES_ITEM ? nullptr : "its name has another letter case than the standard's";
    if (!std::all_of(item.begin(), item.end(), isAllowed))
        return "its name has a character that must be percent-encoded";
    return hasStandardCase(item) ? nullptr
                                 : "its name has another letter case than that of relationships parts";
}

bool isFolderName(string_view item) {
    return !item.empty() && (item.back() == '/' || item.back() == '\\');
}

bool isUsualItemName(string_view item) {
    char last = '/';
    for (const char c : item) {
        if (c == '/' ? last == '/' || last == '.' : !isPlain(c) || c == ':' || c == ';')
            return false;
        last = c;
    }
    return last != '/' && last != '.' && !startsCaseless(item, SYSTEM_FOLDER) && hasStandardCase(item);
}

const char* partNameDefect(string_view name) {
    if (name.substr(0, 1) != "/")
        return "no slash in front";
    name.remove_prefix(1);
    if (name.size() > LONGEST_NAME)
        return "longer than an archive can hold";
    if (const char* defect = defectOf(name))
        return defect;
    return hasStandardCase(name) ? reasonToIgnore(name)
                                 : "the name of a relationships part in another letter case";
}

} // namespace opc::physical::zip
