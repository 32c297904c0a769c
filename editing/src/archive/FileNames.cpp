#include "archive/FileNames.hpp"

#include <opc/core/PrintableText.hpp>
#include <opc/inspection/FoldedName.hpp>

#include <algorithm>
#include <array>

namespace opc::editing::archive {

using inspection::foldedName;

namespace {

using std::string_view;

constexpr std::size_t LONGEST_SEGMENT = 200; // bytes; systems take 255, and a number may be added
constexpr std::size_t LONGEST_PATH = 1'000;
constexpr std::size_t MOST_FOLDERS = 64;

bool isUnsafe(char c) {
    return static_cast<unsigned char>(c) < ' ' || string_view("<>:\"|?*\x7F").find(c) != string_view::npos;
}

std::string toLowerCase(string_view text) {
    std::string lower(text);
    for (char& c : lower)
        c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    return lower;
}

/// Git and this tool take files with such names for their own, and Git by other spellings, too.
bool isTaken(string_view segment, bool isFirst) {
    const std::string lower = toLowerCase(segment);
    return lower.compare(0, 4, ".git") == 0 || lower.compare(0, 4, "git~") == 0 ||
           (isFirst && lower == ".opctool");
}

void shorten(std::string& segment) {
    if (segment.size() <= LONGEST_SEGMENT)
        return;
    std::size_t size = LONGEST_SEGMENT;
    while ((static_cast<unsigned char>(segment[size]) & 0xC0U) == 0x80U) // within a character
        --size;
    segment.resize(size);
}

std::string makeSafe(string_view segment, bool isFirst) {
    std::string safe(segment);
    const std::string visible = withoutControlCharacters(safe); // Git drops some that nobody sees
    if (visible != safe)
        safe = visible;
    std::replace_if(safe.begin(), safe.end(), isUnsafe, '_');
    shorten(safe);
    if (safe.empty())
        return "_";
    if (safe.back() == '.' || safe.back() == ' ')
        safe.back() = '_';
    return isDeviceName(safe) || isTaken(safe, isFirst) ? '_' + safe : safe;
}

/// "a~2.xml"
std::string numbered(const std::string& segment, std::size_t number) {
    const std::size_t dot = std::min(segment.rfind('.'), segment.size());
    return segment.substr(0, dot) + '~' + std::to_string(number) + segment.substr(dot);
}

} // namespace

bool isDeviceName(string_view name) {
    std::string stem = toLowerCase(name.substr(0, name.find('.')));
    stem.resize(stem.find_last_not_of(' ') + 1);
    static constexpr string_view DEVICES[] = {"con", "prn", "aux", "nul", "conin$", "conout$"};
    if (std::find(std::begin(DEVICES), std::end(DEVICES), stem) != std::end(DEVICES))
        return true;
    const string_view port = string_view(stem).substr(0, 3);
    const string_view number = string_view(stem).substr(port.size());
    const bool isNumber = (number.size() == 1 && number[0] >= '0' && number[0] <= '9') ||
                          number == "\u00B9" || number == "\u00B2" || number == "\u00B3";
    return (port == "com" || port == "lpt") && isNumber;
}

FileNames::Name FileNames::add(string_view item) {
    Name result;
    std::string path(item);
    std::replace(path.begin(), path.end(), '\\', '/');
    const auto depth = static_cast<std::size_t>(std::count(path.begin(), path.end(), '/'));
    if (path.size() > LONGEST_PATH || depth > MOST_FOLDERS) {
        path = "_/" + path.substr(path.rfind('/') + 1);
        result.why = "too long";
    }
    std::size_t folder = 0;
    std::size_t start = 0;
    for (std::size_t end = path.find('/'); end != std::string::npos; end = path.find('/', start)) {
        folder = enter(folder, makeSafe(string_view(path).substr(start, end - start), start == 0), result);
        start = end + 1;
    }
    const std::string safe = makeSafe(string_view(path).substr(start), start == 0);
    const std::string name = freeName(folder, safe);
    places.emplace(Key(folder, foldedName(name)), Place{name, 0});
    result.path += name;
    if (result.path == item)
        result.why.clear();
    else if (result.why.empty())
        result.why = name != safe ? "another file or folder has this name on some systems"
                                  : "not every system can hold the name";
    return result;
}

/// Goes into a folder, which may be new.
std::size_t FileNames::enter(std::size_t folder, const std::string& segment, Name& result) {
    const Key key(folder, foldedName(segment));
    const auto found = places.find(key);
    if (found != places.end() && found->second.folder != 0) {
        result.path += found->second.name + '/';
        return found->second.folder;
    }
    std::string name = segment;
    if (found != places.end()) { // a file has the name
        if (const auto beside = besides.find(key); beside != besides.end()) {
            result.path += beside->second.name + '/';
            return beside->second.folder;
        }
        name = freeName(folder, segment);
    }
    const Place made{name, ++folders};
    places.emplace(Key(folder, foldedName(name)), made);
    if (name != segment)
        besides.emplace(key, made);
    result.path += name + '/';
    return made.folder;
}

/// The name itself, or the first one with a number, that no file or folder there has.
std::string FileNames::freeName(std::size_t folder, const std::string& segment) {
    const Key key(folder, foldedName(segment));
    if (places.find(key) == places.end())
        return segment;
    std::size_t& number = numbers.try_emplace(key, 1).first->second;
    std::string name;
    do
        name = numbered(segment, ++number);
    while (places.find(Key(folder, foldedName(name))) != places.end());
    return name;
}

} // namespace opc::editing::archive
