#include <opc/editing/DifferenceJob.hpp>

#include <opc/core/Exception.hpp>

#include <algorithm>
#include <set>

namespace opc::editing {

namespace {

using inspection::Comparison;
using inspection::ContentDifference;
using inspection::ContentVersion;
using inspection::RelationshipDifference;
using inspection::RelationshipVersion;
using Kind = ContentDifference::Kind;

/// The last segment of the folder's path says what a relationships part is.
bool isRelationshipsPart(const std::string& name) {
    const std::size_t file = name.rfind('/');
    return file >= 6 && file != std::string::npos && name.compare(file - 6, 6, "/_rels") == 0;
}

/// The model creates no such relationship.
bool leadsToItsSource(const std::string& source, const RelationshipVersion& relationship) {
    const std::string& target = relationship.resolved;
    const std::string path = target.substr(0, target.find_first_of("?#"));
    const auto isSame = [](char left, char right) {
        return left == right || ((left ^ right) == 0x20 && (left | 0x20) >= 'a' && (left | 0x20) <= 'z');
    };
    return std::equal(path.begin(), path.end(), source.begin(), source.end(), isSame);
}

class JobMaker {
public:
    explicit JobMaker(JobContents& contents) : contents(contents) {}

    DifferenceJob make(const Comparison& comparison) {
        remove(comparison.parts);
        for (const ContentDifference& part : comparison.parts)
            change(part);
        for (const ContentDifference& part : comparison.parts)
            if (part.kind == Kind::Added)
                add(*part.now);
        relate(comparison.relationships);
        for (const ContentDifference& item : comparison.items)
            made.left.push_back("the item " + item.name() + ", which is no part");
        return std::move(made);
    }

private:
    /// Relationships parts with something else than relationships, and parts without a content type, aren't the model's.
    bool leaves(const ContentVersion& part) {
        const bool isRelationships = isRelationshipsPart(part.name);
        if (!isRelationships && !part.contentType.empty())
            return false;
        made.left.push_back(
            "the part " + part.name +
            (isRelationships ? ", which holds more than relationships" : ", which has no content type"));
        gone.insert(part.name);
        return true;
    }

    void remove(const std::vector<ContentDifference>& parts) {
        RemoveStep step;
        for (const ContentDifference& part : parts)
            if (part.kind == Kind::Removed && !leaves(*part.before)) {
                step.patterns.push_back(part.before->name);
                gone.insert(part.before->name);
            }
        if (!step.patterns.empty())
            made.job.steps.emplace_back(std::move(step));
    }

    void change(const ContentDifference& part) {
        if (part.kind != Kind::Changed || leaves(*part.now))
            return;
        if (part.hasOtherType)
            made.job.steps.emplace_back(RetypeStep{part.before->name, part.now->contentType});
        if (part.hasOtherContent)
            made.job.steps.emplace_back(PutStep{part.before->name, contents.keep(*part.now)});
    }

    void add(const ContentVersion& part) {
        if (!leaves(part))
            made.job.steps.emplace_back(AddStep{part.name, part.contentType, contents.keep(part)});
    }

    /// First those that go: an Id, or a type that may occur but once, is free then.
    void relate(const std::vector<RelationshipDifference>& relationships) {
        for (const RelationshipDifference& one : relationships)
            if (one.before && !isRetarget(one) && !one.lacksSource && gone.count(one.source) == 0)
                made.job.steps.emplace_back(UnrelateStep{one.source, one.before->id});
        for (const RelationshipDifference& one : relationships)
            if (one.now || one.lacksSource)
                relate(one);
    }

    void relate(const RelationshipDifference& one) {
        const RelationshipVersion& version = one.now ? *one.now : *one.before;
        const std::string& target = version.isExternal ? version.target : version.resolved;
        const char* const reason = one.lacksSource || gone.count(one.source) != 0 ? "which has no source"
                                   : target.empty()                        ? "which leads to no part name"
                                   : leadsToItsSource(one.source, version) ? "which leads to its own source"
                                                                           : nullptr;
        if (reason != nullptr)
            made.left.push_back("the relationship " + version.id + " of " + one.source + ", " + reason);
        else if (isRetarget(one))
            made.job.steps.emplace_back(RetargetStep{one.source, version.id, target, version.isExternal});
        else
            made.job.steps.emplace_back(
                RelateStep{one.source, version.type, target, version.isExternal, version.id});
    }

    static bool isRetarget(const RelationshipDifference& one) {
        return one.before && one.now && one.before->type == one.now->type;
    }

    JobContents& contents;
    DifferenceJob made;
    std::set<std::string> gone; ///< parts that aren't there when relationships are changed
};

} // namespace

DifferenceJob makeJob(const Comparison& comparison, JobContents& contents) {
    return JobMaker(contents).make(comparison);
}

} // namespace opc::editing
