#include "RawZip.hpp"

#include "Mendable.hpp"

#include <algorithm>

namespace opc::test {

namespace {

const char* const XML = "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n";

const char* nameOf(inspection::Severity severity) {
    static constexpr const char* NAMES[] = {"info", "warning", "error"};
    return NAMES[static_cast<int>(severity)];
}

} // namespace

const char* const TO_DOCUMENT =
    R"(<Relationship Id="rId1" Type="http://schemas.openxmlformats.org/officeDocument/2006/relationships/officeDocument" Target="word/document.xml"/>)";

RawItem contentTypesWith(const std::string& entries) {
    return stored(
        "[Content_Types].xml",
        XML +
            std::string(
                R"(<Types xmlns="http://schemas.openxmlformats.org/package/2006/content-types">)"
                R"(<Default Extension="rels" ContentType="application/vnd.openxmlformats-package.relationships+xml"/>)"
                R"(<Override PartName="/word/document.xml" )"
                R"(ContentType="application/vnd.openxmlformats-officedocument.wordprocessingml.document.main+xml"/>)") +
            entries + "</Types>");
}

RawItem relationshipsWith(const std::string& elements, const std::string& name) {
    return stored(
        name,
        XML +
            std::string(
                R"(<Relationships xmlns="http://schemas.openxmlformats.org/package/2006/relationships">)") +
            elements + "</Relationships>");
}

std::vector<RawItem> smallItems() {
    return {
        contentTypesWith(""), relationshipsWith(TO_DOCUMENT),
        stored(
            "word/document.xml",
            XML + std::string(
                      R"(<w:document xmlns:w="http://schemas.openxmlformats.org/wordprocessingml/2006/main">)"
                      R"(<w:body><w:p><w:r><w:t>text</w:t></w:r></w:p></w:body></w:document>)"))};
}

std::vector<RawItem> itemsWith(const std::vector<RawItem>& items) {
    std::vector<RawItem> all = smallItems();
    const std::size_t usual = all.size();
    for (const RawItem& item : items) {
        const auto end = all.begin() + static_cast<std::ptrdiff_t>(usual);
        const auto same =
            std::find_if(all.begin(), end, [&](const RawItem& old) { return old.name == item.name; });
        if (same == end)
            all.push_back(item);
        else
            *same = item;
    }
    return all;
}

Bytes packageWith(const std::vector<RawItem>& items) {
    return makeZip(itemsWith(items));
}

std::vector<std::string> findingsOf(const Bytes& package, const inspection::InspectionOptions& options) {
    expectMends(package, options);
    std::vector<std::string> lines;
    for (const auto& [rule, severity, place, message, hint] :
         inspection::inspect(inspection::Archive(package, options.limits), options).findings) {
        std::string line = nameOf(severity) + (' ' + std::string(rule->id)) + ' ' + place.part + place.item;
        if (!place.relationship.empty())
            line += '#' + place.relationship;
        lines.push_back(line + ": " + message);
    }
    return lines;
}

std::vector<std::string> findingsOf(const Bytes& package, unsigned profiles) {
    inspection::InspectionOptions options;
    options.profiles = profiles;
    return findingsOf(package, options);
}

std::string brokenRules(const Bytes& package, unsigned profiles, bool infos) {
    inspection::InspectionOptions options;
    options.profiles = profiles;
    expectMends(package, options);
    std::vector<std::string> ids;
    for (const auto& finding : inspection::inspect(inspection::Archive(package), options).findings) {
        const std::string id(finding.rule->id);
        if ((infos || finding.severity != inspection::Severity::Info) &&
            std::find(ids.begin(), ids.end(), id) == ids.end())
            ids.push_back(id);
    }
    std::string line;
    for (const std::string& id : ids)
        line += (line.empty() ? "" : " ") + id;
    return line;
}

} // namespace opc::test
