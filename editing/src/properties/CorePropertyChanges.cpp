#include <opc/editing/CorePropertyChanges.hpp>

#include "graph/Targets.hpp"

#include <opc/core/Exception.hpp>
#include <opc/core/Text.hpp>
#include <opc/core/Time.hpp>
#include <opc/model/CoreProperties.hpp>
#include <opc/model/CorePropertyField.hpp>
#include <opc/model/Package.hpp>
#include <opc/model/PackageHelper.hpp>
#include <opc/physical/MemoryPackage.hpp>

#include <boost/date_time/posix_time/conversion.hpp>
#include <boost/date_time/posix_time/posix_time_types.hpp>

#include <algorithm>
#include <chrono>
#include <optional>
#include <variant>

namespace opc::editing {

using boost::posix_time::ptime;
using model::CoreProperties;
using model::CorePropertyField;
using model::Package;
using model::PackageHelper;
using model::PartName;

namespace {

const CorePropertyField& fieldOf(const std::string& name) {
    for (const CorePropertyField& field : CorePropertyField::all())
        if (field.name() == name)
            return field;
    throw Exception(name + " is no core property");
}

ptime timeFrom(const std::string& text, Editor::Time now) {
    if (text == "now")
        return ptime(boost::gregorian::date(1970, 1, 1)) +
               boost::posix_time::seconds(
                   std::chrono::floor<std::chrono::seconds>(now.time_since_epoch()).count());
    const ptime time = convertStringToTime(toString(text, true));
    if (time.is_not_a_date_time())
        throw Exception(text + " isn't a time");
    return time;
}

void assign(CoreProperties::Text& value, const std::string& text, Editor::Time /*now*/) {
    value = toString(text, true);
}

void assign(CoreProperties::Time& value, const std::string& text, Editor::Time now) {
    value = timeFrom(text, now);
}

void assign(CoreProperties::Keywords& value, const std::string& text, Editor::Time /*now*/) {
    value = CoreProperties::KeywordList{{toString(text, true), {}}};
}

std::string textOf(const std::u16string& text) {
    return toUDEString(text);
}

std::string textOf(const ptime& time) {
    return toUDEString(convertTimeToString(time));
}

std::string textOf(const CoreProperties::KeywordList& keywords) {
    std::string all;
    for (const auto& [text, language] : keywords)
        all += (all.empty() ? "" : "; ") + toUDEString(text) +
               (language.empty() ? "" : " [" + toUDEString(language) + "]");
    return all;
}

std::optional<std::string> valueOf(const CorePropertyField& field, const CoreProperties& properties) {
    return field.visit(
        properties, [](const auto& value) { return value ? std::optional(textOf(*value)) : std::nullopt; });
}

/// The part of the core properties; nothing if their relationship leads to none, or there is none.
std::optional<model::Part> findPart(const Package& package) {
    const auto found = package.getRelationshipsByType(PackageHelper::getCorePropertiesRelationshipType());
    if (found.empty())
        return std::nullopt;
    const auto target = targetOf(*found.begin());
    return target && package.hasPart(*target) ? std::optional(package.getPart(*target)) : std::nullopt;
}

/// @throws InvalidPartContent  a document can't hold them
void requireWritable(const CoreProperties& properties) {
    physical::MemoryPackage store;
    Package trial(store);
    trial.open(interfaces::OpenMode::CreateOnly);
    PackageHelper::createOrUpdateCoreProperties(trial, properties);
}

using Relationships = std::vector<model::Relationship>;

Relationships findRelationships(const Package& package) {
    const auto found = package.getRelationshipsByType(PackageHelper::getCorePropertiesRelationshipType());
    return {found.begin(), found.end()};
}

/// Records each relationship that isn't among the other ones.
/// @param state  of the change: what there was, or is
void recordMissing(Editor& editor, const Relationships& some, const Relationships& others, Change::Kind kind,
                   Change::State Change::*state) {
    for (const model::Relationship& one : some) {
        if (std::any_of(others.begin(), others.end(), [&one](const model::Relationship& other) {
                return one.getID() == other.getID() && one.getTarget() == other.getTarget();
            }))
            continue;
        Change change{kind, "/", toUDEString(one.getID()), {}, {}};
        change.*state = stateOf(one);
        editor.record(std::move(change));
    }
}

/// Writing can make the relationship, or replace it.
void writeCoreProperties(Editor& editor, const CoreProperties& properties) {
    Package& package = editor.package();
    requireWritable(properties); // while the old ones are there
    if (const auto part = findPart(package))
        part->restartOutputStream(); // it may have been written before
    const Relationships before = findRelationships(package);
    PackageHelper::mendCoreProperties(package, properties);
    const Relationships now = findRelationships(package);
    recordMissing(editor, before, now, Change::Kind::RelationshipRemoved, &Change::before);
    recordMissing(editor, now, before, Change::Kind::RelationshipAdded, &Change::after);
}

CoreProperties changed(CoreProperties properties, const CorePropertyChanges& changes, Editor::Time now) {
    for (const std::string& name : changes.unset)
        fieldOf(name).visit(properties, [](auto& value) { value = boost::none; });
    for (const auto& [name, text] : changes.set)
        fieldOf(name).visit(properties, [&value = text, now](auto& member) { assign(member, value, now); });
    if (changes.keywords)
        properties.setKeywords(*changes.keywords);
    return properties;
}

/// A change for each property that differs, without the place.
std::vector<Change> compare(const CoreProperties& before, const CoreProperties& after) {
    std::vector<Change> changes;
    for (const CorePropertyField& field : CorePropertyField::all()) {
        const std::optional<std::string> old = valueOf(field, before);
        const std::optional<std::string> current = valueOf(field, after);
        if (old == current)
            continue;
        Change& change = changes.emplace_back(
            Change{Change::Kind::PropertyChanged, {}, std::string(field.name()), {}, {}});
        change.before.text = old.value_or("");
        change.after.text = current.value_or("");
    }
    return changes;
}

/// @param isNew  whether there was no document, or nothing of it counts
void replace(Editor& editor, const CoreProperties& before, const CoreProperties& after, bool isNew) {
    const bool hasPart = findPart(editor.package()).has_value();
    std::vector<Change> told = compare(before, after);
    if (isNew ? !hasPart && after.isEmpty() : told.empty())
        return;
    writeCoreProperties(editor, after);
    const std::string part = toUDEString(findPart(editor.package())->getName().toString());
    if (isNew) {
        Change change{hasPart ? Change::Kind::ContentReplaced : Change::Kind::PartAdded, part, {}, {}, {}};
        change.after.text = toUDEString(PackageHelper::getCorePropertiesContentType().toString());
        editor.record(std::move(change));
    }
    for (Change& change : told) {
        change.place = part;
        editor.record(std::move(change));
    }
}

} // namespace

void setCoreProperties(Editor& editor, const CoreProperties& properties) {
    const bool hasThem = findPart(editor.package()).has_value();
    const CoreProperties before =
        hasThem ? PackageHelper::getCoreProperties(editor.package()) : CoreProperties();
    replace(editor, before, properties, !hasThem);
}

void changeCoreProperties(Editor& editor, const CorePropertyChanges& changes) {
    const bool hasThem = findPart(editor.package()).has_value();
    const CoreProperties before =
        hasThem && !changes.clear ? PackageHelper::getCoreProperties(editor.package()) : CoreProperties();
    replace(editor, before, changed(before, changes, editor.now()), !hasThem || changes.clear);
}

} // namespace opc::editing
