#include "checks/relationships/PackURI.hpp"

#include <opc/core/Exception.hpp>
#include <opc/core/Text.hpp>
#include <opc/model/PartName.hpp>

#include <algorithm>
#include <string_view>

namespace opc::inspection {

namespace {

bool isOfProgram(std::string_view authority) {
    return authority == "application:,,," || authority == "siteoforigin:,,,";
}

/// By RFC 3986 an authority without user information and port.
bool isOfNamesAlone(std::string_view authority) {
    constexpr std::string_view NEVER = "@[]\"<>\\^`{|} ";
    return authority.find_first_of(NEVER) == std::string_view::npos;
}

/// Whether an authority begins with a scheme and its colon, which is encoded.
bool beginsWithScheme(std::string_view authority) {
    const std::size_t end = authority.find('%');
    const std::string_view scheme = authority.substr(0, end);
    const auto isLetter = [](char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); };
    return end != std::string_view::npos && end != 0 && isLetter(scheme.front()) &&
           (authority.compare(end, 3, "%3A") == 0 || authority.compare(end, 3, "%3a") == 0) &&
           std::all_of(scheme.begin(), scheme.end(), [&](char c) {
               return isLetter(c) || (c >= '0' && c <= '9') || c == '+' || c == '-' || c == '.';
           });
}

} // namespace

std::string defectOfPackURI(const Reference& uri) {
    if (isOfProgram(uri.authority))
        return {};
    if (uri.authority.find(':') != std::string_view::npos)
        return "has a colon in its authority that isn't encoded [M7.4]";
    if (!isOfNamesAlone(uri.authority) || !beginsWithScheme(uri.authority))
        return "has no URI of a package as its authority [M7.1]";
    if (uri.path.empty() || uri.path == "/")
        return {};
    try {
        const model::PartName valid(opc::toString(std::string(uri.path), true));
    } catch (const Exception&) {
        return "has a path that isn't the name of a part [M7.2]";
    }
    return {};
}

} // namespace opc::inspection
