#include "coverage/ContentTypeChoices.hpp"

#include "names/PartNames.hpp"

#include <set>
#include <string>
#include <string_view>

namespace opc::standard_signatures {

namespace {

/// What is there once in a document of an office program, by the content type; empty for other types. Drawings can have several
/// parts with that of the main one.
std::string kindOf(std::string_view contentType) {
    contentType = contentType.substr(0, contentType.find(';')); // no parameters
    contentType = contentType.substr(0, contentType.find_last_not_of(" \t") + 1);
    if (keyEndsWith(contentType, ".main+xml"))
        return keyOf(contentType).find("visio") == std::string::npos ? "main" : "";
    return keyEndsWith(contentType, "spreadsheetml.sharedstrings+xml") ||
                   keyEndsWith(contentType, "spreadsheetml.styles+xml")
               ? keyOf(contentType)
               : std::string();
}

} // namespace

std::vector<OrderChoice> findContentTypeChoices(const PackageContents& contents) {
    std::vector<OrderChoice> choices;
    std::set<std::string> known;
    for (const StoredPart& part : contents.parts()) {
        std::string kind = part.contentType ? kindOf(*part.contentType) : std::string();
        if (!kind.empty() && !known.insert(std::move(kind)).second)
            choices.push_back(
                {&part,
                 "another part has its content type, by which some programs find one of them, and their "
                 "order can't be signed"});
    }
    return choices;
}

} // namespace opc::standard_signatures
