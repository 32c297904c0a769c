#include "coreproperties/CorePropertiesLoss.hpp"

#include <opc/core/Time.hpp>
#include <opc/model/CoreProperties.hpp>

namespace opc::model {

namespace {

struct TextField {
    const char* name;
    CoreProperties::Text (CoreProperties::*get)() const;
};

constexpr TextField TEXT_FIELDS[] = {
    {"category", &CoreProperties::getCategory},
    {"contentStatus", &CoreProperties::getContentStatus},
    {"creator", &CoreProperties::getCreator},
    {"description", &CoreProperties::getDescription},
    {"identifier", &CoreProperties::getIdentifier},
    {"language", &CoreProperties::getLanguage},
    {"lastModifiedBy", &CoreProperties::getLastModifiedBy},
    {"revision", &CoreProperties::getRevision},
    {"subject", &CoreProperties::getSubject},
    {"title", &CoreProperties::getTitle},
    {"version", &CoreProperties::getVersion},
};

struct TimeField {
    const char* name;
    CoreProperties::Time (CoreProperties::*get)() const;
};

constexpr TimeField TIME_FIELDS[] = {
    {"created", &CoreProperties::getCreated},
    {"lastPrinted", &CoreProperties::getLastPrinted},
    {"modified", &CoreProperties::getModified},
};

/// As a file keeps it; empty for none.
std::u16string kept(const CoreProperties::Time& time) {
    return time ? convertTimeToString(*time) : std::u16string();
}

CoreProperties::KeywordList kept(const CoreProperties::Keywords& keywords) {
    CoreProperties::KeywordList list = keywords.value_or(CoreProperties::KeywordList());
    for (auto& [text, language] : list)
        text.erase(text.find_last_not_of(u" \t\n\v\f\r") + 1);
    return list;
}

} // namespace

const char* findLostCoreProperty(const CoreProperties& written, const CoreProperties& read) {
    for (const TextField& field : TEXT_FIELDS)
        if ((written.*field.get)() != (read.*field.get)())
            return field.name;
    for (const TimeField& field : TIME_FIELDS)
        if (kept((written.*field.get)()) != kept((read.*field.get)()))
            return field.name;
    return kept(written.getKeywords()) == kept(read.getKeywords()) ? nullptr : "keywords";
}

} // namespace opc::model
