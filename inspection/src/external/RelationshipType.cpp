#include "external/RelationshipType.hpp"

#include "subject/Names.hpp"

namespace opc::inspection {

std::string schemeOf(std::string_view target) {
    const std::string scheme = toLowerASCII(target.substr(0, target.find(':')));
    const bool isScheme =
        scheme.size() >= 2 && scheme.size() < target.size() && scheme[0] >= 'a' && scheme[0] <= 'z' &&
        scheme.find_first_not_of("abcdefghijklmnopqrstuvwxyz0123456789+-.") == std::string::npos;
    return isScheme ? scheme : std::string();
}

RelationshipType::RelationshipType(std::string_view type)
    : name(toLowerASCII(type.substr(type.rfind('/') + 1))),
      hasKnownBase(type.substr(0, 30) == "http://schemas.openxmlformats." ||
                   type.substr(0, 27) == "http://purl.oclc.org/ooxml/" ||
                   type.substr(0, 29) == "http://schemas.microsoft.com/") {
}

} // namespace opc::inspection
