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

#include <boost/date_time/posix_time/posix_time_types.hpp>

#include <algorithm>
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

ptime timeFrom(const std::string& text) {
    if (text == "now")
        return boost::posix_time::second_clock::universal_time();
    const ptime time = convertStringToTime(toString(text, true));
    if (time.is_not_a_date_time())
        throw Exception(text + " isn't a time");
    return time;
}

void assign(CoreProperties::Text& value, const std::string& text) {
    value = toString(text, true);
}

void assign(CoreProperties::Time& value, const std::string& text) {
    value = timeFrom(text);
}

void assign(CoreProperties::Keywords& value, const std::string& text) {
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
        all += (all.empty() ? "" : "; ") + toUDEString(text);
    return all;
}

std::string valueOf(const CorePropertyField& field, const CoreProperties& properties) {
    return field.visit(properties, [](const auto& value) { return value ? textOf(*value) : std::string(); });
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

void write(Editor& editor, const CoreProperties& properties) {
    Package& package = editor.package();
    requireWritable(properties); // while the old ones are there
    if (const auto part = findPart(package))
        part->restartOutputStream(); // it may have been written before
    const CorePropertiesRelationships before(package);
    PackageHelper::mendCoreProperties(package, properties);
    before.recordChanges(editor);
}

Change changeOf(Change::Kind kind, const model::Relationship& relationship) {
    return {kind, "/", toUDEString(relationship.getID()), {}, {}};
}

/// @param isNew  whether there was no document, or nothing of it counts
void replace(Editor& editor, const CoreProperties& before, const CoreProperties& after, bool isNew) {
    const bool hasPart = findPart(editor.package()).has_value();
    if (!hasPart && after.isEmpty())
        return;
    write(editor, after);
    const std::string part = toUDEString(findPart(editor.package())->getName().toString());
    if (isNew) {
        Change change{hasPart ? Change::Kind::ContentReplaced : Change::Kind::PartAdded, part, {}, {}, {}};
        change.after.text = toUDEString(PackageHelper::getCorePropertiesContentType().toString());
        editor.record(std::move(change));
    }
    for (const CorePropertyField& field : CorePropertyField::all()) {
        Change change{Change::Kind::PropertyChanged, part, std::string(field.name()), {}, {}};
        change.before.text = valueOf(field, before);
        change.after.text = valueOf(field, after);
        if (change.before.text != change.after.text)
            editor.record(std::move(change));
    }
}

} // namespace

CorePropertiesRelationships::CorePropertiesRelationships(const Package& package) {
    for (const model::Relationship& found :
         package.getRelationshipsByType(PackageHelper::getCorePropertiesRelationshipType()))
        relationships.push_back(found);
}

void CorePropertiesRelationships::recordChanges(Editor& editor) const {
    const CorePropertiesRelationships now(editor.package());
    const auto isIn = [](const CorePropertiesRelationships& all, const model::Relationship& wanted) {
        return std::any_of(all.relationships.begin(), all.relationships.end(), [&](const auto& one) {
            return one.getID() == wanted.getID() && one.getTarget() == wanted.getTarget();
        });
    };
    for (const model::Relationship& old : relationships)
        if (!isIn(now, old)) {
            Change change = changeOf(Change::Kind::RelationshipRemoved, old);
            change.before = stateOf(old);
            editor.record(std::move(change));
        }
    for (const model::Relationship& added : now.relationships)
        if (!isIn(*this, added)) {
            Change change = changeOf(Change::Kind::RelationshipAdded, added);
            change.after = stateOf(added);
            editor.record(std::move(change));
        }
}

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
    CoreProperties after = before;
    for (const std::string& name : changes.unset)
        fieldOf(name).visit(after, [](auto& value) { value = boost::none; });
    for (const auto& [name, text] : changes.set)
        fieldOf(name).visit(after, [&value = text](auto& member) { assign(member, value); });
    replace(editor, before, after, !hasThem || changes.clear);
}

} // namespace opc::editing
