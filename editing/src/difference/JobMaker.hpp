#pragma once

#include <opc/editing/DifferenceJob.hpp>

#include <map>
#include <string>
#include <utility>
#include <vector>

namespace opc::editing {

/// Makes the steps of a job from differences. Each step is tried on a package first: one that fails isn't in the job, and why
/// it fails is told if the difference is still there at the end.
class JobMaker {
public:
    /// @param contents  must outlive this object
    explicit JobMaker(JobContents& contents) : contents(contents) {}

    /// @param editor      of the package before the changes
    /// @param comparison  of that package and the wanted one
    void changeParts(Editor& editor, const inspection::Comparison& comparison);

    /// @param editor      of the package with the changed parts
    /// @param comparison  of that package and the wanted one
    void changeRelationships(Editor& editor, const inspection::Comparison& comparison);

    /// What the steps don't change, a line each.
    /// @param comparison  of the changed package and the wanted one
    std::vector<std::string> nameLeft(const inspection::Comparison& comparison) const;

    Job takeJob() { return std::move(job); }

private:
    bool attempt(Editor& editor, const std::string& what, Step step);
    void remove(Editor& editor, const std::vector<const inspection::ContentVersion*>& parts);
    bool move(Editor& editor, const inspection::ContentDifference& part);
    bool hasType(const inspection::ContentVersion& part);
    void change(Editor& editor, const inspection::ContentDifference& part);
    void add(Editor& editor, const inspection::ContentVersion& part);
    void set(Editor& editor, const inspection::RelationshipDifference& relationship);

    JobContents& contents;
    Job job;
    std::map<std::string, std::string> reasons; ///< why a step fails, by what it is about
};

} // namespace opc::editing
