#include <opc/editing/DifferenceJob.hpp>

#include "comparison/NameFilter.hpp"
#include "difference/JobMaker.hpp"
#include "difference/Rehearsal.hpp"

#include <utility>

namespace opc::editing {

using inspection::Archive;
using inspection::Comparison;

DifferenceJob makeJob(const Archive& before, const Archive& now, JobContents& contents,
                      const DifferenceOptions& options) {
    const inspection::NameFilter filter(options.names);
    const auto compareAgain = [&](const Archive& changed) {
        Comparison comparison = compare(changed, now, {{}, false});
        filter.apply(comparison);
        return comparison;
    };
    JobMaker maker(contents);
    Rehearsal parts(before, options.limits);
    // A move changes relationships of other parts, too, which may not be asked for.
    maker.changeParts(parts.editor(), compare(before, now, {options.names, options.names.empty()}));
    const Archive between = parts.save();
    Rehearsal relationships(between, options.limits);
    maker.changeRelationships(relationships.editor(), compareAgain(between));
    Archive result = relationships.save();

    std::vector<std::string> left = maker.nameLeft(compareAgain(result));
    std::vector<Change> changes = parts.editor().changes();
    const std::vector<Change>& more = relationships.editor().changes();
    changes.insert(changes.end(), more.begin(), more.end());
    std::vector<std::string> broken = parts.editor().signatures().brokenBy(changes);
    return {maker.takeJob(), std::move(left), std::move(changes), std::move(broken), std::move(result)};
}

} // namespace opc::editing
