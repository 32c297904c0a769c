#include "external/RelationshipType.hpp"

#include "subject/Names.hpp"
#include "subject/Targets.hpp"

#include <algorithm>

namespace opc::inspection {

std::string plainTarget(std::string_view target) {
    const auto isBlank = [](char c) { return static_cast<unsigned char>(c) <= ' '; };
    while (!target.empty() && isBlank(target.front()))
        target.remove_prefix(1);
    while (!target.empty() && isBlank(target.back()))
        target.remove_suffix(1);
    std::string plain(target);
    const auto isDropped = [](char c) { return c == '\t' || c == '\r' || c == '\n'; };
    plain.erase(std::remove_if(plain.begin(), plain.end(), isDropped), plain.end());
    return plain;
}

std::string schemeOf(std::string_view target) {
    const std::string scheme = toLowerASCII(target.substr(0, target.find(':')));
    const bool isScheme =
        scheme.size() >= 2 && scheme.size() < target.size() && scheme[0] >= 'a' && scheme[0] <= 'z' &&
        scheme.find_first_not_of("abcdefghijklmnopqrstuvwxyz0123456789+-.") == std::string::npos;
    return isScheme ? scheme : std::string();
}

RelationshipType::RelationshipType(std::string_view type) {
    type = trimmed(type);
    name = toLowerASCII(type.substr(type.rfind('/') + 1));
    hasKnownBase = type.substr(0, 30) == "http://schemas.openxmlformats." ||
                   type.substr(0, 27) == "http://purl.oclc.org/ooxml/" ||
                   type.substr(0, 29) == "http://schemas.microsoft.com/";
}

} // namespace opc::inspection
