#include "PropertyFields.hpp"

#include "OpenedPackage.hpp"
#include "Table.hpp"

#include <opc/core/Text.hpp>
#include <opc/core/Time.hpp>

#include <boost/date_time/posix_time/posix_time_types.hpp>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <iostream>
#include <iterator>

namespace opctool {

namespace {

using boost::posix_time::ptime;
using nlohmann::json;
using opc::toUDEString;
using opc::model::CoreProperties;

struct TextField {
    const char* name;
    CoreProperties::Text (CoreProperties::*get)() const;
    void (CoreProperties::*set)(const std::u16string&);
};

constexpr TextField TEXT_FIELDS[] = {
    {"category", &CoreProperties::getCategory, &CoreProperties::setCategory},
    {"contentStatus", &CoreProperties::getContentStatus, &CoreProperties::setContentStatus},
    {"creator", &CoreProperties::getCreator, &CoreProperties::setCreator},
    {"description", &CoreProperties::getDescription, &CoreProperties::setDescription},
    {"identifier", &CoreProperties::getIdentifier, &CoreProperties::setIdentifier},
    {"language", &CoreProperties::getLanguage, &CoreProperties::setLanguage},
    {"lastModifiedBy", &CoreProperties::getLastModifiedBy, &CoreProperties::setLastModifiedBy},
    {"revision", &CoreProperties::getRevision, &CoreProperties::setRevision},
    {"subject", &CoreProperties::getSubject, &CoreProperties::setSubject},
    {"title", &CoreProperties::getTitle, &CoreProperties::setTitle},
    {"version", &CoreProperties::getVersion, &CoreProperties::setVersion},
};

struct TimeField {
    const char* name;
    CoreProperties::Time (CoreProperties::*get)() const;
    void (CoreProperties::*set)(ptime);
};

constexpr TimeField TIME_FIELDS[] = {
    {"created", &CoreProperties::getCreated, &CoreProperties::setCreated},
    {"lastPrinted", &CoreProperties::getLastPrinted, &CoreProperties::setLastPrinted},
    {"modified", &CoreProperties::getModified, &CoreProperties::setModified},
};

const char* const KEYWORDS = "keywords";

template <typename Fields>
auto findField(const Fields& fields, const std::string& name) {
    const auto* const found = std::find_if(std::begin(fields), std::end(fields),
                                           [&name](const auto& field) { return field.name == name; });
    return found == std::end(fields) ? nullptr : found;
}

ptime parseTime(const std::string& text) {
    return text == "now" ? boost::posix_time::second_clock::universal_time()
                         : opc::convertStringToTime(fromArgument(text));
}

struct Assignment {
    explicit Assignment(const std::string& text)
        : name(text, 0, text.find('=')), value(text, std::min(text.size(), name.size() + 1)) {}

    std::string name;
    std::string value;
};

/// Whether `text` has the form that RFC 3066 gives a language tag, which the schema asks for too.
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

json describe(const CoreProperties& properties) {
    json description = json::object();
    for (const TextField& field : TEXT_FIELDS)
        if (const CoreProperties::Text text = (properties.*field.get)())
            description[field.name] = toUDEString(*text);
    for (const TimeField& field : TIME_FIELDS)
        if (const CoreProperties::Time time = (properties.*field.get)())
            description[field.name] = toUDEString(opc::convertTimeToString(*time));
    if (const CoreProperties::Keywords keywords = properties.getKeywords()) {
        json& list = description[KEYWORDS] = json::array();
        for (const auto& [text, language] : *keywords) {
            json& keyword = list.emplace_back(json{{"text", toUDEString(text)}});
            if (!language.empty())
                keyword["language"] = toUDEString(language);
        }
    }
    return description;
}

void printProperties(const json& description) {
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
    table.print(std::cout, outputIsTerminal());
}

std::string checkProperty(const std::string& name) {
    if (findField(TEXT_FIELDS, name) || findField(TIME_FIELDS, name) || name == KEYWORDS)
        return {};
    std::string problem = name + " is no property; these are: ";
    for (const TextField& field : TEXT_FIELDS)
        problem += std::string(field.name) + ", ";
    for (const TimeField& field : TIME_FIELDS)
        problem += std::string(field.name) + ", ";
    return problem + KEYWORDS;
}

std::string checkAssignment(const std::string& assignment) {
    if (assignment.find('=') == std::string::npos)
        return assignment + " isn't NAME=VALUE";
    const auto [name, value] = Assignment(assignment);
    if (name == KEYWORDS)
        return "keywords are set by --keyword";
    if (findField(TIME_FIELDS, name) && parseTime(value).is_not_a_date_time())
        return value + " is no time; write 2024-02-29, 2024-02-29T13:45Z, 2024-02-29T13:45:59+01:00 or now";
    return checkProperty(name);
}

void assign(CoreProperties& properties, const std::string& assignment) {
    const auto [name, value] = Assignment(assignment);
    if (const TimeField* const field = findField(TIME_FIELDS, name))
        (properties.*field->set)(parseTime(value));
    else if (const TextField* const textField = findField(TEXT_FIELDS, name))
        (properties.*textField->set)(fromArgument(value));
}

void unset(CoreProperties& properties, const std::string& name) {
    const CoreProperties before = properties;
    properties.clear();
    for (const TextField& field : TEXT_FIELDS)
        if (const auto text = (before.*field.get)(); text && field.name != name)
            (properties.*field.set)(*text);
    for (const TimeField& field : TIME_FIELDS)
        if (const auto time = (before.*field.get)(); time && field.name != name)
            (properties.*field.set)(*time);
    if (const auto keywords = before.getKeywords(); keywords && name != KEYWORDS)
        properties.setKeywords(*keywords);
}

CoreProperties::KeywordList::value_type parseKeyword(const std::string& keyword) {
    const std::size_t colon = keyword.rfind(':');
    const std::string language = colon == std::string::npos ? "" : keyword.substr(colon + 1);
    if (colon == std::string::npos || (!language.empty() && !isLanguageTag(language)))
        return {fromArgument(keyword), {}};
    return {fromArgument(keyword.substr(0, colon)), fromArgument(language)};
}

} // namespace opctool
