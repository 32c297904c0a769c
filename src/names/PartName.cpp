#include <opc/model/PartName.hpp>

#include <opc/core/Text.hpp>
#include <opc/model/Errors.hpp>

#include <algorithm>
#include <cstdint>
#include <string_view>
#include <utility>

namespace opc::model {

namespace {

using std::u16string_view;

bool endsWith(u16string_view text, u16string_view end) {
    return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
}

/// The value of a hexadecimal digit; -1 for other characters.
int hexValue(char16_t unit) {
    if (unit >= u'0' && unit <= u'9')
        return unit - u'0';
    if (unit >= u'a' && unit <= u'f')
        return unit - u'a' + 10;
    return unit >= u'A' && unit <= u'F' ? unit - u'A' + 10 : -1;
}

/// Whether a quick look shows that a URI begins with a slash and follows the rules for segments: it has no escapes,
/// and no slash or dot comes before another slash or the end.
bool hasPlainSegments(u16string_view text) {
    if (text.size() < 2 || text.front() != u'/' || text.back() == u'/' || text.back() == u'.')
        return false;
    std::uint16_t isOdd = 0; // a number, without an exit: so the compiler handles many at once
    for (std::size_t i = 1; i < text.size(); ++i) {
        const int endsSegment{text[i] == u'/'};
        const int isNoEnd = int{text[i - 1] == u'/'} | int{text[i - 1] == u'.'};
        isOdd |= static_cast<std::uint16_t>(int{text[i] == u'%'} | (endsSegment & isNoEnd));
    }
    return isOdd == 0;
}

} // namespace

PartName::PartName(std::u16string name) : uri(std::move(name)) {
    init();
}

PartName::PartName(const URI& name) : uri(name) {
    init();
}

PartName::PartName(const char16_t* name) : uri(name) {
    init();
}

void PartName::init() {
    const u16string_view path = uri.path();
    isPackageRoot = path.size() == 1 && path.front() == URI::getSlash();
    if (isPackageRoot)
        return;
    if (!hasPlainSegments(uri.text()))
        throwExceptionIfInvalidPartUri(uri);
    isRelationship = isRelationshipPath(path);
}

URI PartName::getURI() const {
    return uri;
}

std::u16string PartName::toString() const {
    return uri.toString();
}

bool PartName::hasText(u16string_view text) const noexcept {
    return uri.text() == text;
}

std::u16string PartName::getExtension() const {
    return detail::getExtension(uri.path());
}

bool PartName::isRelationshipName() const {
    return isRelationship;
}

std::u16string PartName::getRelationshipPartName() const {
    if (isPackageRoot)
        return PACKAGE_RELATIONSHIPS_ROOT_NAME;
    if (isRelationship)
        throw InvalidPartName("Relationship part can't have an associated relationship part name");
    const u16string_view path = uri.path();
    const std::size_t file = path.rfind(URI::getSlash()) + 1;
    std::u16string name;
    name.reserve(path.size() + 11); // of "_rels/" and ".rels"
    name.append(path.substr(0, file)).append(RELATIONSHIP_PART_SEGMENT_NAME).append(FORWARD_SLASH_STRING);
    return name.append(path.substr(file)).append(RELATIONSHIP_PART_EXTENSION_NAME);
}

std::u16string PartName::getSourcePartName() const {
    if (!isRelationship)
        throw InvalidPartName("Part name is not a relationship part name.");
    if (uri.text() == PACKAGE_RELATIONSHIPS_ROOT_NAME)
        return FORWARD_SLASH_STRING;
    // The path has at least the two slashes around "_rels", and ends in the extension.
    const u16string_view path = uri.path();
    const std::size_t slash = path.rfind(URI::getSlash());
    const std::size_t extension = u16string_view(RELATIONSHIP_PART_EXTENSION_NAME).size();
    const u16string_view file = path.substr(slash + 1, path.size() - slash - 1 - extension);
    return std::u16string(path.substr(0, path.rfind(URI::getSlash(), slash - 1)))
        .append(FORWARD_SLASH_STRING)
        .append(file);
}

bool PartName::operator==(const PartName& other) const {
    return uri == other.uri;
}

bool PartName::operator!=(const PartName& other) const {
    return uri != other.uri;
}

bool PartName::operator<(const PartName& other) const {
    return uri < other.uri;
}

bool PartName::isRelationshipPath(u16string_view path) {
    return endsWith(path, RELATIONSHIP_PART_EXTENSION_NAME) && path.find(u"/_rels/") != u16string_view::npos;
}

void PartName::throwExceptionIfInvalidPartUri(const URI& uri) {
    throwExceptionIfEmptyURI(uri);
    throwExceptionIfAbsoluteUri(uri);
    throwExceptionIfPartNameDoesNotStartWithForwardSlash(uri);
    throwExceptionIfPartNameEndsWithForwardSlash(uri);
    throwExceptionIfPartNameHasInvalidSegments(uri);
}

void PartName::throwExceptionIfEmptyURI(const URI& uri) {
    if (uri.text().empty())
        throw InvalidPartName("A part name shall not be empty [M1.1]");
}

void PartName::throwExceptionIfAbsoluteUri(const URI& uri) {
    if (uri.isAbsolute())
        throw InvalidPartName("Absolute URI forbidden as a part name.");
}

void PartName::throwExceptionIfPartNameDoesNotStartWithForwardSlash(const URI& uri) {
    if (!uri.hasAbsolutePath())
        throw InvalidPartName("A part name shall start with a forward slash ('/') character [M1.4]");
}

void PartName::throwExceptionIfPartNameEndsWithForwardSlash(const URI& uri) {
    if (endsWith(uri.text(), FORWARD_SLASH_STRING))
        throw InvalidPartName("A part name shall not have a forward slash as the last character [M1.5]");
}

void PartName::throwExceptionIfPartNameHasInvalidSegments(const URI& uri) {
    // The whole text counts, including a query and a fragment. A text without a slash is one segment.
    u16string_view rest = uri.text();
    rest.remove_prefix(rest.find(URI::getSlash()) + 1);
    for (bool last = false; !last;) {
        const std::size_t end = rest.find(URI::getSlash());
        last = end == u16string_view::npos;
        const u16string_view segment = rest.substr(0, end);
        if (segment.empty())
            throw InvalidPartName("A part name shall not have empty segments [M1.3]");
        if (segment.back() == URI::getDot()) {
            if (segment.find_first_not_of(URI::getDot()) == u16string_view::npos)
                throw InvalidPartName("A segment shall include at least one non-dot character. [M1.10]");
            throw InvalidPartName("A segment shall not end with a dot ('.') character [M1.9]");
        }
        checkPCharCompliance(segment);
        rest.remove_prefix(last ? rest.size() : end + 1);
    }
}

void PartName::checkPCharCompliance(u16string_view segment) {
    // In a URI, two hexadecimal digits follow each percent sign.
    for (std::size_t at = segment.find(u'%'); at != u16string_view::npos && segment.size() - at > 2;
         at = segment.find(u'%', at + 3)) {
        const int value = 16 * hexValue(segment[at + 1]) + hexValue(segment[at + 2]);
        if (value == '/' || value == '\\')
            throw InvalidPartName(
                "A segment shall not contain percent-encoded forward slash ('/'), or backward "
                "slash ('') characters. [M1.7]");
        if (value > 0 && value < 128 &&
            std::string_view(URI::UNRESERVED).find(static_cast<char>(value)) != std::string_view::npos)
            throw InvalidPartName(
                "A segment shall not contain percent-encoded unreserved characters. [M1.8]");
    }
}

bool operator==(const PartName& left, const std::u16string& right) {
    return left.uri == right;
}

bool operator!=(const PartName& left, const std::u16string& right) {
    return !(left == right);
}

bool operator<(const PartName& left, const std::u16string& right) {
    return left.uri < right;
}

bool operator==(const std::u16string& left, const PartName& right) {
    return right == left;
}

bool operator!=(const std::u16string& left, const PartName& right) {
    return !(right == left);
}

bool operator<(const std::u16string& left, const PartName& right) {
    return left < right.uri;
}

} // namespace opc::model
