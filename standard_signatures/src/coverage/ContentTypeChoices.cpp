#include "coverage/ContentTypeChoices.hpp"

#include "names/PartNames.hpp"
#include "transform/RelationshipsNamespace.hpp"

#include <algorithm>
#include <set>
#include <string>
#include <string_view>

namespace opc::standard_signatures {

namespace {

/// Which part programs find by its content type.
enum class PartKind {
    None,
    Other, ///< of an office program
    Workbook,
    Strings,
    Styles,
};

// how the content types of such parts begin
constexpr std::string_view OF_OFFICE_PROGRAMS[] = {
    "application/vnd.openxmlformats-officedocument.", "application/vnd.ms-office.",
    "application/vnd.ms-excel.", "application/vnd.ms-powerpoint.", "application/vnd.ms-word."};

PartKind kindOf(std::string_view contentType) {
    contentType = contentType.substr(0, contentType.find(';')); // no parameters
    contentType = contentType.substr(0, contentType.find_last_not_of(" \t") + 1);
    const std::string key = keyOf(contentType);
    const auto has = [&key](std::string_view word) { return key.find(word) != std::string::npos; };
    if (!keyEndsWith(key, "+xml") ||
        std::none_of(std::begin(OF_OFFICE_PROGRAMS), std::end(OF_OFFICE_PROGRAMS),
                     [&key](std::string_view begin) { return key.compare(0, begin.size(), begin) == 0; }))
        return PartKind::None;
    if (keyEndsWith(key, ".main+xml"))
        return has("spreadsheetml") || has("ms-excel") ? PartKind::Workbook
                                                       : PartKind::None; // some give it to the extension
    return keyEndsWith(key, "spreadsheetml.sharedstrings+xml") ? PartKind::Strings
           : keyEndsWith(key, "spreadsheetml.styles+xml")      ? PartKind::Styles
                                                               : PartKind::Other;
}

PartKind kindOf(const StoredPart* part) {
    return part != nullptr && part->contentType ? kindOf(*part->contentType) : PartKind::None;
}

/// Whether there is one at most.
bool isUnique(PartKind kind) {
    return kind == PartKind::Workbook || kind == PartKind::Strings || kind == PartKind::Styles;
}

class Search {
public:
    explicit Search(const PackageContents& contents) : contents(contents) {}

    std::vector<UnsignedChoice> run() {
        for (const StoredPart& part : contents.parts())
            check(part, kindOf(&part));
        for (const std::string& type : contents.unusedContentTypes())
            if (isUnique(kindOf(type)) || (hasWorkbook() && isOfRelationships(type)))
                add("/[Content_Types].xml",
                    "it has a content type for no part, by which some programs look for one");
        if (hasWorkbook())
            checkRelationships();
        return std::move(choices);
    }

private:
    void add(std::string_view part, const char* reason) { choices.push_back({part, reason}); }

    void check(const StoredPart& part, PartKind kind) {
        if (isUnique(kind) && !known.insert(kind).second)
            add(part.name, "another part has its content type, by which some programs find one of them, and "
                           "their order can't be signed");
        const bool canShare =
            kind == PartKind::None || (kind == PartKind::Workbook && part.key == "/xl/workbook.xml");
        if (!part.hasOwnContentType && !canShare)
            add(part.name, "it has the content type of its extension, and some programs look for the part "
                           "with a content type of its own");
    }

    bool hasWorkbook() const { return known.count(PartKind::Workbook) != 0; }

    static bool isOfRelationships(const std::string& contentType) {
        return keyOf(contentType) == RELATIONSHIPS_CONTENT_TYPE;
    }

    /// Some programs take the first entry of relationships with such a word in its name for that of the workbook.
    void checkRelationships() {
        const auto& parts = contents.parts();
        const auto hasOwnType = [](const StoredPart& part) { return part.source && part.hasOwnContentType; };
        if (std::none_of(parts.begin(), parts.end(), hasOwnType))
            return;
        for (const StoredPart& part : parts)
            if (part.source && part.key.find("book") != std::string::npos &&
                kindOf(contents.find(*part.source)) != PartKind::Workbook)
                add(part.name, "some programs take it for the relationships of the workbook");
    }

    const PackageContents& contents;
    std::set<PartKind> known;
    std::vector<UnsignedChoice> choices;
};

} // namespace

std::vector<UnsignedChoice> findContentTypeChoices(const PackageContents& contents) {
    return Search(contents).run();
}

} // namespace opc::standard_signatures
