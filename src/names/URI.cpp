#include <opc/model/URI.hpp>

#include <bedrock/network/IRI.hpp>
#include <opc/core/Text.hpp>
#include <opc/model/Errors.hpp>

#include <algorithm>
#include <utility>

namespace opc::model {

namespace {

constexpr auto AS_WRITTEN = bedrock::network::iri::Encoding::AsWritten;

} // namespace

struct URI::Impl {
    explicit Impl(std::u16string reference) : iri(std::move(reference)) {}

    const bedrock::network::IRI iri; // owns the text
};

URI::URI(std::u16string text) {
    init(std::move(text));
}

URI::URI(const char16_t* text) {
    init(text == nullptr ? std::u16string() : std::u16string(text));
}

void URI::init(std::u16string reference) {
    // Whether all code units are ASCII, as nearly always. The loop has no exit, so the compiler handles many at once.
    char16_t bits = 0;
    for (const char16_t unit : reference)
        bits |= unit;
    if (bits > 127)
        throw InvalidURI("Could not successfully parse URI string. URI must contain only US-ASCII.");
    try {
        static const auto EMPTY = std::make_shared<const Impl>(std::u16string()); // all empty URIs share it
        impl = reference.empty() ? EMPTY : std::make_shared<const Impl>(std::move(reference));
    } catch (...) {
        throw InvalidURI("Could not successfully parse URI string.");
    }
}

const std::u16string& URI::text() const noexcept {
    return impl->iri.toString();
}

std::u16string_view URI::path() const noexcept {
    const std::u16string_view reference = text();
    if (isOpaque())
        return {};
    std::size_t begin = hasScheme() ? reference.find(getColon()) + 1 : 0;
    if (hasAuthority())
        begin = std::min(reference.find_first_of(u"/?#", begin + 2), reference.size());
    const bool atEnd = !hasQuery() && !hasFragment(); // nearly always true, without a search
    return reference.substr(begin, atEnd ? std::u16string_view::npos
                                         : reference.find_first_of(u"?#", begin) - begin);
}

std::u16string URI::toString() const {
    return text();
}

bool URI::isOpaque() const {
    return impl->iri.isOpaque();
}

bool URI::isAbsolute() const {
    return impl->iri.isAbsolute();
}

bool URI::hasScheme() const {
    return impl->iri.hasScheme();
}

bool URI::hasFragment() const {
    return impl->iri.hasFragment();
}

bool URI::hasAuthority() const {
    return !isOpaque() && impl->iri.hasAuthority();
}

bool URI::hasQuery() const {
    return !isOpaque() && impl->iri.hasQuery();
}

bool URI::hasAbsolutePath() const {
    return !isOpaque() && impl->iri.hasAbsolutePath();
}

std::u16string URI::getScheme() const {
    return hasScheme() ? impl->iri.getScheme() : std::u16string();
}

std::u16string URI::getSchemeSpecificPart() const {
    return impl->iri.getSchemeSpecificPart(AS_WRITTEN);
}

std::u16string URI::getAuthority() const {
    return hasAuthority() ? impl->iri.getAuthority(AS_WRITTEN) : std::u16string();
}

std::u16string URI::getPath() const {
    return std::u16string(path());
}

std::u16string URI::getQuery() const {
    return hasQuery() ? impl->iri.getQuery(AS_WRITTEN) : std::u16string();
}

std::u16string URI::getFragment() const {
    return hasFragment() ? impl->iri.getFragment(AS_WRITTEN) : std::u16string();
}

char16_t URI::getSlash() {
    return u'/';
}

char16_t URI::getColon() {
    return u':';
}

char16_t URI::getDot() {
    return u'.';
}

bool URI::operator==(const URI& other) const {
    return caselessCompare(text(), other.text()) == 0;
}

bool URI::operator!=(const URI& other) const {
    return !(*this == other);
}

bool URI::operator<(const URI& other) const {
    return caselessCompare(text(), other.text()) < 0;
}

std::u16string URI::encodeComponent(const std::u16string& text, std::string extra) {
    return percentEncode(text, UNRESERVED + std::move(extra));
}

std::u16string URI::encodeIRI(const std::u16string& text) {
    return percentEncode(text, std::string(UNRESERVED) + RESERVED);
}

std::u16string URI::percentEncode(const std::u16string& text, const std::string& allowed) {
    static constexpr char HEX_DIGITS[] = "0123456789ABCDEF";
    std::string encoded;
    for (const char character : detail::toUTF8String(text, true)) {
        const auto byte = static_cast<unsigned char>(character);
        if (byte < 128 && allowed.find(character) != std::string::npos) {
            encoded += character;
        } else {
            encoded += '%';
            encoded += HEX_DIGITS[byte >> 4];
            encoded += HEX_DIGITS[byte & 0x0F];
        }
    }
    return opc::toString(encoded, true);
}

bool operator==(const URI& left, const std::u16string& right) {
    return caselessCompare(left.text(), right) == 0;
}

bool operator!=(const URI& left, const std::u16string& right) {
    return !(left == right);
}

bool operator<(const URI& left, const std::u16string& right) {
    return caselessCompare(left.text(), right) < 0;
}

bool operator==(const std::u16string& left, const URI& right) {
    return right == left;
}

bool operator!=(const std::u16string& left, const URI& right) {
    return !(right == left);
}

bool operator<(const std::u16string& left, const URI& right) {
    return caselessCompare(left, right.text()) < 0;
}

URI relativize(const URI& source, const URI& target) {
    if (source.isOpaque() || target.isOpaque())
        throw UnsupportedRelativize("URIs must be hierarchical URIs.");
    if (source.isAbsolute() || target.isAbsolute() || !source.hasAbsolutePath() || !target.hasAbsolutePath())
        throw UnsupportedRelativize(
            "URIs must be relative URIs, where the source and target URI have absolute paths.");
    if (source.path() == target.path())
        throw UnsupportedRelativize("URI's paths must be different.");
    return URI(target.impl->iri.makeRelativeTo(source.impl->iri).toAsciiString(false));
}

URI resolve(const URI& base, const URI& reference) {
    if (base.isOpaque() || reference.isOpaque())
        throw UnsupportedResolve("URIs must be hierarchical URIs.");
    return URI(reference.impl->iri.resolveAgainst(base.impl->iri).toAsciiString(false));
}

} // namespace opc::model
