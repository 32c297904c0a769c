#include "difference/JobMaker.hpp"

#include "graph/Targets.hpp"
#include "subject/Names.hpp"

#include <opc/core/Text.hpp>

#include <algorithm>
#include <utility>

namespace opc::editing {

namespace {

using inspection::Comparison;
using inspection::ContentDifference;
using inspection::ContentVersion;
using inspection::RelationshipDifference;
using inspection::RelationshipVersion;
using DifferenceKind = ContentDifference::Kind;

/// Each move looks at all relationships: beyond this product, parts are removed and added instead.
constexpr std::size_t MOST_WORK_OF_MOVES = 2'000'000;

std::string describePart(const std::string& name) {
    return "the part " + name;
}

std::string describe(const std::string& source, const RelationshipVersion& relationship) {
    return "the relationship " + relationship.id + " of " + source;
}

/// Its content is the business of the model.
bool isRelationships(const ContentDifference& part) {
    return inspection::isRelationshipsName(part.name());
}

bool areMovesFew(const model::Package& package, const Comparison& comparison) {
    const auto moves =
        std::count_if(comparison.parts.begin(), comparison.parts.end(),
                      [](const ContentDifference& part) { return part.kind == DifferenceKind::Moved; });
    std::size_t relationships = 0;
    visitSources(package, [&](const model::PartName&, const model::RelationshipSource& source) {
        relationships += source.getRelationships().size();
    });
    return static_cast<std::size_t>(moves) * relationships <= MOST_WORK_OF_MOVES;
}

bool hasPart(const model::Package& package, const std::string& name) {
    try {
        return package.hasPart(model::PartName(toString(name, true)));
    } catch (const Exception&) {
        return false; // no part can have such a name
    }
}

std::string targetForStep(const RelationshipVersion& relationship) {
    const std::string& resolved = relationship.resolved;
    if (relationship.isExternal || resolved.empty())
        return relationship.target;
    const std::size_t end = std::min(resolved.find_first_of("?#"), resolved.size());
    return inspection::encodedName(resolved.substr(0, end)) + resolved.substr(end);
}

bool isRetarget(const RelationshipDifference& one) {
    return one.before && one.now && one.before->type == one.now->type;
}

} // namespace

bool JobMaker::attempt(Editor& editor, const std::string& what, Step step) {
    Job tried;
    tried.steps.push_back(std::move(step));
    try {
        applyJob(editor, tried, contents.place());
    } catch (const Exception& e) {
        reasons[what] = e.what();
        return false;
    }
    job.steps.push_back(std::move(tried.steps.front()));
    return true;
}

void JobMaker::changeParts(Editor& editor, const Comparison& comparison) {
    std::vector<const ContentVersion*> removed;
    std::vector<const ContentDifference*> moved;
    std::vector<const ContentDifference*> kept;
    std::vector<const ContentVersion*> added;
    const bool moves = areMovesFew(editor.package(), comparison);
    for (const ContentDifference& part : comparison.parts) {
        if (isRelationships(part)) {
            reasons.emplace(describePart(part.name()), "it holds more than relationships");
            continue;
        }
        if (part.kind == DifferenceKind::Moved && moves) {
            moved.push_back(&part);
            continue;
        }
        if (part.kind == DifferenceKind::Changed)
            kept.push_back(&part);
        if (part.kind == DifferenceKind::Removed || part.kind == DifferenceKind::Moved)
            removed.push_back(&*part.before);
        if (part.kind == DifferenceKind::Added || part.kind == DifferenceKind::Moved)
            added.push_back(&*part.now);
    }
    remove(editor, removed); // a name may be free then
    removed.clear();
    for (const ContentDifference* const part : moved) {
        if (move(editor, *part)) {
            kept.push_back(part);
        } else {
            removed.push_back(&*part->before);
            added.push_back(&*part->now);
        }
    }
    remove(editor, removed);
    for (const ContentDifference* const part : kept)
        change(editor, *part);
    for (const ContentVersion* const part : added)
        add(editor, *part);
}

/// All of them in one step, which looks at the graph of relationships once.
void JobMaker::remove(Editor& editor, const std::vector<const ContentVersion*>& parts) {
    RemoveStep step;
    for (const ContentVersion* const part : parts)
        if (const std::string name = inspection::encodedName(part->name); hasPart(editor.package(), name))
            step.patterns.push_back(name);
    if (step.patterns.empty())
        return;
    const std::string what = describePart(step.patterns.front());
    attempt(editor, what, std::move(step));
}

bool JobMaker::move(Editor& editor, const ContentDifference& part) {
    return attempt(
        editor, describePart(part.now->name),
        MoveStep{inspection::encodedName(part.before->name), inspection::encodedName(part.now->name)});
}

/// No step can make a part without one.
bool JobMaker::hasType(const ContentVersion& part) {
    if (part.contentType.empty())
        reasons[describePart(part.name)] = "it has no content type";
    return !part.contentType.empty();
}

void JobMaker::change(Editor& editor, const ContentDifference& part) {
    const std::string what = describePart(part.now->name);
    const std::string name = inspection::encodedName(part.now->name);
    if (part.hasOtherType && hasType(*part.now))
        attempt(editor, what, RetypeStep{name, part.now->contentType});
    if (part.hasOtherContent)
        attempt(editor, what, PutStep{name, contents.keep(*part.now)});
}

void JobMaker::add(Editor& editor, const ContentVersion& part) {
    if (hasType(part))
        attempt(editor, describePart(part.name),
                AddStep{inspection::encodedName(part.name), part.contentType, contents.keep(part)});
}

void JobMaker::changeRelationships(Editor& editor, const Comparison& comparison) {
    // First those that go: an Id, or a type that may occur but once, is free then.
    for (const RelationshipDifference& one : comparison.relationships)
        if (one.before && !isRetarget(one))
            attempt(editor, describe(one.source, *one.before),
                    UnrelateStep{inspection::encodedName(one.source), one.before->id});
    for (const RelationshipDifference& one : comparison.relationships)
        if (one.now)
            set(editor, one);
}

void JobMaker::set(Editor& editor, const RelationshipDifference& one) {
    const std::string source = inspection::encodedName(one.source);
    const RelationshipVersion& now = *one.now;
    Step step = RelateStep{source, now.type, targetForStep(now), now.isExternal, now.id};
    if (isRetarget(one))
        step = RetargetStep{source, now.id, targetForStep(now), now.isExternal};
    attempt(editor, describe(one.source, now), std::move(step));
}

std::vector<std::string> JobMaker::nameLeft(const Comparison& comparison) const {
    std::vector<std::string> left;
    const auto add = [&](const std::string& what) {
        const auto reason = reasons.find(what);
        left.push_back(reason == reasons.end() ? what : what + ": " + reason->second);
    };
    for (const ContentDifference& part : comparison.parts)
        add(describePart(part.name()));
    for (const RelationshipDifference& one : comparison.relationships)
        add(describe(one.source, one.now ? *one.now : *one.before));
    for (const ContentDifference& item : comparison.items)
        left.push_back("the item " + item.name() + ", which is no part");
    return left;
}

} // namespace opc::editing
