#include <opc/editing/Job.hpp>

#include "job/StepNames.hpp"

#include <algorithm>
#include <iterator>
#include <utility>

namespace opc::editing {

namespace {

inspection::InspectionOptions optionsOf(const FixStep& step, inspection::InspectionOptions options) {
    options.profiles = step.profiles;
    options.only = step.only;
    options.never = step.never;
    return options;
}

/// Joins what two mendings one after the other did.
Mending joined(Mending first, Mending second) {
    first.archive = std::move(second.archive);
    std::move(second.mended.begin(), second.mended.end(), std::back_inserter(first.mended));
    std::move(second.left.begin(), second.left.end(), std::back_inserter(first.left));
    return first;
}

} // namespace

bool mends(const Job& job) {
    return countFixes(job) != 0;
}

Mending mendBefore(inspection::Archive archive, const Job& job,
                   const inspection::InspectionOptions& options) {
    Signatures signatures(archive);
    const physical::FileState original = archive.fileState();
    Mending all{std::move(archive), original, {}, {}, std::move(signatures)};
    for (std::size_t i = 0; i < countFixes(job); ++i) {
        try {
            Mending more = mend(std::move(all.archive), optionsOf(std::get<FixStep>(job.steps[i]), options));
            all = joined(std::move(all), std::move(more));
        } catch (Exception& e) {
            e.addDetails(placeOf(i + 1, nameOf(job.steps[i])));
            throw;
        }
    }
    return all;
}

} // namespace opc::editing
