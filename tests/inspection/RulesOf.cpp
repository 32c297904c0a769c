#include "RulesOf.hpp"

#include <algorithm>

namespace opc::test {

std::string toldBy(inspection::RuleRows rows, const std::vector<RawItem>& items,
                   const std::string& fileName) {
    inspection::InspectionOptions options;
    options.fileName = fileName;
    for (std::size_t i = 0; i < rows.count; ++i)
        options.only.emplace_back(rows.first[i].id);
    std::vector<std::string> told;
    for (const std::string& line : findingsOf(packageWith(items), options)) {
        const std::string rule = line.substr(0, line.find(' ', line.find(' ') + 1));
        if (std::find(told.begin(), told.end(), rule) == told.end())
            told.push_back(rule);
    }
    std::string text;
    for (const std::string& rule : told)
        text += (text.empty() ? "" : ", ") + rule;
    return text;
}

std::vector<RawItem> itemsWithParts(const std::vector<XmlPart>& parts, const std::string& relationships) {
    std::string types;
    std::vector<RawItem> items;
    for (const XmlPart& part : parts) {
        types += "<Override PartName=\"/" + part.name + "\" ContentType=\"" + part.type + "\"/>";
        items.push_back(stored(part.name, part.xml));
    }
    items.push_back(contentTypesWith(types));
    if (!relationships.empty())
        items.push_back(relationshipsWith(relationships, "word/_rels/document.xml.rels"));
    return items;
}

} // namespace opc::test
