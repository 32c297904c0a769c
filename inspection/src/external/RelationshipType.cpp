#include "external/RelationshipType.hpp"

namespace opc::inspection {

std::string lowered(std::string_view text) {
    std::string result(text);
    for (char& c : result)
        if (c >= 'A' && c <= 'Z')
            c = static_cast<char>(c - 'A' + 'a');
    return result;
}

bool startsWith(std::string_view text, std::string_view lowerCaseBeginning) {
    return lowered(text.substr(0, lowerCaseBeginning.size())) == lowerCaseBeginning;
}

bool endsWith(std::string_view text, std::string_view lowerCaseEnd) {
    return text.size() >= lowerCaseEnd.size() &&
           lowered(text.substr(text.size() - lowerCaseEnd.size())) == lowerCaseEnd;
}

std::string schemeOf(std::string_view target) {
    const std::string scheme = lowered(target.substr(0, target.find(':')));
    const bool isScheme =
        scheme.size() >= 2 && scheme.size() < target.size() && scheme[0] >= 'a' && scheme[0] <= 'z' &&
        scheme.find_first_not_of("abcdefghijklmnopqrstuvwxyz0123456789+-.") == std::string::npos;
    return isScheme ? scheme : std::string();
}

RelationshipType::RelationshipType(std::string_view type)
    : name(lowered(type.substr(type.rfind('/') + 1))),
      hasKnownBase(type.substr(0, 30) == "http://schemas.openxmlformats." ||
                   type.substr(0, 27) == "http://purl.oclc.org/ooxml/" ||
                   type.substr(0, 29) == "http://schemas.microsoft.com/") {
}

} // namespace opc::inspection
