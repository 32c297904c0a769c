#include "PropertyFields.hpp"

#include "OpenedPackage.hpp"
#include "Table.hpp"

#include <opc/core/Text.hpp>
#include <opc/core/Time.hpp>
#include <opc/model/CorePropertyField.hpp>

#include <boost/date_time/posix_time/posix_time_types.hpp>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <iostream>
#include <variant>

namespace opctool {

namespace {

using boost::posix_time::ptime;
using nlohmann::json;
using opc::toUDEString;
using opc::model::CoreProperties;

using opc::model::CorePropertyField;
using Time = CoreProperties::Time CoreProperties::*;
using Keywords = CoreProperties::Keywords CoreProperties::*;

const CorePropertyField* findField(const std::string& name) {
    for (const CorePropertyField& field : CorePropertyField::all())
        if (field.name() == name)
            return &field;
    return nullptr;
}

/// The value of a field, as JSON.
/// @{
json describeValue(const std::u16string& text) {
    return toUDEString(text);
}

json describeValue(const ptime& time) {
    return toUDEString(opc::convertTimeToString(time));
}

json describeValue(const CoreProperties::KeywordList& keywords) {
    json list = json::array();
    for (const auto& [text, language] : keywords) {
        json& keyword = list.emplace_back(json{{"text", toUDEString(text)}});
        if (!language.empty())
            keyword["language"] = toUDEString(language);
    }
    return list;
}
/// @}

bool isTime(const std::string& text) {
    return text == "now" || !opc::convertStringToTime(fromArgument(text)).is_not_a_date_time();
}

/// Whether `text` has the form of a language tag in RFC 3066, which the schema requires too.
bool isLanguageTag(const std::string& text) {
    std::size_t length = 0;
    bool isFirst = true;
    for (const char character : text + '-') {
        const bool isLetter =
            (character >= 'A' && character <= 'Z') || (character >= 'a' && character <= 'z');
        const bool isDigit = character >= '0' && character <= '9';
        if (character == '-' && length > 0) {
            length = 0;
            isFirst = false;
        } else if ((!isLetter && (!isDigit || isFirst)) || ++length > 8) {
            return false;
        }
    }
    return true;
}

} // namespace

json describeProperties(const CoreProperties& properties) {
    json description = json::object();
    for (const CorePropertyField& field : CorePropertyField::all())
        field.visit(properties, [&](const auto& value) {
            if (value)
                description[std::string(field.name())] = describeValue(*value);
        });
    return description;
}

void printProperties(std::ostream& stream, Table::Style style, const json& description) {
    Table table({{"PROPERTY"}, {"VALUE"}});
    for (const auto& [name, value] : description.items()) {
        if (value.is_string()) {
            table.addRow({name, value});
            continue;
        }
        for (const json& keyword : value) {
            const std::string language =
                keyword.contains("language") ? " [" + keyword["language"].get<std::string>() + "]" : "";
            table.addRow({name, keyword["text"].get<std::string>() + language});
        }
    }
    table.print(stream, style);
}

std::string checkProperty(const std::string& name) {
    if (findField(name))
        return {};
    std::string problem = name + " isn't a property; the properties are";
    const char* separator = ": ";
    for (const CorePropertyField& field : CorePropertyField::all()) {
        problem.append(separator).append(field.name());
        separator = ", ";
    }
    return problem;
}

std::string checkAssignment(const std::string& assignment) {
    if (assignment.find('=') == std::string::npos)
        return assignment + " isn't NAME=VALUE";
    if (opc::toUDEString(opc::toString(assignment, true)) != assignment)
        return "isn't UTF-8";
    const auto [name, value] = splitAssignment(assignment);
    const CorePropertyField* const field = findField(name);
    if (field && std::holds_alternative<Keywords>(field->member))
        return "set keywords with --keyword";
    if (field && std::holds_alternative<Time>(field->member) && !isTime(value))
        return value + " isn't a time; write 2024-02-29, 2024-02-29T13:45Z, 2024-02-29T13:45:59+01:00 or now";
    return checkProperty(name);
}

std::pair<std::string, std::string> splitAssignment(const std::string& assignment) {
    const std::size_t end = assignment.find('=');
    return {assignment.substr(0, end), assignment.substr(std::min(assignment.size(), end + 1))};
}

CoreProperties::KeywordList::value_type parseKeyword(const std::string& keyword) {
    const std::size_t colon = keyword.rfind(':');
    const std::string language = colon == std::string::npos ? "" : keyword.substr(colon + 1);
    if (colon == std::string::npos || (!language.empty() && !isLanguageTag(language)))
        return {fromArgument(keyword), {}};
    return {fromArgument(keyword.substr(0, colon)), fromArgument(language)};
}

} // namespace opctool
