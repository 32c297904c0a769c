#include "OfficeProperties.hpp"

#include "EditedPackage.hpp"

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <strings.h>

namespace opctool {

namespace {

using namespace opc::editing;
using nlohmann::ordered_json;
using opc::interfaces::OpenMode;

ordered_json toJSON(const PropertyValue& value) {
    ordered_json description = {{"type", value.type}, {"value", value.text}};
    if (!value.items.empty()) {
        description["items"] = ordered_json::array();
        for (const PropertyValue& item : value.items)
            description["items"].push_back(toJSON(item));
    }
    return description;
}

ordered_json toJSON(const Property& property) {
    ordered_json description = {{"name", property.name}};
    description.update(toJSON(property.value));
    if (!property.linkTarget.empty())
        description["linkTarget"] = property.linkTarget;
    return description;
}

std::string textOf(const PropertyValue& value) {
    std::string text = value.text;
    for (const PropertyValue& item : value.items)
        text.append(text.empty() ? "" : ", ").append(textOf(item));
    return text;
}

/// The type that a value gets without one of its own.
std::string usualType(const std::vector<Property>& old, const std::string& name) {
    const auto found = std::find_if(old.begin(), old.end(), [&name](const Property& property) {
        return ::strcasecmp(property.name.c_str(), name.c_str()) == 0;
    });
    const bool isSettable =
        found != old.end() &&
        findDefect(PropertyKind::Custom, {name, {found->value.type, found->value.text, {}}}).empty();
    return isSettable ? found->value.type : "lpwstr";
}

Property parse(const std::string& assignment, const std::string& type) {
    const std::size_t end = assignment.find('=');
    if (end == std::string::npos)
        throw CLI::ValidationError("--set", assignment + " isn't NAME=VALUE");
    return {assignment.substr(0, end), {type, assignment.substr(end + 1), {}}};
}

} // namespace

void printOfficeProperties(FileRun& run, PropertyKind kind) {
    OpenedPackage package(run, OpenMode::ReadOnly);
    const std::vector<Property> properties = readProperties(*package, kind);
    if (run.wantsJSON()) {
        ordered_json list = ordered_json::array();
        for (const Property& property : properties)
            list.push_back(toJSON(property));
        return run.json().add(list);
    }
    Table table({{"PROPERTY"}, {"TYPE"}, {"VALUE"}});
    for (const Property& property : properties)
        table.addRow({property.name, property.value.type, textOf(property.value)});
    table.print(run.out(), run.tableStyle());
}

void printLabels(FileRun& run) {
    OpenedPackage package(run, OpenMode::ReadOnly);
    ordered_json list = ordered_json::array();
    Table table({{"LABEL"}, {"SETTING"}, {"VALUE"}});
    for (const SensitivityLabel& label : findLabels(readProperties(*package, PropertyKind::Custom))) {
        ordered_json settings = ordered_json::object();
        for (const Property& setting : label.settings) {
            settings[setting.name] = setting.value.text;
            table.addRow({label.id, setting.name, setting.value.text});
        }
        list.push_back({{"label", label.id}, {"settings", settings}});
    }
    if (run.wantsJSON())
        run.json().add(list);
    else
        table.print(run.out(), run.tableStyle());
}

void changeOfficeProperties(FileRun& run, PropertyKind kind, const OfficeChanges& asked) {
    EditedPackage package(run);
    PropertyChanges changes;
    changes.clear = asked.clear;
    changes.unset = asked.unset;
    const bool needsOld = asked.type.empty() && kind == PropertyKind::Custom && !asked.set.empty();
    const std::vector<Property> old = needsOld ? readProperties(*package, kind) : std::vector<Property>();
    for (const std::string& assignment : asked.set) {
        Property property = parse(assignment, asked.type);
        if (needsOld)
            property.value.type = usualType(old, property.name);
        if (const std::string defect = findDefect(kind, property); !defect.empty())
            throw CLI::ValidationError("--set", defect);
        changes.set.push_back(std::move(property));
    }
    changeProperties(package.editor(), kind, changes);
    package.finish();
}

} // namespace opctool
