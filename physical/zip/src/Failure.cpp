#include "Failure.hpp"

#include <opc/core/Exception.hpp>

#include <algorithm>
#include <system_error>

namespace opc::physical::zip {

namespace {

/// Control characters in messages could take over a terminal.
bool isControlCharacter(char c) {
    return static_cast<unsigned char>(c) < ' ' || c == '\x7F';
}

} // namespace

void fail(const std::string& place, const std::string& what, int code) {
    throw Exception(place + ": " + what, {code, boost::system::generic_category()});
}

void failSystem(const std::string& place, const std::string& what, int code) {
    fail(place, what + ": " + std::generic_category().message(code), code);
}

std::string printable(std::string_view name) {
    std::string text(name);
    std::replace_if(text.begin(), text.end(), isControlCharacter, '?');
    return text;
}

std::string itemPlace(const std::string& archive, std::string_view item) {
    return archive + ": " + printable(item);
}

} // namespace opc::physical::zip
