#include "archive/TreeDescription.hpp"

#include "zip/src/Failure.hpp"

#include <nlohmann/json.hpp>

#include <cerrno>

namespace opc::editing::archive {

namespace {

using nlohmann::json;
using nlohmann::ordered_json;

constexpr std::size_t TREE_VERSION = 1;

ordered_json toJSON(const std::vector<TreeDescription::Item>& items) {
    ordered_json list = ordered_json::array();
    for (const TreeDescription::Item& item : items) {
        list.push_back({{"number", item.number}, {"item", item.name}});
        if (!item.file.empty())
            list.back()["file"] = item.file;
    }
    return list;
}

[[noreturn]] void refuse(const std::string& place) {
    physical::zip::fail(place, "doesn't describe an unpacked package", EBADMSG);
}

std::size_t readNumber(const json& number, const std::string& place) {
    if (!number.is_number_unsigned())
        refuse(place);
    return number.get<std::size_t>();
}

std::vector<TreeDescription::Item> readItems(const json& list, bool haveFiles, const std::string& place) {
    std::vector<TreeDescription::Item> items;
    for (const json& item : list)
        items.push_back({readNumber(item.at("number"), place), item.at("item").get<std::string>(),
                         haveFiles ? item.at("file").get<std::string>() : std::string()});
    return items;
}

} // namespace

std::string TreeDescription::write() const {
    ordered_json document{{"tree", TREE_VERSION}, {"files", toJSON(renamed)}, {"left", toJSON(left)}};
    if (!faults.empty())
        document["faults"] = faults;
    return document.dump(1) + '\n';
}

TreeDescription TreeDescription::read(std::string_view document, const std::string& place) {
    const json parsed = json::parse(document, nullptr, false);
    TreeDescription description;
    try {
        if (readNumber(parsed.at("tree"), place) > TREE_VERSION)
            physical::zip::fail(place, "was written by a later version", ENOTSUP);
        description.renamed = readItems(parsed.at("files"), true, place);
        description.left = readItems(parsed.at("left"), false, place);
        if (parsed.contains("faults"))
            description.faults = parsed.at("faults").get<std::set<std::string>>();
    } catch (const json::exception&) {
        refuse(place);
    }
    return description;
}

} // namespace opc::editing::archive
