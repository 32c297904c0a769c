#include "checks/names/NameChecks.hpp"

#include "checks/container/ContainerChecks.hpp"
#include "subject/Names.hpp"

#include "zip/src/ExtractionNames.hpp"
#include "zip/src/ItemName.hpp"

#include <algorithm>
#include <array>
#include <iterator>
#include <string_view>

namespace opc::inspection {

namespace {

using std::string_view;

bool isASCII(char c) {
    return (static_cast<unsigned char>(c) & 0x80U) == 0;
}

bool isLetterOrDigit(char c) {
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

bool isUnreserved(char c) {
    return isLetterOrDigit(c) || string_view("-._~").find(c) != string_view::npos;
}

/// RFC 3986 pchar without the percent sign.
bool isPlain(char c) {
    return isUnreserved(c) || string_view("!$&'()*+,;=:@").find(c) != string_view::npos;
}

std::string describeCharacter(char c) {
    constexpr string_view DIGITS = "0123456789ABCDEF";
    const auto byte = static_cast<unsigned char>(c);
    if (c == ' ')
        return "a blank";
    if (byte < 0x20 || byte == 0x7F)
        return std::string("the control character 0x") + DIGITS[byte >> 4U] + DIGITS[byte & 15U];
    return std::string("the character ") + c;
}

int hexValue(char c) {
    return c >= '0' && c <= '9'   ? c - '0'
           : c >= 'A' && c <= 'F' ? c - 'A' + 10
           : c >= 'a' && c <= 'f' ? c - 'a' + 10
                                  : -1;
}

bool startsWithDrive(string_view name) {
    return name.size() > 1 && isLetterOrDigit(name[0]) && !(name[0] >= '0' && name[0] <= '9') &&
           name[1] == ':' && (name.size() == 2 || name[2] == '/');
}

bool hasOnlyDots(string_view segment) {
    return segment.find_first_not_of('.') == string_view::npos;
}

/// Names of devices on Windows, with or without an extension.
bool isDevice(string_view segment) {
    const string_view stem = segment.substr(0, segment.find('.'));
    constexpr string_view DEVICES[] = {"CON", "PRN", "AUX", "NUL"};
    if (std::any_of(std::begin(DEVICES), std::end(DEVICES),
                    [stem](string_view device) { return equalsCaseless(stem, device); }))
        return true;
    return stem.size() == 4 && stem[3] >= '1' && stem[3] <= '9' &&
           (equalsCaseless(stem.substr(0, 3), "COM") || equalsCaseless(stem.substr(0, 3), "LPT"));
}

/// Characters that turn the direction of writing, or mark it: in UTF-8.
bool turnsDirection(string_view name) {
    constexpr string_view MARKS[] = {"\xE2\x80\x8E", "\xE2\x80\x8F", "\xE2\x80\xAA", "\xE2\x80\xAB",
                                     "\xE2\x80\xAC", "\xE2\x80\xAD", "\xE2\x80\xAE", "\xE2\x81\xA6",
                                     "\xE2\x81\xA7", "\xE2\x81\xA8", "\xE2\x81\xA9"};
    return std::any_of(std::begin(MARKS), std::end(MARKS),
                       [name](string_view mark) { return name.find(mark) != string_view::npos; });
}

class SpellingCheck {
public:
    SpellingCheck(const ArchiveItem& item, Findings& findings) : item(item), findings(findings) {}

    void checkItemName(string_view name);
    void checkPartName(string_view name);

private:
    void checkSegment(string_view segment);
    void checkCharacters(string_view segment);
    void checkEncoded(string_view behindPercent);

    /// Each rule is told once for a name.
    void add(string_view rule, const std::string& message, Severity severity) {
        const string_view* const first = told.data();
        const string_view* const last = first + toldCount;
        if (std::find(first, last, rule) != last || toldCount == told.size())
            return;
        told[toldCount++] = rule;
        findings.add(rule, severity, placeOf(item), message);
    }
    void error(string_view rule, const std::string& message) { add(rule, message, Severity::Error); }

    /// What leads out of a folder is worse than what the standard only forbids.
    void escape(string_view rule, const std::string& message) {
        error(findings.wants("SEC-55") ? "SEC-55" : rule, message);
    }

    const ArchiveItem& item;
    Findings& findings;
    std::array<string_view, 12> told;
    std::size_t toldCount = 0;
};

/// What counts for every item, part or not.
void SpellingCheck::checkItemName(string_view name) {
    if (name.find('\\') != string_view::npos)
        error("M3.2", "The name of the item has a backslash");
    if (name.find('\0') != string_view::npos)
        escape("M3.2", "The name of the item has a zero byte");
    if (startsWithDrive(name))
        escape("M3.2", "The name of the item begins with a drive");
    if (name.substr(0, 1) == "/" || name.substr(0, 1) == "\\")
        escape("M1.3", "The name of the item is an absolute path");
    if (turnsDirection(name))
        error("SEC-55", "The name of the item has characters that turn the direction of writing");
    constexpr std::size_t LONGEST_PATH = 255;
    if (name.size() > LONGEST_PATH)
        add("S3.1", "The name of the item has " + std::to_string(name.size()) + " bytes", Severity::Info);
    for (std::size_t start = 0; start < name.size();) {
        const std::size_t end = std::min(name.find_first_of("/\\", start), name.size());
        const string_view segment = name.substr(start, end - start);
        if (segment == "..")
            escape("M1.10", "The name of the item leads to a folder above");
        else if (isDevice(segment))
            add(findings.wants("SEC-55") ? "SEC-55" : "S3.1",
                "The name of the item has the name of a device of Windows",
                findings.wants("SEC-55") ? Severity::Warning : Severity::Info);
        start = end + 1;
    }
}

void SpellingCheck::checkPartName(string_view name) {
    if (name.substr(0, 1) == "/")
        name.remove_prefix(1);
    if (findings.wants("SEC-55") && name.find_first_of("%:;") != string_view::npos &&
        physical::zip::readItemName(name).kind == physical::zip::ItemName::Kind::Part &&
        physical::zip::changesWhenExtracted(name))
        add("SEC-55", "Some systems change the name of the item when they extract it", Severity::Warning);
    for (;;) {
        const string_view segment = name.substr(0, name.find('/'));
        checkSegment(segment);
        if (segment.size() == name.size())
            return;
        name.remove_prefix(segment.size() + 1);
    }
}

void SpellingCheck::checkSegment(string_view segment) {
    if (segment.empty())
        return error("M1.3", "The part name has an empty segment");
    if (hasOnlyDots(segment)) {
        if (segment != "..")
            error("M1.10", "The part name has a segment of dots alone");
        return;
    }
    if (segment.back() == '.')
        error("M1.9", "The part name has a segment that ends in a dot");
    checkCharacters(segment);
    if (segment.find_first_of("*:;") != string_view::npos)
        add("S3.1", "The name of the item has a character that file systems don't allow", Severity::Info);
}

void SpellingCheck::checkCharacters(string_view segment) {
    for (std::size_t i = 0; i < segment.size(); ++i) {
        if (segment[i] == '%')
            checkEncoded(segment.substr(i + 1));
        else if (isASCII(segment[i]) && !isPlain(segment[i]) && segment[i] != '\0')
            error("M1.6", "The part name has " + describeCharacter(segment[i]));
    }
}

void SpellingCheck::checkEncoded(string_view behindPercent) {
    const int high = behindPercent.empty() ? -1 : hexValue(behindPercent[0]);
    const int low = behindPercent.size() < 2 ? -1 : hexValue(behindPercent[1]);
    if (high < 0 || low < 0)
        return error("M1.6", "The part name has a percent sign without two hexadecimal digits");
    const auto c = static_cast<char>(high * 16 + low);
    if (c == '/' || c == '\\')
        error("M1.7", "The part name has a percent-encoded slash or backslash");
    else if (isASCII(c) && isUnreserved(c))
        error("M1.8", std::string("The part name has a percent-encoded ") + c);
}

} // namespace

void checkSpelling(const ArchiveItem& item, Findings& findings) {
    SpellingCheck check(item, findings);
    if (item.name.empty())
        return findings.add("M1.1", placeOf(item), "The name of the item is empty");
    check.checkItemName(item.name);
    if (const std::string name = intendedName(item); !name.empty())
        check.checkPartName(name);
}

} // namespace opc::inspection
